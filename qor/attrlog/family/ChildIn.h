// The readers of announced children. The entity's own setter makes the child; its telling leads to
// the child's handler of <qor/attrlog/family/ChildOut.h>, which reads the id and makes the adapter.
#ifndef QOR_ATTRLOG_FAMILY_CHILDIN_H
#define QOR_ATTRLOG_FAMILY_CHILDIN_H

#include <qor/attrlog/family/Inbound.h>

namespace Qor {

/// The id that comes next, left where it is.
inline EntityId peekEntityId(NboAttrLog::In& in) {
    U64 const position = in.readPosition();
    EntityId const id = in.nextEntityId();
    in.readPositionIs(position);
    return id;
}

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
                 NboAttrLog::Demuxer const& demuxer) {
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

template <class S, class Adapter>
void readAnnouncement(Adapter& adapter, InboundRecord& record) {
    Name const key(record.in.nextString());
    goToBody(record);
    if (record.echoOnly) return childChanged<S>(adapter, key);
    EntityId const id = peekEntityId(record.in);
    needFreshId<S>(adapter, key, id, record.demuxer);
    MsgChannel::DeserializingEidAnchor const anchor(id, adapter.qorNotifierEntity());
    bool const isMade = makeChild<S>(adapter, key);
    if (adapter.isActive()) {
        auto const child = childOf<S>(adapter, key);
        bool const makesRoom =
            !isMade || record.demuxer.checkEphemeralEntityDeletion(child, id, S::isKeyed);
        if (makesRoom) {
            deleteChild<S>(adapter, key);
            adapter.flagIs(AdapterState::isActive, true);
            makeChild<S>(adapter, key);
        } else {
            childChanged<S>(adapter, key);
        }
    }
    if constexpr (S::isKeyed) {
        if (auto const child = childOf<S>(adapter, key)) child->qorMarkedForDeletionIs(false);
    }
    channelModeIs(adapter, MsgChannel::Mode::applied);
}

template <class S, class Adapter>
void readChildRemoval(Adapter& adapter, InboundRecord& record) {
    Name key;
    if constexpr (S::isKeyed) key = Name(record.in.nextString());
    if (record.echoOnly) return childChanged<S>(adapter, key);
    deleteChild<S>(adapter, key);
}

}  // namespace Qor

#endif
