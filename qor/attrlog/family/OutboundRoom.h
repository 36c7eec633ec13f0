// What a handler does when the ring is short or a resynchronisation runs: whether it writes now, or
// notes what is owed.
#ifndef QOR_ATTRLOG_FAMILY_OUTBOUNDROOM_H
#define QOR_ATTRLOG_FAMILY_OUTBOUNDROOM_H

#include <qor/attrlog/family/FlowOutLevel.h>
#include <qor/attrlog/flow/FlowOutHold.h>

namespace Qor {

template <class S, class Adapter>
typename S::Entity const& entityOf(Adapter const& adapter) {
    return static_cast<typename S::Entity const&>(*adapter.qorRawEntity());
}

/// The adapter's flow as its own level's; null while none runs.
template <class Adapter>
typename Adapter::FlowOut* flowOf(Adapter& adapter) noexcept {
    return static_cast<typename Adapter::FlowOut*>(adapter.StreamAdapter::flowOut());
}

/// The same while a flow is in charge, null in steady state.
template <class Adapter>
typename Adapter::FlowOut* flowInCharge(Adapter& adapter) noexcept {
    return adapter.steadyState() ? nullptr : flowOf(adapter);
}

/// The flow, made if there is none, and working on that attribute.
template <class Adapter>
typename Adapter::FlowOut& flowFor(Adapter& adapter, AttributeId id) {
    return static_cast<typename Adapter::FlowOut&>(adapter.flowOutFor(id));
}

/// Whether a record may not pass the flow in charge. A child that the flow has still to send goes
/// with it alone, since it is sent whole only there: the peer may hold one of its name from before,
/// which only the snapshot's end takes away.
template <class S, class Adapter>
bool waitsForFlow(Adapter const& adapter, typename Adapter::FlowOut const& flow) noexcept {
    if (adapter.handlingScheduledFlowOut()) return false;
    if constexpr (S::kind == StreamKind::childMember || S::kind == StreamKind::entry) {
        return !flow.template hasSynced<S>();
    } else {
        return S::kind == StreamKind::child && flow.template isDirty<S>();
    }
}

/// Whether a value is written now; else it is marked.
template <class S, class Adapter>
bool valueGoesNow(Adapter& adapter, NboAttrLog::Out const& out) {
    bool const hasRoom = out.hasSufficientBuffer();
    if (auto* const flow = flowInCharge(adapter)) {
        bool const goes = adapter.prepareImmediateTransmission(
            S::id, !hasRoom || waitsForFlow<S>(adapter, *flow));
        flow->template isDirtyIs<S>(!goes);
        return goes;
    }
    if (hasRoom || adapter.handlingScheduledFlowOut()) [[likely]] {
        return true;
    }
    flowFor(adapter, S::id).template isDirtyIs<S>(true);
    return false;
}

/// Whether the flow stands somewhere in the collection, and so may have sent a part of it.
template <class S, class Flow>
bool isUnderWay(Flow const& flow) noexcept {
    return flow.attrId() == S::id &&
           (flow.bookmark() != nullptr || flow.walkDone() || flow.valueIterKey());
}

/// The whole collection is owed, as a snapshot from its first key on, in the place of single keys.
template <class S, class Flow>
void oweWhole(Flow& flow) {
    using Key = typename S::Key;
    if (isUnderWay<S>(flow)) {
        flow.pendingAbortIs(S::id, true);
        if (flow.bookmark()) NboAttrLog::qorFlowOutBookmarkDeq<Key>(flow);
        if (flow.valueIterKey()) {
            NboAttrLog::qorFlowOutValueDeq(flow);
            NboAttrLog::qorFlowOutValueKeyDeq<Key>(flow);
        }
        flow.walkDoneIs(false);
    }
    flow.template dirtyKeysDelAll<S>();
    flow.template hasSyncedIs<S>(false);
}

/// Whether more keys are owed than the collection has twice.
template <class S, class Adapter>
bool hasTooManyMarks(Adapter const& adapter, typename Adapter::FlowOut& flow) {
    constexpr U32 spare = NboAttrLog::FlowOut::spareMarks;
    U32 const marks = flow.template dirtyKeys<S>().size();
    return marks > spare && marks - spare > U64{2} * S::Attr::map(entityOf<S>(adapter)).size();
}

/// Marks a key outside of the flow's turns. A peer that does not read is owed no more than the
/// collection, however many keys came and went, and where that is owed whole nothing is marked. A
/// copy keeps each mark, which also says that a write of its own is to be kept.
template <class S, class Adapter>
void markKey(Adapter& adapter, typename Adapter::FlowOut& flow, typename S::Key const& key) {
    bool const keepsAll = adapter.handlingScheduledFlowOut() || adapter.has(AdapterState::isCopy);
    if (keepsAll) return flow.template dirtyKeyIs<S>(key, true);
    if (!flow.template hasSynced<S>() && !isUnderWay<S>(flow)) return flow.owes();
    flow.template dirtyKeyIs<S>(key, true);
    if (hasTooManyMarks<S>(adapter, flow)) oweWhole<S>(flow);
}

/// Whether a key is written now; else it is marked.
template <class S, class Adapter>
bool keyGoesNow(Adapter& adapter, NboAttrLog::Out const& out, typename S::Key const& key) {
    bool const hasRoom = out.hasSufficientBuffer();
    if (auto* const flow = flowInCharge(adapter)) {
        bool const goes =
            adapter.prepareImmediateTransmission(S::id, waitsForFlow<S>(adapter, *flow)) && hasRoom;
        if (goes) {
            // A flow that waited for nothing else is over.
            if (flow->template dirtyKeyDel<S>(key)) flow->owes();
        } else {
            markKey<S>(adapter, *flow, key);
        }
        return goes;
    }
    if (hasRoom || adapter.handlingScheduledFlowOut()) [[likely]] {
        return true;
    }
    flowFor(adapter, S::id).template dirtyKeyIs<S>(key, true);
    return false;
}

}  // namespace Qor

#endif
