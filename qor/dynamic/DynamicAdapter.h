// The stream adapter of a dynamic entity: the machine of <qor/attrlog/family/AdapterLevel.h>, as
// one level with all attributes of the class. Each way into it opens the scope of the entity's
// class.
#ifndef QOR_DYNAMIC_DYNAMIC_ADAPTER_H
#define QOR_DYNAMIC_DYNAMIC_ADAPTER_H

#include <qor/attrlog/family/MakeAdapter.h>
#include <qor/dynamic/DynamicFlowOut.h>

namespace Qor {

class QOR_EXPORT DynamicEntity::QorNboAttrLogSa : public AdapterLevel<DynamicEntity> {
  public:
    using Ptr = Qor::Ptr<QorNboAttrLogSa>;
    using FlowOut = DynamicFlowOut;
    class QorNboAttrLogSaAdapter_;
    using QorStreamed = DynamicStreamList;
    using Level = AdapterLevel<DynamicEntity>;

    QorNboAttrLogSa(AdapterState::Bits bits, U32 version, Qor::Ptr<NboAttrLog::Out> const& out,
                    PtrInterface* owner);
    ~QorNboAttrLogSa() override;
    static Ptr QorNboAttrLogSaIs(AdapterState::Bits bits, Qor::Ptr<DynamicEntity> const& entity,
                                 U32 version, Qor::Ptr<NboAttrLog::Out> const& out,
                                 PtrInterface* owner);

    virtual void onAttr(AttributeId id);
    virtual void onAttrKey(AttributeId id, DynamicKey const& key);
    void onIsNondestructing() override;

    AttributeId handleAttrFlowOut(AttributeId startAttr) override;
    AttributeId sendAtOnce() override;
    void freeResyncState(Qor::Ptr<NboAttrLog::FlowOut> const& flow) override;
    void handleAttrDeserialization(AttributeId id, DeserializationOptions options, U32 size,
                                   Qor::Ptr<NboAttrLog::In> const& in) override;
    void handleAttrTransaction(AttributeId id, AttrTransactionType type, U32 arg) override;
    void doNotification(AttributeId id, void* key) override;
    void syncModeIs(SyncMode mode) override;
    void qorInstantiateSerialize() override;
    void doRemountSelf(Qor::Ptr<NboAttrLog::Out> const& out) override;
    void putTypeChain() override;
    void putConstructorArgument() override;

  private:
    /// Null once the entity has gone.
    DynamicType const* type() const;
};

class QOR_EXPORT DynamicEntity::QorNboAttrLogSa::QorNboAttrLogSaAdapter_
    : public Companion<QorNboAttrLogSa, DynamicEntity::NotifieeConst> {
  public:
    using Companion::Companion;

    void onAttr(AttributeId id) override;
    void onAttrKey(AttributeId id, DynamicKey const& key) override;
};

extern template class AdapterLevel<DynamicEntity>;

}  // namespace Qor

#endif
