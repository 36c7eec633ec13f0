// What happens after a record of the peer's, so that both ends hold the same in the end although
// both write. The original's word is the last: where the peer's write crossed something that the
// original had sent for the entity, or was sending, the original sends again what it holds now. A
// copy that was still to send the value that came has lost it, and sends it no more.
#ifndef QOR_ATTRLOG_FAMILY_CROSSING_H
#define QOR_ATTRLOG_FAMILY_CROSSING_H

#include <qor/attrlog/family/Inbound.h>
#include <qor/attrlog/family/OutboundRoom.h>
#include <qor/attrlog/flow/FlowOutHold.h>

namespace Qor {

/// Whether a handler let the adapter go: what is left of the copy stays as it is.
template <class Adapter>
bool hasLeft(Adapter const& adapter) {
    return !adapter.nboAttrLogOut();
}

/// In the place of a key, of an attribute that has none.
struct Unkeyed {};

/// A text of the attribute that is half sent; of that key, if it is keyed.
template <class S, class Adapter, class Key>
bool isHalfSent(Adapter& adapter, Key const& key) {
    auto* const flow = flowOf(adapter);
    if (!flow || flow->attrId() != S::id || !flow->valueIter()) return false;
    if constexpr (S::kind == StreamKind::textMember) {
        return NboAttrLog::qorFlowOutValueKeyMatches(*flow, key);
    } else {
        return !flow->valueIterKey();
    }
}

/// Whether the value is still to be sent to the peer.
template <class S, class Adapter, class Key>
bool isOwed(Adapter& adapter, Key const& key) {
    auto* const flow = flowOf(adapter);
    if (!flow) return false;
    if constexpr (S::isKeyed) {
        return !flow->template hasSynced<S>() || flow->template dirtyKeys<S>().member(key);
    } else {
        return flow->template isDirty<S>();
    }
}

/// Whether a change of the name waits to be sent, and not only as part of its collection.
template <class S, class Adapter, class Key>
bool isMarked(Adapter& adapter, Key const& key) {
    if constexpr (S::isKeyed) {
        auto* const flow = flowOf(adapter);
        return flow && flow->template dirtyKeys<S>().member(key);
    } else {
        return isOwed<S>(adapter, key);
    }
}

/// Whether what the peer announces has stood here and gone, which the peer is to hear of. What is
/// only read may be announced again.
template <class Adapter>
bool isOfTheGone(Adapter& adapter, NboAttrLog::Demuxer& demuxer, EntityId const& id) {
    if (demuxer.hasGoneHere(id)) return true;
    return !adapter.has(AdapterState::readOnlyLocal) &&
           demuxer.isOfTheGone(id, adapter.has(AdapterState::isCopy));
}

/// A child goes by the peer's word: a copy looks again at the references that it owes.
template <class Adapter>
void tellTargetGone(Adapter& adapter) {
    auto* const demuxer = adapter.streamDemuxer();
    if (demuxer && adapter.has(AdapterState::isCopy)) demuxer->targetHasGone();
}

/// What was owed of the value is owed no more.
template <class S, class Adapter, class Key>
void forgive(Adapter& adapter, Key const& key) {
    auto* const flow = flowOf(adapter);
    if (!flow) return;
    if (isHalfSent<S>(adapter, key)) {
        flow->pendingAbortIs(S::id, true);
        NboAttrLog::qorFlowOutValueDeq(*flow);
        if constexpr (S::kind == StreamKind::textMember) {
            NboAttrLog::qorFlowOutValueKeyDeq<Key>(*flow);
        }
    }
    if constexpr (S::isKeyed) {
        flow->template dirtyKeyDel<S>(key);
    } else {
        flow->template isDirtyIs<S>(false);
    }
    flow->owes();
}

/// Of a copy: whether what was written here is still to be sent, and so comes behind the peer's.
/// The peer's is not applied: it may be what was written here before, said once more. A reference
/// that waits for its target may never be sent, and what a whole state owes was never written.
template <class S, class Adapter, class Key = Unkeyed>
bool isToBeReplaced(Adapter& adapter, Key const& key = {}) {
    auto* const flow = adapter.has(AdapterState::isCopy) ? flowOf(adapter) : nullptr;
    if (!flow || S::kind == StreamKind::reference) return false;
    if (isHalfSent<S>(adapter, key)) return true;
    if constexpr (S::isKeyed) {
        return flow->template dirtyKeys<S>().member(key) != nullptr;
    } else {
        return !flow->isWhole() && flow->template isDirty<S>();
    }
}

/// The original sends what it holds.
template <class S, class Adapter, class Key>
void sendAgain(Adapter& adapter, Key const& key) {
    adapter.flagIs(AdapterState::isActive, false);
    if constexpr (S::isKeyed) {
        S::on(adapter, key);
    } else {
        S::on(adapter);
    }
}

/// In front of every record that sets or removes a value: a copy owes it no more. What a handler
/// writes there while the record is applied comes behind the peer's, and is owed.
template <class S, class Adapter, class Key = Unkeyed>
void giveWay(Adapter& adapter, Key const& key = {}) {
    if (adapter.has(AdapterState::isCopy)) forgive<S>(adapter, key);
}

/// The end of every record that set or removed a value. Where it has changed nothing, the peer
/// holds that value already or is about to hear of it.
template <class S, class Adapter, class Key = Unkeyed>
void settle(Adapter& adapter, InboundRecord const& record, Key const& key = {}) {
    if (adapter.has(AdapterState::isCopy) || adapter.isActive()) return;
    if (record.hasCrossed || isHalfSent<S>(adapter, key)) [[unlikely]] {
        sendAgain<S>(adapter, key);
    }
}

}  // namespace Qor

#endif
