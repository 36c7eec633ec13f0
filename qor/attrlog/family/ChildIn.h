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
/// on its way there, and a removal concerns another.
template <class S, class Adapter>
bool isNewsToPeer(Adapter& adapter, Name const& key) {
    auto const child = childOf<S>(adapter, key);
    if (!child) return false;
    auto const* const known =
        child->qorNboAttrLogSa(Ptr<NboAttrLog::Out const>(adapter.nboAttrLogOut()));
    return known ? known->isUnheardOf() : isOwed<S>(adapter, key);
}

/// Of a copy: its own child has to make room for the original's, which has not heard of it yet, or
/// has gone here, which is still owed. The original may take it all the same, if its own has gone
/// by then, and so hears that it went. What was taken meanwhile is not told: this removal takes
/// nothing but that child.
template <class S, class Adapter>
void takeBack(Adapter& adapter, Name const& key, EntityId const& id) {
    using Token = NboAttrLog::Out::TransactToken;
    if (!adapter.has(AdapterState::isCopy)) return;
    auto const& out = adapter.nboAttrLogOut();
    auto const child = childOf<S>(adapter, key);
    auto const* const known =
        child ? child->qorNboAttrLogSa(Ptr<NboAttrLog::Out const>(out)) : nullptr;
    if (known && known->entityId() == id) return;
    bool const mayBeOnItsWay = (known && known->isUnheardOf()) || isMarked<S>(adapter, key);
    if (!mayBeOnItsWay) return;
    out->nextHeaderIs({adapter.entityId(), -S::id, S::isKeyed ? U8{1} : U8{0}});
    out << Token::begin;
    if constexpr (S::isKeyed) out << String8(key);
    out << Token::end;
}

/// Whether another child stands in the place of the one that the peer announces under `id`.
/// `wasMarked` when the record came.
template <class S, class Adapter>
bool hasToMakeRoom(Adapter& adapter, InboundRecord& record, Name const& key, EntityId const& id,
                   bool wasMarked) {
    auto const child = childOf<S>(adapter, key);
    if (record.demuxer.checkEphemeralEntityDeletion(child, id, S::isKeyed)) return true;
    bool const isOwn = child && adapter.has(AdapterState::isCopy) &&
                       !child->qorNboAttrLogSa(Ptr<NboAttrLog::Out const>(adapter.nboAttrLogOut()));
    return isOwn && wasMarked;
}

/// Takes the child away, and what stands for it on this connection.
template <class S, class Adapter>
void takeDownChild(Adapter& adapter, Name const& key) {
    deleteChildAdapter<S>(adapter, childOf<S>(adapter, key));
    tellTargetGone(adapter);
    adapter.flagIs(AdapterState::isActive, true);
    deleteChild<S>(adapter, key);
}

/// Makes the child that the peer announces, or takes the one that stands here. What was still owed
/// of the name is settled by it; what a handler does meanwhile is not.
template <class S, class Adapter>
void takeChild(Adapter& adapter, InboundRecord& record, Name const& key, EntityId const& id) {
    bool const wasMarked = isMarked<S>(adapter, key);
    forgive<S>(adapter, key);
    bool const isMade = makeChild<S>(adapter, key);
    if (!adapter.isActive() || hasLeft(adapter)) return;
    if (isMade && !hasToMakeRoom<S>(adapter, record, key, id, wasMarked)) {
        return childChanged<S>(adapter, key);
    }
    takeDownChild<S>(adapter, key);
    adapter.flagIs(AdapterState::isActive, true);
    makeChild<S>(adapter, key);
}

/// The end of a child's record. What the peer removed may have been announced there again.
template <class S, class Adapter>
void settleChild(Adapter& adapter, InboundRecord const& record, Name const& key) {
    adapter.flagIs(AdapterState::isActive, false);
    if (adapter.has(AdapterState::isCopy) || childOf<S>(adapter, key)) return;
    if (record.hasCrossed) childChanged<S>(adapter, key);
}

template <class S, class Adapter>
void readAnnouncement(Adapter& adapter, InboundRecord& record) {
    Name const key(record.in.nextString());
    goToBody(record);
    if (record.echoOnly) return childChanged<S>(adapter, key);
    family::needShallow(*adapter.qorNotifierEntity());
    EntityId const id = peekEntityId(record.in);
    if (isOfTheGone(adapter, record.demuxer, id)) return;
    auto const* const known = record.demuxer.adapter(id);
    bool const isKnown = known && known->qorNotifierEntity() == childOf<S>(adapter, key).ptr();
    bool const ownStays = !isKnown && !adapter.has(AdapterState::isCopy);
    if (ownStays && isNewsToPeer<S>(adapter, key)) return;
    needFreshId<S>(adapter, key, id, record.demuxer);
    takeBack<S>(adapter, key, id);
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
    // What a copy has let go since it announced it may be on its way: its own removal still goes.
    if (!childOf<S>(adapter, key) && adapter.has(AdapterState::isCopy)) return;
    if (isNewsToPeer<S>(adapter, key)) return;
    giveWay<S>(adapter, key);
    takeDownChild<S>(adapter, key);
    settleChild<S>(adapter, record, key);
}

}  // namespace Qor

#endif
