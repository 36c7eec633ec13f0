// The writer of an attribute log in network byte order. A record is begun with nextHeaderIs, closed
// by token 3, and values are put between with operator<<:
//
//   out->nextHeaderIs({id, attribute});
//   out << Out::TransactToken::begin << value << Out::TransactToken::end;
//
// A record that was begun is always whole: it may pass the cap on blocks, and what was begun and
// not closed is taken back when the next one begins. Whoever closes a record that was taken back
// so hears of it by AttrLogRecordException and may write it again.
#ifndef QOR_ATTRLOG_NBOATTRLOGOUT_H
#define QOR_ATTRLOG_NBOATTRLOGOUT_H

#include <qor/attrlog/ConnectionOut.h>
#include <qor/attrlog/Declarations.h>
#include <qor/attrlog/MsgHeader.h>
#include <qor/core/Ptr.h>

#include <bit>
#include <concepts>

namespace Qor {

// The full name of a class, as a record tells it.
class TypeId {
  public:
    explicit TypeId(String8 fullName) noexcept : fullName_(std::move(fullName)) {}
    String8 const& fullName() const noexcept { return fullName_; }

  private:
    String8 fullName_;
};

namespace NboAttrLog {

// Told of a frame that begins when nothing else waits to be sent, so that whoever drives the
// connection need not look at it while it rests. Called within setters: it may note, not send.
class QOR_EXPORT OutWaker {
  public:
    virtual ~OutWaker();
    virtual void onFirstFrame() = 0;
};

class QOR_EXPORT Out : public Connection::Out {
  public:
    using Connection::Out::Out;
    ~Out() override;

    // Null: nobody is told. Not kept.
    void wakerIs(OutWaker* waker) noexcept { waker_ = waker; }

    // Begins a record.
    void nextHeaderIs(MsgHeader const& header) { beginFrame(FrameKind::record, header); }
    // Begins a frame of any sort.
    void beginFrame(FrameKind kind, MsgHeader const& header);
    // A whole record, whose payload is so long: where that is to be stored, at once. Null when it
    // can't be had in one piece, or something is unusual: nothing was done then, and the record is
    // written like any other.
    unsigned char* claimRecord(MsgHeader const& header, std::size_t payload);
    // Begins a part of the payload; what follows belongs to it, up to the next or the end.
    void currentPayloadSectionIs(PayloadSection section);
    // Opens the payload, or closes the frame.
    void tokenIs(TransactToken token) {
        if (token == TransactToken::end) return endFrame();
        put(static_cast<U8>(token));
    }
    bool hasOpenFrame() const noexcept { return frameStart_ != noFrame; }
    // Takes back what was begun and not closed, as an exception leaves it.
    void dropOpenFrame() {
        if (hasOpenFrame()) takeBackFrame();
    }
    // Frames that were closed.
    U64 frames() const noexcept { return frames_; }

    // The most that `size` of a frame may be. A longer one is taken back when it is closed, and
    // FrameTooLongException raised.
    U32 greatestFrame() const noexcept { return greatestFrame_; }
    void greatestFrameIs(U32 bytes) noexcept { greatestFrame_ = bytes; }

  private:
    static constexpr U64 noFrame = ~U64{0};

    void putHead(FrameKind kind, MsgHeader const& header);
    void beginOddFrame(FrameKind kind, MsgHeader header);
    void takeBackFrame();
    void endFrame();
    void endOddFrame();
    void endSection(U64 end);

    U64 frameStart_ = noFrame;
    unsigned char* frameHead_ = nullptr;  // where its size stands, if its head lies in one piece
    U64 sectionStart_ = noFrame;
    U64 frames_ = 0;
    OutWaker* waker_ = nullptr;
    U32 greatestFrame_ = defaultGreatestFrame;
};

// The frame's head but its size, which is stored when it ends.
inline void storeHead(unsigned char* at, FrameKind kind, MsgHeader const& header) noexcept {
    at[4] = static_cast<unsigned char>(kind);
    storeHeader(at + 5, header);
}

// Whatever is rare about it stands apart, and has the fields one by one: so the header is never in
// memory.
inline void Out::beginFrame(FrameKind kind, MsgHeader const& header) {
    bool const isPlain = !hasOpenFrame() && (waker_ == nullptr || written() != sent());
    unsigned char* const head = isPlain ? claim(frameHeadSize) : nullptr;
    if (head == nullptr) [[unlikely]] {
        return beginOddFrame(kind, {header.entityId, header.attributeId, header.headerTag,
                                    header.headerWordA, header.headerWordB, header.headerTail});
    }
    frameHead_ = head;
    frameStart_ = written() - frameHeadSize;
    sectionStart_ = noFrame;
    moreChunksIs(false);
    mayPassCapIs(true);
    storeHead(head, kind, header);
}

// One claim moves the end of what is put once; each put of a part would wait for the one before.
inline unsigned char* Out::claimRecord(MsgHeader const& header, std::size_t payload) {
    bool const isPlain = !hasOpenFrame() && (waker_ == nullptr || written() != sent()) &&
                         payload + leastFrameSize <= greatestFrame_;
    unsigned char* const head = isPlain ? claim(frameOverhead + payload) : nullptr;
    if (head == nullptr) [[unlikely]] {
        return nullptr;
    }
    moreChunksIs(false);
    ++frames_;
    storeNetworkOrder(head, static_cast<U32>(payload) + leastFrameSize);
    storeHead(head, FrameKind::record, header);
    head[frameHeadSize] = static_cast<unsigned char>(TransactToken::begin);
    head[frameHeadSize + 1 + payload] = static_cast<unsigned char>(TransactToken::end);
    return head + frameHeadSize + 1;
}

// A number of its own width; a truth value is one byte, 0 or 1. A template, so that nothing turns
// into a number or a truth value on the way here.
template <std::integral Number>
Ptr<Out> const& operator<<(Ptr<Out> const& out, Number const& number) {
    out->put(number);
    return out;
}

// IEEE 754 binary64, 8 bytes.
template <std::same_as<double> Number>
Ptr<Out> const& operator<<(Ptr<Out> const& out, Number const& number) {
    out->put(std::bit_cast<U64>(number));
    return out;
}

// The length in 32 bits, then the bytes.
inline void putText(Out& out, std::string_view text) {
    out.put(static_cast<U32>(text.size()));
    out.putBytes(text);
}

inline Ptr<Out> const& operator<<(Ptr<Out> const& out, String8 const& text) {
    putText(*out, text.view());
    return out;
}

inline Ptr<Out> const& operator<<(Ptr<Out> const& out, EntityId const& id) {
    out->put(id.value());
    return out;
}

// As the text of the name.
inline Ptr<Out> const& operator<<(Ptr<Out> const& out, TypeId const& type) {
    return out << type.fullName();
}

inline Ptr<Out> const& operator<<(Ptr<Out> const& out, Connection::Out::TransactToken token) {
    out->tokenIs(token);
    return out;
}

}  // namespace NboAttrLog

}  // namespace Qor

#endif
