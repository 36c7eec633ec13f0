// One class level of a stream adapter: everything that follows from the list of its streamed
// attributes. `X` is the entity class, `Base` the adapter of its base class. X::QorNboAttrLogSa
// derives from it and adds the attributes' own operations by name.
#ifndef QOR_ATTRLOG_FAMILY_ADAPTERLEVEL_H
#define QOR_ATTRLOG_FAMILY_ADAPTERLEVEL_H

#include <qor/attrlog/family/ChildIn.h>
#include <qor/attrlog/family/CollectionOut.h>
#include <qor/attrlog/family/Companion.h>
#include <qor/attrlog/family/Sweep.h>
#include <qor/attrlog/family/SyncModeIn.h>
#include <qor/attrlog/family/TextIn.h>
#include <qor/attrlog/family/ValueIn.h>
#include <qor/entity/Entity.h>

namespace Qor {

template <class X, class Base = typename X::QorBase::QorNboAttrLogSa>
class QOR_EXPORT AdapterLevel : public Base {
  public:
    using Adapter = typename X::QorNboAttrLogSa;
    using EntityClass = X;
    using Transaction = StreamAdapter::AttrTransactionType;

    AttributeId handleAttrFlowOut(AttributeId startAttr) override;
    AttributeId sendAtOnce() override;
    void freeResyncState(Ptr<NboAttrLog::FlowOut> const& flow) override;
    void handleAttrDeserialization(AttributeId id, StreamAdapter::DeserializationOptions options,
                                   U32 size, Ptr<NboAttrLog::In> const& in) override;
    void handleAttrTransaction(AttributeId id, Transaction type, U32 arg) override;
    Ptr<NboAttrLog::FlowOut> flowOutIs(Ptr<NboAttrLog::Out> const& out,
                                       NboAttrLog::ConnectDesc const& desc, bool flag,
                                       AttributeId startAttr) override;
    void doNotification(AttributeId id, void* key) override;
    void syncModeIs(StreamAdapter::SyncMode mode) override;
    void doSerializeOrphan() override;
    void qorInstantiateSerialize() override;
    void doRemountSelf(Ptr<NboAttrLog::Out> const& out) override;
    void putTypeChain() override;
    void putConstructorArgument() override;

  protected:
    using Base::Base;

    /// Takes the record if its attribute is this level's.
    [[gnu::always_inline]] bool readOwn(InboundRecord& record);
    /// Of this level and those below it; used by the levels above.
    bool readAny(InboundRecord& record);
    /// Local snapshots for a peer that sends no markers.
    void beginOrEndLocally();

  private:
    Adapter& self() noexcept { return static_cast<Adapter&>(*this); }
    template <class S>
    bool sendAttribute(AttributeId& next);
    void askForTexts();
    template <class S>
    bool sendAttributeAtOnce();
    template <class S>
    bool sendOwed(NboAttrLog::FlowOut& flow);
    template <class S>
    void read(InboundRecord& record);
    void readAlias(InboundRecord& record);
    [[gnu::always_inline]] void take(InboundRecord& record,
                                     StreamAdapter::DeserializationOptions options);
    static constexpr bool isFirstLevel = std::is_same_v<Base, Entity::QorNboAttrLogSa>;
};

}  // namespace Qor

#include <qor/attrlog/family/AdapterLevelIn.h>
#include <qor/attrlog/family/AdapterLevelOut.h>

#endif
