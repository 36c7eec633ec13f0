// What is owed to a peer of a dynamic entity: what FlowOutLevel keeps for a compiled class, with
// places that are counted when it is made. The members that take a descriptor speak of the
// attribute at hand.
#ifndef QOR_DYNAMIC_DYNAMIC_FLOW_OUT_H
#define QOR_DYNAMIC_DYNAMIC_FLOW_OUT_H

#include <qor/attrlog/family/FlowOutLevel.h>
#include <qor/dynamic/DynamicStreams.h>

namespace Qor {

class DynamicFlowOut final : public EntityFlowOut {
  public:
    DynamicFlowOut(Qor::Ptr<NboAttrLog::Out> const& out,
                   Qor::Ptr<Entity::QorNboAttrLogSa> const& adapter,
                   NboAttrLog::ConnectDesc const& desc, bool flag, AttributeId startAttr);
    ~DynamicFlowOut() override;

    bool hasDirtyAttributes() const override;

    template <class S>
    bool isDirty() const noexcept {
        return here().isDirty;
    }
    template <class S>
    void isDirtyIs(bool dirty) {
        here().isDirty = dirty;
        if (dirty) owes();
    }
    template <class S>
    bool hasSynced() const noexcept {
        return here().hasSynced;
    }
    template <class S>
    void hasSyncedIs(bool synced) {
        here().hasSynced = synced;
    }
    template <class S>
    DirtyKeyMap<DynamicKey>& dirtyKeys() noexcept {
        return *here().keys;
    }
    template <class S>
    void dirtyKeyIs(DynamicKey const& key, bool dirty) {
        markKey(key, dirty);
    }
    template <class S>
    bool dirtyKeyDel(DynamicKey const& key) {
        return static_cast<bool>(here().keys->memberDel(key));
    }
    template <class S>
    void dirtyKeysDelAll() {
        deleteAll(*here().keys);
    }

  private:
    struct Owed {
        bool isDirty = false;
        bool hasSynced = true;
        std::unique_ptr<DirtyKeyMap<DynamicKey>> keys = {};  // of collections
    };
    Owed& here() noexcept { return owed_[DynamicScope::attribute().index]; }
    Owed const& here() const noexcept { return owed_[DynamicScope::attribute().index]; }
    void markKey(DynamicKey const& key, bool dirty);

    std::vector<Owed> owed_;
};

}  // namespace Qor

#endif
