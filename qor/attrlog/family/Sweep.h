// What a snapshot's markers do at the receiver: what is held is marked at the beginning, what comes
// is unmarked, and what is still marked at the end has gone at the source.
#ifndef QOR_ATTRLOG_FAMILY_SWEEP_H
#define QOR_ATTRLOG_FAMILY_SWEEP_H

#include <qor/attrlog/family/ChildOut.h>
#include <qor/attrlog/family/Crossing.h>

namespace Qor {

/// Walks a collection until a walk has changed nothing. `visit` may delete the member.
template <class S, class Visit>
void walkUntilQuiet(typename S::Entity& entity, Visit const& visit) {
    using Walk = typename S::Attr::Map::IteratorConst;
    Ptr<typename S::Entity> const held(&entity);
    auto const& map = S::Attr::map(entity);
    U32 seen = 0;
    do {
        seen = map.version();
        for (Walk at(&map); at;) {
            Ptr<typename S::Member> const member = at.member();
            ++at;
            visit(*member);
        }
    } while (map.version() != seen);
}

/// Whether something was sent to the peer for the entity that it had not taken when its snapshot
/// began; never of a copy, whose snapshots are the original's.
template <class Adapter>
bool hasCrossedSnapshot(Adapter& adapter) {
    auto const* const demuxer = adapter.qorRawDemuxer();
    auto const* const flow = demuxer ? demuxer->flowIn(adapter) : nullptr;
    return adapter.hasSentSince(flow ? flow->heardAtBegin() : 0);
}

/// Deletes a key without sending it back.
template <class S, class Adapter>
void sweepKey(Adapter& adapter, typename S::Key const& key) {
    IsActiveAnchor const anchor(adapter);
    S::del(targetOf<S>(adapter), key);
}

/// Whether a key that the peer's snapshot lacks stays although it is marked: of a copy, where it is
/// still to be sent.
template <class S, class Adapter>
bool isStillToCome(Adapter& adapter, typename S::Key const& key) {
    auto* const flow = adapter.has(AdapterState::isCopy) ? flowOf(adapter) : nullptr;
    return flow && (flow->template dirtyKeys<S>().member(key) || isHalfSent<S>(adapter, key));
}

/// Where the peer had not heard of all that was sent for the entity when its snapshot began, what
/// it lacks is on its way to it, and nothing is marked. What has crossed since goes to it again.
template <class S, class Adapter>
void sweepMembers(Adapter& adapter, StreamAdapter::AttrTransactionType type) {
    auto& entity = targetOf<S>(adapter);
    if (type == StreamAdapter::abort || S::Attr::map(entity).size() == 0) return;
    if (type == StreamAdapter::begin && adapter.hasCrossed()) return;
    bool const goesAgain = hasCrossedSnapshot(adapter);
    walkUntilQuiet<S>(entity, [&](typename S::Member const& member) {
        if (hasLeft(adapter)) return;
        if (type == StreamAdapter::begin) return member.qorMarkedForDeletionIs(true);
        if (!member.qorMarkedForDeletion()) return;
        // NOLINTNEXTLINE(performance-unnecessary-copy-initialization): the member may go.
        typename S::Key const key = member.fwkKey();
        bool const stays = goesAgain || isStillToCome<S>(adapter, key);
        if (!stays) return sweepKey<S>(adapter, key);
        member.qorMarkedForDeletionIs(false);
        if (goesAgain) S::on(adapter, key);
    });
}

/// One child at a marker. What the peer had not heard of when its snapshot began stays: it is on
/// its way there, or owed.
template <class S, class Adapter>
void sweepChild(Adapter& adapter, typename S::Key const& key, Entity& child,
                StreamAdapter::AttrTransactionType type) {
    if (hasLeft(adapter)) return;
    Ptr<NboAttrLog::Out const> const out(adapter.nboAttrLogOut());
    auto* const known = child.qorNboAttrLogSa(out);
    if (type == StreamAdapter::begin) {
        if (known && !known->isUnheardOf()) known->flagIs(AdapterState::remountPending, true);
        return;
    }
    bool const isSwept =
        known ? known->has(AdapterState::remountPending) : !isOwed<S>(adapter, key);
    if (!isSwept) return;
    // NOLINTNEXTLINE(performance-unnecessary-copy-initialization): the member goes, and its key.
    typename S::Key const gone = key;
    bool const hasCrossed = hasCrossedSnapshot(adapter);
    tellTargetGone(adapter);
    sweepKey<S>(adapter, gone);
    if (hasCrossed) S::on(adapter, gone);
}

template <class S, class Adapter>
void sweepChildren(Adapter& adapter, StreamAdapter::AttrTransactionType type) {
    if (type == StreamAdapter::abort) return;
    walkUntilQuiet<S>(targetOf<S>(adapter), [&](typename S::Member& member) {
        sweepChild<S>(adapter, member.fwkKey(), *childOfMember<S>(&member), type);
    });
}

template <class S, class Adapter>
void markChild(Adapter& adapter, StreamAdapter::AttrTransactionType type) {
    auto const& child = S::get(targetOf<S>(adapter));
    if (type != StreamAdapter::begin || !child) return;
    auto* const known = child->qorNboAttrLogSa(Ptr<NboAttrLog::Out const>(adapter.nboAttrLogOut()));
    if (known) known->flagIs(AdapterState::remountPending, true);
}

/// A text that was half received is dropped when it is aborted.
template <class Adapter>
void endText(Adapter& adapter, AttributeId id, StreamAdapter::AttrTransactionType type) {
    auto* const demuxer = adapter.streamDemuxer();
    Ptr<NboAttrLog::FlowIn> const flow(demuxer ? demuxer->flowIn(adapter) : nullptr);
    if (!flow || flow->aid() != id || type == StreamAdapter::begin) return;
    bool const heldBack = flow->heldBack();
    demuxer->flowInDel(adapter.entityId());
    if (heldBack) adapter.doNotification(id, nullptr);
}

/// The half received text of one key, likewise; the snapshot goes on.
template <class Adapter>
void abortMemberText(Adapter& adapter) {
    auto* const demuxer = adapter.streamDemuxer();
    auto* const flow = demuxer ? demuxer->flowIn(adapter) : nullptr;
    if (!flow) return;
    demuxer->textDel(*flow);
    if (flow->idx()) flow->idxDel();
}

template <class S, class Adapter>
void handleTransactionOf(Adapter& adapter, StreamAdapter::AttrTransactionType type) {
    if constexpr (S::kind == StreamKind::text) {
        endText(adapter, S::id, type);
    } else if constexpr (S::kind == StreamKind::child) {
        markChild<S>(adapter, type);
    } else if constexpr (S::kind == StreamKind::childMember) {
        sweepChildren<S>(adapter, type);
    } else if constexpr (S::kind == StreamKind::entry) {
        S::sweep(adapter, type);
    } else if constexpr (S::isKeyed) {
        if (S::kind == StreamKind::textMember && type == StreamAdapter::abort) {
            abortMemberText(adapter);
        }
        sweepMembers<S>(adapter, type);
    }
}

}  // namespace Qor

#endif
