// The reader of an attribute log in network byte order: frames, and the values in them. What is
// read of a frame's payload ends at its closing token, wherever the stream goes on.
#ifndef QOR_ATTRLOG_NBOATTRLOGIN_H
#define QOR_ATTRLOG_NBOATTRLOGIN_H

#include <qor/attrlog/ByteConnectionIn.h>
#include <qor/attrlog/ConnectionOut.h>
#include <qor/attrlog/Declarations.h>
#include <qor/attrlog/MsgHeader.h>
#include <qor/core/Exception.h>

#include <bit>
#include <concepts>
#include <type_traits>

namespace Qor {

class Entity;

namespace NboAttrLog {

class Demuxer;

class QOR_EXPORT In : public ByteConnection::In {
  public:
    explicit In(U32 capacity = blockSize) : ByteConnection::In(capacity) { isAttrLogIs(true); }
    ~In() override;

    // IEEE 754 binary64.
    Seconds nextSeconds() { return std::bit_cast<Seconds>(nextU64()); }
    EntityId nextEntityId() { return EntityId(nextU64()); }
    // The entity that the next id names on this connection; null for a null id and for one that no
    // adapter stands under.
    Ptr<Entity> nextEntity();
    // The same as a T. Raises AttrLogEntityException where the entity is no T.
    template <class T>
    Ptr<T> nextEntity();

    // Begins to read the next frame: false while it has not all arrived. The read position stands
    // at the payload and reading is limited to it. Raises AttrLogRecordException, which names what
    // is wrong, with a frame that is too short or too long, of an unknown kind or without its
    // tokens; the stream can't be read on from there.
    bool nextFrame(Frame& frame);
    // Ends reading it, whatever was read of the payload, and gives its room back.
    void frameDone(Frame const& frame) {
        moreChunksIs(false);
        passTo(frame.end);
    }
    // Leaves it to be read later, from its beginning.
    void putBack(Frame const& frame) {
        moreChunksIs(false);
        limitIs(noLimit);
        readPositionIs(frame.end - frameOverhead - frame.payloadSize);
    }
    // The most that `size` of a frame may be.
    U32 greatestFrame() const noexcept { return greatestFrame_; }
    void greatestFrameIs(U32 bytes) noexcept { greatestFrame_ = bytes; }

    // Who serves this connection, or null.
    Demuxer* demuxer() const noexcept { return demuxer_; }
    void demuxerIs(Demuxer* demuxer) noexcept { demuxer_ = demuxer; }

  private:
    bool nextFrameInPieces(Frame& frame);
    void needTokens(U64 payload, U64 end) const;

    Demuxer* demuxer_ = nullptr;
    U32 greatestFrame_ = defaultGreatestFrame;
};

// Of a frame that lies in one piece, as nearly all do, and is as it should be.
inline bool In::nextFrame(Frame& frame) {
    using Token = Connection::Out::TransactToken;
    auto const bytes = piece();
    if (bytes.size() < frameOverhead) [[unlikely]] {
        return nextFrameInPieces(frame);
    }
    auto const* const at = bytes.data();
    auto const size = loadNetworkOrder<U32>(at);
    U8 const kind = at[4];
    bool const fits =
        size >= leastFrameSize && size <= greatestFrame_ && size <= bytes.size() - sizeof size;
    bool const isPlain = fits && kind <= static_cast<U8>(FrameKind::receipt) &&
                         at[frameHeadSize] == static_cast<U8>(Token::begin) &&
                         at[size + 3] == static_cast<U8>(Token::end);
    if (!isPlain) [[unlikely]] {
        return nextFrameInPieces(frame);
    }
    frame.end = readPosition() + sizeof size + size;
    frame.payloadSize = size - leastFrameSize;
    frame.kind = static_cast<FrameKind>(kind);
    frame.moreChunks = false;
    frame.header = loadHeader(at + 5);
    enterPiece(frameHeadSize + 1, frame.payloadSize, frame.end - 1);
    moreChunksIs(false);
    return true;
}

// A connection's incoming side as an attribute log's; null if it is none.
inline In* attrLogIn(Connection::In* in) noexcept {
    return in != nullptr && in->isAttrLog() ? static_cast<In*>(in) : nullptr;
}

[[noreturn]] QOR_EXPORT void throwWrongEntityType();

template <class T>
Ptr<T> In::nextEntity() {
    Ptr<Entity> const entity = nextEntity();
    if (!entity) return nullptr;
    auto* const wanted = dynamic_cast<T*>(entity.ptr());
    if (wanted == nullptr) throwWrongEntityType();
    return Ptr<T>(wanted);
}

// The next value of a type, as operator<< on the writer put it. Enumerations are not among them.
template <class T>
T nextValue(In& in) {
    if constexpr (std::same_as<T, bool>) {
        return in.nextbool();
    } else if constexpr (std::integral<T>) {
        return static_cast<T>(in.next<std::make_unsigned_t<T>>());
    } else if constexpr (std::same_as<T, Seconds>) {
        return in.nextSeconds();
    } else if constexpr (std::is_convertible_v<String8, T>) {
        return T(in.nextString());
    } else {
        return T(&in, StreamBogon());
    }
}

}  // namespace NboAttrLog

}  // namespace Qor

#endif
