// The readers of announced children. The entity's own setter makes the child; its telling leads to
// the child's handler of <qor/attrlog/family/ChildOut.h>, which reads the id and makes the adapter.
#ifndef QOR_ATTRLOG_FAMILY_CHILDIN_H
#define QOR_ATTRLOG_FAMILY_CHILDIN_H

#include <qor/attrlog/family/ChildOut.h>
#include <qor/attrlog/family/CollectionOut.h>
#include <qor/attrlog/family/Crossing.h>

namespace Qor {

inline void goToBody(InboundRecord& record) {
    if (record.bodyOffset == 0) return;
    U64 const position = record.origin + record.bodyOffset;
    bool const isInRecord = position >= record.in.readPosition() && position <= record.in.limit();
    if (!isInRecord) throw AttrLogRecordException("a body outside its record");
    record.in.readPositionIs(position);
}

template <class S, class Adapter>
auto childOf(Adapter& adapter, Name const& key) {
    auto& entity = targetOf<S>(adapter);
    if constexpr (S::isKeyed) {
        return childOfMember<S>(S::Attr::map(entity).member(key));
    } else {
        return Ptr<typename S::Target>(S::get(entity));
    }
}

/// Refuses an id before anything is made under it, unless the child here bears it already.
template <class S, class Adapter>
void needFreshId(Adapter& adapter, Name const& key, EntityId const& id,
                 NboAttrLog::Demuxer& demuxer) {
    auto const child = childOf<S>(adapter, key);
    auto const* const known =
        child ? child->qorNboAttrLogSa(Ptr<NboAttrLog::Out const>(adapter.nboAttrLogOut()))
              : nullptr;
    if (!known || known->entityId() != id) demuxer.needPeersId(id);
}

template <class S, class Adapter>
void childChanged(Adapter& adapter, Name const& key) {
    if constexpr (S::isKeyed) {
        S::on(adapter, key);
    } else {
        S::on(adapter);
    }
}

template <class S, class Adapter>
void deleteChild(Adapter& adapter, Name const& key) {
    if constexpr (S::isKeyed) {
        S::del(targetOf<S>(adapter), key);
    } else {
        S::del(targetOf<S>(adapter));
    }
}

/// Makes the child. False when its name is in use by another.
template <class S, class Adapter>
bool makeChild(Adapter& adapter, Name const& key) {
    if constexpr (S::isKeyed) {
        Expect const expect(Exception::childId);
        try {
            S::set(targetOf<S>(adapter), key);
        } catch (NameInUseException const&) {
            return false;
        }
    } else {
        S::set(targetOf<S>(adapter), key);
    }
    return true;
}

/// Whether the child that stands here is one that the peer, when it wrote, did not know of: it is
/// on its way there, and what the peer says of the name concerns another.
template <class S, class Adapter>
bool isNewsToPeer(Adapter& adapter, Name const& key) {
    auto const child = childOf<S>(adapter, key);
    if (!child || adapter.has(AdapterState::isCopy)) return false;
    auto const* const known =
        child->qorNboAttrLogSa(Ptr<NboAttrLog::Out const>(adapter.nboAttrLogOut()));
    if (known) return known->isUnheardOf();
    return isOwed<S>(adapter, key);
}

/// Whether another child stands in the place of the one that the peer announces under `id`.
template <class S, class Adapter>
bool hasToMakeRoom(Adapter& adapter, InboundRecord& record, Name const& key, EntityId const& id) {
    auto const child = childOf<S>(adapter, key);
    if (record.demuxer.checkEphemeralEntityDeletion(child, id, S::isKeyed)) return true;
    bool const isOwn = child && adapter.has(AdapterState::isCopy) &&
                       !child->qorNboAttrLogSa(Ptr<NboAttrLog::Out const>(adapter.nboAttrLogOut()));
    if constexpr (S::isKeyed) {
        return isOwn && flowOf(adapter) && flowOf(adapter)->template dirtyKeys<S>().member(key);
    } else {
        return isOwn && isOwed<S>(adapter, key);
    }
}

/// Takes the child away, and what stands for it on this connection.
template <class S, class Adapter>
void takeDownChild(Adapter& adapter, Name const& key) {
    deleteChildAdapter<S>(adapter, childOf<S>(adapter, key));
    adapter.flagIs(AdapterState::isActive, true);
    deleteChild<S>(adapter, key);
}

/// Makes the child that the peer announces, or takes the one that stands here.
template <class S, class Adapter>
void takeChild(Adapter& adapter, InboundRecord& record, Name const& key, EntityId const& id) {
    bool const isMade = makeChild<S>(adapter, key);
    if (!adapter.isActive()) return;
    if (isMade && !hasToMakeRoom<S>(adapter, record, key, id)) {
        return childChanged<S>(adapter, key);
    }
    takeDownChild<S>(adapter, key);
    adapter.flagIs(AdapterState::isActive, true);
    makeChild<S>(adapter, key);
}

/// A child that gets a new id is another one to the peer: what refers to it is sent again.
template <class Adapter>
void oweReferencesTo(Adapter& adapter, Entity const& child) {
    Adapter::QorStreamed::forEach([&]<class R>() {
        if constexpr (R::kind == StreamKind::reference) {
            for (typename R::Attr::Map::IteratorConst at(&collectionOf<R>(adapter)); at; ++at) {
                if (R::Attr::valueOf(*at.member()).ptr() != &child) continue;
                flowFor(adapter, R::id).template dirtyKeyIs<R>(at.key(), true);
            }
        }
    });
}

/// The end of a child's record. What the peer announced may have gone there meanwhile, by a removal
/// that was on its way: then it is announced to the peer in turn, under a new id and whole. What it
/// removed may have come there again.
template <class S, class Adapter>
void settleChild(Adapter& adapter, InboundRecord const& record, Name const& key) {
    adapter.flagIs(AdapterState::isActive, false);
    if (adapter.has(AdapterState::isCopy)) return forgive<S>(adapter, key);
    if (!record.hasCrossed) return;
    auto const child = childOf<S>(adapter, key);
    if (!child) return childChanged<S>(adapter, key);
    if (!adapter.hasCrossedRemoval() && !isOwed<S>(adapter, key)) return;
    deleteChildAdapter<S>(adapter, child);
    oweReferencesTo(adapter, *child);
    bool goes = false;
    if constexpr (S::isKeyed) {
        goes = keyGoesNow<S>(adapter, *adapter.nboAttrLogOut(), key);
    } else {
        goes = valueGoesNow<S>(adapter, *adapter.nboAttrLogOut());
    }
    if (goes) writeWhole([&] { sendChild<S>(adapter, child, true); });
}

template <class S, class Adapter>
void readAnnouncement(Adapter& adapter, InboundRecord& record) {
    Name const key(record.in.nextString());
    goToBody(record);
    if (record.echoOnly) return childChanged<S>(adapter, key);
    family::needShallow(*adapter.qorNotifierEntity());
    EntityId const id = peekEntityId(record.in);
    if (record.demuxer.hasGoneHere(id)) return;
    auto const* const known = record.demuxer.adapter(id);
    bool const isKnown = known && known->qorNotifierEntity() == childOf<S>(adapter, key).ptr();
    if (!isKnown && isNewsToPeer<S>(adapter, key)) return;
    needFreshId<S>(adapter, key, id, record.demuxer);
    MsgChannel::DeserializingEidAnchor const anchor(id, adapter.qorNotifierEntity());
    takeChild<S>(adapter, record, key, id);
    if constexpr (S::isKeyed) {
        if (auto const child = childOf<S>(adapter, key)) child->qorMarkedForDeletionIs(false);
    }
    channelModeIs(adapter, MsgChannel::Mode::applied);
    settleChild<S>(adapter, record, key);
}

template <class S, class Adapter>
void readChildRemoval(Adapter& adapter, InboundRecord& record) {
    Name key;
    if constexpr (S::isKeyed) key = Name(record.in.nextString());
    if (record.echoOnly) return childChanged<S>(adapter, key);
    if (isNewsToPeer<S>(adapter, key)) return;
    takeDownChild<S>(adapter, key);
    settleChild<S>(adapter, record, key);
}

}  // namespace Qor

#endif
