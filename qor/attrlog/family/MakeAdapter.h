// How the adapter of an entity is found, made and ended, once for all classes.
#ifndef QOR_ATTRLOG_FAMILY_MAKEADAPTER_H
#define QOR_ATTRLOG_FAMILY_MAKEADAPTER_H

#include <qor/attrlog/family/AdapterLevel.h>

namespace Qor {

/// X::QorNboAttrLogSa::QorNboAttrLogSaIs: a new adapter with its companion.
template <class Adapter, class X>
Ptr<Adapter> makeAdapter(AdapterState::Bits bits, Ptr<X> const& entity, U32 version,
                         Ptr<NboAttrLog::Out> const& out, PtrInterface* owner) {
    auto adapter = validPtr(make<Adapter>(bits, version, out, owner));
    using Hearing = typename Adapter::QorNboAttrLogSaAdapter_;
    adapter->companionIs(Hearing::QorNboAttrLogSaAdapter_Is(entity, adapter));
    if (bits.bit(6)) adapter->isWeakReferenceIs(true);
    if (entity) adapter->attachedTo(*entity);
    adapter->syncModeIs(adapter->syncMode());
    adapter->hasNotificationActiveIs(true);
    return adapter;
}

/// X::qorNboAttrLogSaIs.
template <class X>
Ptr<Entity::QorNboAttrLogSa> findOrMakeAdapter(X& entity, AdapterState::Bits bits, U32 version,
                                               Ptr<NboAttrLog::Out> const& out,
                                               PtrInterface* owner) {
    using Adapter = typename X::QorNboAttrLogSa;
    static_cast<void>(validPtr(out));
    Ptr<NboAttrLog::Out const> const reader(out);
    if (auto* const known = entity.qorNboAttrLogSa(reader)) {
        if (dynamic_cast<Adapter*>(known)) {
            auto const mask = AdapterState::Bits::notificationBitMask();
            if ((known->state() & mask) != bits) {
                known->stateIs(AdapterState::replaced(known->state(), bits));
            }
            return Ptr<Entity::QorNboAttrLogSa>(known);
        }
        entity.qorNboAttrLogSaDel(reader);
    }
    return makeAdapter<Adapter>(bits, Ptr<X>(&entity), version, out, owner);
}

/// What the destructor of a class's adapter does.
template <class Adapter>
void endAdapter(Adapter& adapter) {
    using Hearing = typename Adapter::QorNboAttrLogSaAdapter_;
    if (auto* const companion = static_cast<Hearing*>(adapter.companion())) {
        companion->qorReactorAdapterIs(nullptr);
    }
    adapter.endAdapter();
}

}  // namespace Qor

#endif
