// What a snapshot's markers do at the receiver: what is held is marked at the beginning, what comes
// is unmarked, and what is still marked at the end has gone at the source.
#ifndef QOR_ATTRLOG_FAMILY_SWEEP_H
#define QOR_ATTRLOG_FAMILY_SWEEP_H

#include <qor/attrlog/family/ChildOut.h>
#include <qor/attrlog/family/Inbound.h>

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

/// Deletes a key without sending it back, unless the snapshot may have missed what the peer holds.
template <class S, class Adapter>
void sweepKey(Adapter& adapter, typename S::Key const& key) {
    {
        IsActiveAnchor const anchor(adapter);
        S::del(targetOf<S>(adapter), key);
    }
    if (hasCrossedSnapshot(adapter)) S::on(adapter, key);
}

template <class S, class Adapter>
void sweepMembers(Adapter& adapter, StreamAdapter::AttrTransactionType type) {
    auto& entity = targetOf<S>(adapter);
    if (type == StreamAdapter::abort || S::Attr::map(entity).size() == 0) return;
    walkUntilQuiet<S>(entity, [&](typename S::Member const& member) {
        if (type == StreamAdapter::begin) {
            member.qorMarkedForDeletionIs(true);
        } else if (member.qorMarkedForDeletion()) {
            sweepKey<S>(adapter, member.fwkKey());
        }
    });
}

template <class S, class Adapter>
void sweepChildren(Adapter& adapter, StreamAdapter::AttrTransactionType type) {
    if (type == StreamAdapter::abort) return;
    Ptr<NboAttrLog::Out const> const out(adapter.nboAttrLogOut());
    walkUntilQuiet<S>(targetOf<S>(adapter), [&](typename S::Member& member) {
        auto* const known = childOfMember<S>(&member)->qorNboAttrLogSa(out);
        if (type == StreamAdapter::begin) {
            if (known) known->flagIs(AdapterState::remountPending, true);
        } else if (!known || known->has(AdapterState::remountPending)) {
            typename S::Key const key = member.fwkKey();
            sweepKey<S>(adapter, key);
        }
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
