#include <qor/dynamic/DynamicFlowOut.h>

#include <algorithm>

namespace Qor {

DynamicFlowOut::DynamicFlowOut(Qor::Ptr<NboAttrLog::Out> const& out,
                               Qor::Ptr<Entity::QorNboAttrLogSa> const& adapter,
                               NboAttrLog::ConnectDesc const& desc, bool flag,
                               AttributeId startAttr)
    : EntityFlowOut(out, adapter, desc, flag, startAttr) {
    auto const& entity = static_cast<DynamicEntity const&>(*adapter->qorNotifierEntity());
    for (DynamicAttribute const& attribute : entity.dynamicType().table()) {
        Owed& owed = owed_.emplace_back();
        bool const isOwed = attribute.isStreamed() && startAttr <= attribute.id;
        owed.isDirty = isOwed && !attribute.isKeyed();
        owed.hasSynced = !(isOwed && attribute.isKeyed());
        if (attribute.isKeyed()) owed.keys = std::make_unique<DirtyKeyMap<DynamicKey>>();
    }
}

DynamicFlowOut::~DynamicFlowOut() = default;

bool DynamicFlowOut::hasDirtyAttributes() const {
    return EntityFlowOut::hasDirtyAttributes() ||
           std::any_of(owed_.begin(), owed_.end(), [](Owed const& owed) {
               return owed.isDirty || !owed.hasSynced || (owed.keys && owed.keys->size() != 0);
           });
}

void DynamicFlowOut::markKey(DynamicKey const& key, bool dirty) {
    DirtyKeyMap<DynamicKey>& keys = *here().keys;
    if (auto* const member = keys.member(key)) {
        member->isDirtyIs(dirty);
    } else {
        auto fresh = make<DirtyKey<DynamicKey>>(key, dirty);
        keys.newMember(fresh, fresh->fwkHash());
    }
    owes();
}

}  // namespace Qor
