// One record on its way in, and what all its readers share.
#ifndef QOR_ATTRLOG_FAMILY_INBOUND_H
#define QOR_ATTRLOG_FAMILY_INBOUND_H

#include <qor/attrlog/MessageSize.h>
#include <qor/attrlog/family/StreamAttribute.h>
#include <qor/attrlog/flow/Demuxer.h>
#include <qor/core/Expect.h>
#include <qor/model/EnumText.h>

namespace Qor {

/// Marks the adapter as applying a record; cleared at the end, whatever happened.
class IsActiveAnchor {
  public:
    explicit IsActiveAnchor(StreamAdapter& adapter) : adapter_(adapter) {
        adapter_.flagIs(AdapterState::isActive, true);
    }
    ~IsActiveAnchor() { adapter_.flagIs(AdapterState::isActive, false); }
    IsActiveAnchor(IsActiveAnchor const&) = delete;
    IsActiveAnchor& operator=(IsActiveAnchor const&) = delete;

  private:
    StreamAdapter& adapter_;
};

struct InboundRecord {
    NboAttrLog::In& in;
    NboAttrLog::Demuxer& demuxer;
    AttributeId id;
    U32 size;
    /// The record is read and not applied: the attribute's present state is sent instead.
    bool echoOnly;
    /// Of an alias frame: where the field behind the key stands, from the record's start; 0 if it
    /// follows directly.
    U32 bodyOffset = 0;
    U64 origin = 0;
    /// The peer wrote it before it had taken all that was sent to it for the entity.
    bool hasCrossed = false;
};

/// An enumeration's number. One that is unknown here is counted and kept.
template <class E>
E nextEnumeration(NboAttrLog::In& in, NboAttrLog::Demuxer& demuxer) {
    U32 const number = in.nextU32();
    Expect const expect(Exception::rangeId);
    if (number < EnumTable<E>::names.size()) [[likely]] {
        return static_cast<E>(number);
    }
    demuxer.unknownEnumsInc(1);
    return static_cast<E>(number);
}

template <class Value>
Value nextAttributeValue(InboundRecord& record) {
    if constexpr (std::is_enum_v<Value>) {
        return nextEnumeration<Value>(record.in, record.demuxer);
    } else {
        return NboAttrLog::nextValue<Value>(record.in);
    }
}

/// The id that comes next, left where it is.
inline EntityId peekEntityId(NboAttrLog::In& in) {
    U64 const position = in.readPosition();
    EntityId const id = in.nextEntityId();
    in.readPositionIs(position);
    return id;
}

template <class S, class Adapter>
typename S::Entity& targetOf(Adapter& adapter) {
    return static_cast<typename S::Entity&>(*adapter.qorRawEntity());
}

namespace family {

/// Raises AttrLogRecordException where the owner of an announced entity stands too deep: what walks
/// a tree, and what ends one, goes down step by step.
QOR_EXPORT void needShallow(Entity const& owner);

[[noreturn]] QOR_EXPORT void throwKeyTooLong(char const* attributeName);

}  // namespace family

/// The key that comes next. One of a text is refused if the text's records could not hold it on
/// their way to others.
template <class S>
typename S::Key nextKey(NboAttrLog::In& in) {
    auto key = NboAttrLog::nextValue<typename S::Key>(in);
    if constexpr (S::kind == StreamKind::textMember) {
        if (!NboAttrLog::fitsTextRecord(key)) [[unlikely]] {
            family::throwKeyTooLong(S::name);
        }
    }
    return key;
}

inline void channelModeIs(StreamAdapter const& adapter, MsgChannel::Mode mode) {
    if (adapter.msgChannel()) adapter.msgChannel()->modeIs(mode);
}

/// What came under a key stays when its snapshot ends.
template <class S>
void keepMember(typename S::Entity& entity, typename S::Key const& key) {
    if (auto* const member = S::Attr::map(entity).member(key)) {
        if (member->qorMarkedForDeletion()) member->qorMarkedForDeletionIs(false);
    }
}

}  // namespace Qor

#endif
