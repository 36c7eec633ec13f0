// The handlers of entities that an entity owns: the child is announced, and then sends itself. The
// same handler is where a child that the peer announced gets its adapter: the record's reader calls
// the entity's setter, and the telling leads here while the record is still being read.
#ifndef QOR_ATTRLOG_FAMILY_CHILDOUT_H
#define QOR_ATTRLOG_FAMILY_CHILDOUT_H

#include <qor/attrlog/family/ReferenceOut.h>
#include <qor/attrlog/flow/Demuxer.h>
#include <qor/attrlog/flow/RingRewrite.h>
#include <qor/core/ValidPtr.h>

namespace Qor {

template <class S>
using ChildAdapterOf = typename S::Target::QorNboAttrLogSa;

/// Gives a child that the peer announced its adapter, under the id that the record tells.
template <class S, class Adapter>
void takeAnnouncedChild(Adapter& adapter, typename S::Target& child) {
    Ptr<NboAttrLog::Out> const out = adapter.nboAttrLogOut();
    auto* const in = dynamic_cast<NboAttrLog::In*>(out->in());
    auto* const demuxer = in ? in->demuxer() : nullptr;
    if (!demuxer) return;
    auto const flags = AdapterState::ofChild(adapter.state());
    auto const fresh = child.qorNboAttrLogSaIs(flags, 1, out, adapter.msgChannel());
    U64 const position = in->readPosition();
    EntityId const id = in->nextEntityId();
    if (fresh->entityId() != id) fresh->doEntityIdIs(id, Ptr<NboAttrLog::Demuxer>(demuxer), true);
    if (!adapter.hasUnifiedEntityId()) {
        NboAttrLog::rewriteEntityId(*in, position, adapter.entityId());
    }
    fresh->remounted();
}

/// Of a child whose class is not known when this is compiled, its class's own maker is asked.
template <class S>
Ptr<ChildAdapterOf<S>> newChildAdapter(AdapterState::Bits flags,
                                       Ptr<typename S::Target> const& child, U32 version,
                                       Ptr<NboAttrLog::Out> const& out, PtrInterface* owner) {
    if constexpr (std::is_same_v<typename S::Target, Entity>) {
        return child->qorNboAttrLogSaIs(flags, version, out, owner);
    } else {
        return ChildAdapterOf<S>::QorNboAttrLogSaIs(flags, child, version, out, owner);
    }
}

/// ANboAttrLogAdapterIs: the child's adapter, made and announced if the peer doesn't know it.
template <class S, class Adapter>
Ptr<ChildAdapterOf<S>> announceChild(Adapter& adapter, AdapterState::Bits flags,
                                     Ptr<typename S::Target> const& child, U32 version,
                                     Ptr<NboAttrLog::Out> const& out, PtrInterface* owner) {
    using Token = NboAttrLog::Out::TransactToken;
    auto* const known = child->qorNboAttrLogSa(Ptr<NboAttrLog::Out const>(out));
    Ptr<ChildAdapterOf<S>> result(dynamic_cast<ChildAdapterOf<S>*>(known));
    bool isNew = false;
    if (result) {
        result->stateIs(AdapterState::replaced(result->state(), flags));
        result->remounted();
        if (result->has(AdapterState::adapterAnnounced)) return result;
    } else {
        result = newChildAdapter<S>(flags, child, version, out, owner);
        result->qorOnInit();
        isNew = true;
    }
    adapter.beginRecord(S::id, NboAttrLog::adapterAnnounceCode);
    out << Token::begin << child->name() << result->entityId() << Token::end;
    if (isNew) result->isAnnounced();
    return validPtr(result);
}

/// ANboAttrLogAdapterDel.
template <class S, class Adapter>
void deleteChildAdapter(Adapter& adapter, Ptr<typename S::Target> const& child) {
    if (child)
        NboAttrLog::deleteAdapter(*child, Ptr<NboAttrLog::Out const>(adapter.nboAttrLogOut()));
}

/// Announces the child and, while a whole state is sent, lets it send its own.
template <class S, class Adapter>
void sendChild(Adapter& adapter, Ptr<typename S::Target> const& child) {
    auto const flags = AdapterState::ofChild(adapter.state());
    Ptr<NboAttrLog::Out> const out = adapter.nboAttrLogOut();
    auto const announced = announceChild<S>(adapter, flags, child, 1, out, adapter.msgChannel());
    adapter.doFixChildFlags(announced);
    bool const whole =
        adapter.syncMode() == StreamAdapter::resync || adapter.handlingScheduledFlowOut();
    if (whole) announced->doThis();
}

/// qorHandleASerializeSing of an owning collection; a null child is a removal. Whether nothing is
/// owed for the key.
template <class S, class Adapter>
bool serializeChildMember(Adapter& adapter, typename S::Key const& key,
                          Ptr<typename S::Target> const& child) {
    using Token = NboAttrLog::Out::TransactToken;
    OutboundGuard const guard(adapter, S::id, true);
    if (!guard.childMayGo(S::name)) return guard.isNothingOwed();
    if (guard.wasActive()) {
        if (child) takeAnnouncedChild<S>(adapter, *child);
        return true;
    }
    if (!keyGoesNow<S>(adapter, *guard.out(), key)) return false;
    if (!child) {
        adapter.beginChildRemoval(S::id);
        guard.out() << Token::begin << key << Token::end;
        adapter.removalSent();
    } else if (!writeWhole([&] { sendChild<S>(adapter, child); })) {
        keepForLater<S>(adapter, key);
        return false;
    }
    return true;
}

/// onA() of a single child.
template <class S, class Adapter>
void serializeChild(Adapter& adapter) {
    using Token = NboAttrLog::Out::TransactToken;
    Ptr<typename S::Target> const child = S::get(entityOf<S>(adapter));
    OutboundGuard const guard(adapter, S::id, true);
    if (!guard.childMayGo(S::name)) return;
    if (guard.wasActive()) {
        if (child) takeAnnouncedChild<S>(adapter, *child);
        return;
    }
    if (!valueGoesNow<S>(adapter, *guard.out())) return;
    if (!child) {
        adapter.beginChildRemoval(S::id, 0);
        guard.out() << Token::begin << Token::end;
        adapter.removalSent();
    } else if (!writeWhole([&] { sendChild<S>(adapter, child); })) {
        auto& flow = flowFor(adapter, S::id);
        flow.template isDirtyIs<S>(true);
        flow.retryLaterIs(true);
    }
}

}  // namespace Qor

#endif
