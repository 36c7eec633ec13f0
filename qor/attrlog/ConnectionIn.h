// The incoming side of a connection: the transport appends bytes to a ring of 49152 bytes, a reader
// takes them by position. Positions are offsets: bytes since the stream began. A reader may note a
// position, read on and put it back. The room of what was read is given to the transport again only
// by releaseRead().
//
// Reading stops at a limit, if one is set, and at what has arrived. Past it, AttrLogRecordException
// tells the offset, what was needed and what was there, and the position stays where it was.
//
// Memory: the ring, taken at the first byte. A length that was read reserves nothing; where a frame
// is longer than the ring, grow() doubles it once it is full.
// Threads: one at a time. Cost: a number is a compare and a load.
#ifndef QOR_ATTRLOG_CONNECTIONIN_H
#define QOR_ATTRLOG_CONNECTIONIN_H

#include <qor/attrlog/Declarations.h>
#include <qor/attrlog/NetworkOrder.h>
#include <qor/core/Export.h>
#include <qor/core/Ptr.h>
#include <qor/core/String8.h>
#include <qor/core/Types.h>
#include <qor/core/VFPtrInterface.h>

#include <algorithm>
#include <limits>
#include <span>
#include <string_view>

namespace Qor {

namespace Connection {

class QOR_EXPORT In : public VFPtrInterface {
  public:
    static constexpr U32 blockSize = 49152;
    static constexpr U64 noLimit = std::numeric_limits<U64>::max();

    // REQUIRES: capacity > 0
    explicit In(U32 capacity = blockSize);
    ~In() override;

    // The room that lies in one piece for the next bytes, empty when the ring is full.
    std::span<unsigned char> room();
    // So many bytes have been put into the room. REQUIRES: count <= room().size()
    void receivedInc(std::size_t count);
    // Appends as many of the bytes as there is room for and gives their number.
    std::size_t receive(std::string_view bytes);
    // Doubles the ring, for a frame that does not fit.
    void grow();
    // The ring's size.
    U32 capacity() const noexcept { return capacity_; }
    // Bytes that have arrived since the beginning.
    U64 received() const noexcept { return received_; }

    U64 readPosition() const noexcept { return lap_ + static_cast<U64>(read_ - ring_); }
    // Anywhere between what was released and what has arrived; else AttrLogRecordException.
    void readPositionIs(U64 offset);
    // The transport may overwrite what stands before the read position.
    void releaseRead() noexcept { released_ = readPosition(); }
    U64 released() const noexcept { return released_; }

    // The offset at which reading ends although more has arrived.
    U64 limit() const noexcept { return limit_; }
    void limitIs(U64 offset) noexcept {
        limit_ = offset;
        findPieceEnd();
    }

    // Bytes that can be read now.
    U64 available() const noexcept {
        U64 const end = std::min(limit_, received_);
        U64 const position = readPosition();
        return end > position ? end - position : 0;
    }
    // The byte at an offset. REQUIRES: released() <= offset && offset < received()
    U8 byteAt(U64 offset) const;
    // Overwrites bytes that have arrived, in one piece or two where the ring wraps.
    // REQUIRES: released() <= offset && offset < received()
    std::span<unsigned char> pieceAt(U64 offset);
    // Whether the chunk that is read next has more of its text behind it.
    bool moreChunks() const noexcept { return moreChunks_; }
    void moreChunksIs(bool on) noexcept { moreChunks_ = on; }

    // A number in network byte order.
    template <std::unsigned_integral Word>
    Word next() {
        if (static_cast<std::size_t>(pieceEnd_ - read_) >= sizeof(Word)) [[likely]] {
            auto const word = loadNetworkOrder<Word>(read_);
            read_ += sizeof(Word);
            return word;
        }
        unsigned char bytes[sizeof(Word)];
        nextBytes(bytes, sizeof bytes);
        return loadNetworkOrder<Word>(bytes);
    }

    // Passes over those bytes, if they come next and lie in one piece.
    bool skipIf(std::string_view bytes) noexcept {
        auto const ahead = piece();
        bool const comes =
            ahead.size() >= bytes.size() &&
            std::equal(bytes.begin(), bytes.end(), reinterpret_cast<char const*>(ahead.data()));
        read_ += comes ? bytes.size() : 0;
        return comes;
    }
    // `count` bytes as a string.
    String8 nextText(U32 count);
    // The same where they lie, until the room is released; a null view, and nothing is read, where
    // they don't lie in one piece.
    std::string_view nextView(U32 count) noexcept {
        if (static_cast<std::size_t>(pieceEnd_ - read_) < count) return {};
        auto const* const start = reinterpret_cast<char const*>(read_);
        read_ += count;
        return {start, count};
    }

    // Whether this is an attribute log's, NboAttrLog::In.
    bool isAttrLog() const noexcept { return isAttrLog_; }

  protected:
    void isAttrLogIs(bool isAttrLog) noexcept { isAttrLog_ = isAttrLog; }
    // What can be read in one piece.
    std::span<unsigned char const> piece() const noexcept { return {read_, pieceEnd_}; }
    // Passes over bytes of the piece, and limits reading to those that follow them, up to the
    // offset `limit`. REQUIRES: passed + limited <= piece().size(), readPosition() + passed +
    // limited == limit
    void enterPiece(std::size_t passed, std::size_t limited, U64 limit) noexcept {
        read_ += passed;
        pieceEnd_ = read_ + limited;
        limit_ = limit;
    }
    // Goes to what has arrived, lifts the limit and releases what stands before.
    // REQUIRES: readPosition() <= offset && offset <= received()
    void passTo(U64 offset) noexcept {
        limit_ = noLimit;
        released_ = offset;
        U64 const ahead = offset - lap_;
        if (ahead < static_cast<U64>(arrivedEnd_ - ring_)) [[likely]] {
            read_ = ring_ + ahead;
            pieceEnd_ = arrivedEnd_;
        } else {
            enterLap(offset);
        }
    }

  private:
    void need(U64 count) const;
    void nextBytes(unsigned char* out, std::size_t count);
    // Goes to an offset, in whichever lap.
    void enterLap(U64 offset) noexcept;
    // At the end of the ring with more to read, the reader's next lap begins.
    void findPieceEnd() noexcept;

    unsigned char* ring_ = nullptr;
    unsigned char* read_ = nullptr;
    unsigned char* pieceEnd_ = nullptr;    // what can be read lies in one piece up to here
    unsigned char* arrivedEnd_ = nullptr;  // the same, were there no limit
    U64 lap_ = 0;                          // offset of the byte that the reader's lap has at ring_
    U64 received_ = 0;
    U64 released_ = 0;
    U64 limit_ = noLimit;
    U32 capacity_;
    bool moreChunks_ = false;
    bool isAttrLog_ = false;
};

}  // namespace Connection

// Appends the rest of what can be read, up to the limit, to the text that is being gathered. The
// position is 0 afterwards when that was the text's end, and not 0 when there is more to come. A
// chunk that is empty although there is more raises AttrLogRecordException.
QOR_EXPORT void operator>>(Ptr<Connection::In> const& in, String8::Iterator& position);

}  // namespace Qor

#endif
