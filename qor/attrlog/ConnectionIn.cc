#include <qor/attrlog/ConnectionIn.h>

#include <qor/core/Assert.h>
#include <qor/core/Exception.h>
#include <qor/core/Format.h>
#include <qor/core/Pool.h>

#include <algorithm>

namespace Qor {

namespace Connection {

namespace {

void requireInbound(bool holds, char const* text, int line, char const* function) {
    assertThat(holds, text, "Qor/ConnectionIn", line, function);
}

}  // namespace

In::In(U32 capacity) : capacity_(capacity) {
    requireInbound(capacity > 0, "capacity > 0", __LINE__, "In");
}

In::~In() { memDel(ring_, capacity_); }

std::span<unsigned char> In::room() {
    if (ring_ == nullptr) {
        ring_ = static_cast<unsigned char*>(memNew(capacity_));
        read_ = ring_;
        findPieceEnd();
    }
    auto const start = static_cast<std::size_t>(received_ % capacity_);
    auto const free = static_cast<std::size_t>(capacity_ - (received_ - released_));
    return {ring_ + start, std::min(free, capacity_ - start)};
}

void In::grow() {
    U32 const wider = capacity_ * 2;
    U64 const position = readPosition();
    auto* const ring = static_cast<unsigned char*>(memNew(wider));
    for (U64 at = released_; at < received_;) {
        auto const from = static_cast<std::size_t>(at % capacity_);
        auto const to = static_cast<std::size_t>(at % wider);
        auto const count =
            std::min({static_cast<std::size_t>(received_ - at), capacity_ - from, wider - to});
        std::copy_n(ring_ + from, count, ring + to);
        at += count;
    }
    memDel(ring_, capacity_);
    ring_ = ring;
    capacity_ = wider;
    lap_ = position - position % wider;
    readPositionIs(position);
}

U8 In::byteAt(U64 offset) const {
    requireInbound(released_ <= offset && offset < received_,
                   "released() <= offset && offset < received()", __LINE__, "byteAt");
    return ring_[offset - lap_ < capacity_ ? offset - lap_ : offset % capacity_];
}

std::span<unsigned char> In::pieceAt(U64 offset) {
    requireInbound(released_ <= offset && offset < received_,
                   "released() <= offset && offset < received()", __LINE__, "pieceAt");
    auto const start = static_cast<std::size_t>(offset % capacity_);
    return {ring_ + start,
            std::min(static_cast<std::size_t>(received_ - offset), capacity_ - start)};
}

void In::receivedInc(std::size_t count) {
    requireInbound(count <= room().size(), "count <= room().size()", __LINE__, "receivedInc");
    received_ += count;
    findPieceEnd();
}

std::size_t In::receive(std::string_view bytes) {
    std::size_t taken = 0;
    while (taken < bytes.size()) {
        auto const piece = room();
        if (piece.empty()) break;
        auto const count = std::min(piece.size(), bytes.size() - taken);
        std::copy_n(bytes.data() + taken, count, reinterpret_cast<char*>(piece.data()));
        receivedInc(count);
        taken += count;
    }
    return taken;
}

void In::readPositionIs(U64 offset) {
    if (offset < released_ || offset > received_) {
        throw AttrLogRecordException(format("read position %llu is not between %llu and %llu",
                                            static_cast<unsigned long long>(offset),
                                            static_cast<unsigned long long>(released_),
                                            static_cast<unsigned long long>(received_)));
    }
    enterLap(offset);
}

// Most steps stay within the lap, and need no division.
void In::enterLap(U64 offset) noexcept {
    if (offset - lap_ >= capacity_) lap_ = offset - offset % capacity_;
    read_ = ring_ + (offset - lap_);
    findPieceEnd();
}

void In::findPieceEnd() noexcept {
    if (ring_ == nullptr) return;
    if (read_ == ring_ + capacity_) {
        lap_ += capacity_;
        read_ = ring_;
    }
    auto const left = static_cast<U64>(ring_ + capacity_ - read_);
    arrivedEnd_ = read_ + std::min(received_ - readPosition(), left);
    pieceEnd_ = read_ + std::min(available(), left);
}

void In::need(U64 count) const {
    if (count <= available()) return;
    throw AttrLogRecordException(format("%llu bytes needed at offset %llu, %llu available",
                                        static_cast<unsigned long long>(count),
                                        static_cast<unsigned long long>(readPosition()),
                                        static_cast<unsigned long long>(available())));
}

void In::nextBytes(unsigned char* out, std::size_t count) {
    need(count);
    while (count > 0) {
        if (read_ == pieceEnd_) findPieceEnd();
        auto const piece = std::min(count, static_cast<std::size_t>(pieceEnd_ - read_));
        out = std::copy_n(read_, piece, out);
        read_ += piece;
        count -= piece;
    }
}

String8 In::nextText(U32 count) {
    if (static_cast<std::size_t>(pieceEnd_ - read_) >= count) [[likely]] {
        auto const* const start = reinterpret_cast<char const*>(read_);
        read_ += count;
        return String8(std::string_view(start, count));
    }
    need(count);
    if (read_ == pieceEnd_) findPieceEnd();
    auto const piece = std::min(std::size_t{count}, static_cast<std::size_t>(pieceEnd_ - read_));
    String8 text(std::string_view(reinterpret_cast<char const*>(read_), piece));
    read_ += piece;
    return piece == count ? text : text + nextText(count - static_cast<U32>(piece));
}

}  // namespace Connection

void operator>>(Ptr<Connection::In> const& in, String8::Iterator& position) {
    auto const chunk = in->nextText(static_cast<U32>(in->available()));
    if (in->moreChunks() && chunk.length() == 0) {
        throw AttrLogRecordException("an empty chunk of a text that is said to go on");
    }
    position.append(chunk.view());
    position.isWholeIs(!in->moreChunks());
}

}  // namespace Qor
