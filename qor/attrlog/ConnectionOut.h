// The outgoing side of a connection: bytes are put at one end and fetched by the transport at the
// other. They lie in blocks of 49152 bytes; further blocks are taken as needed, up to a cap, and
// given back once they are sent. Nothing is taken before the first byte.
//
// Places in the stream are offsets: bytes put since the stream began. What is not sent yet may be
// overwritten or taken back, so that a record that can't be finished leaves nothing behind.
//
// Threads: one at a time. Cost: a number that fits into the block is a compare and a store.
#ifndef QOR_ATTRLOG_CONNECTIONOUT_H
#define QOR_ATTRLOG_CONNECTIONOUT_H

#include <qor/attrlog/Declarations.h>
#include <qor/attrlog/NetworkOrder.h>
#include <qor/attrlog/RingBlocks.h>
#include <qor/core/Export.h>
#include <qor/core/Ptr.h>
#include <qor/core/String8.h>
#include <qor/core/Types.h>
#include <qor/core/VFPtrInterface.h>

#include <algorithm>
#include <concepts>
#include <cstdint>
#include <string_view>
#include <type_traits>
#include <vector>

namespace Qor {

namespace Connection {

class QOR_EXPORT Out : public VFPtrInterface {
  public:
    static constexpr U32 blockSize = ringBlockSize;
    static constexpr U32 defaultBlocks = 8;
    // A record is at most 32768 bytes, of which header and tokens take 29.
    static constexpr U32 defaultChunkLimit = 32768 - 29;

    // Opens and closes what stands between header and end of a record.
    enum class TransactToken : U8 { begin = 1, end = 3 };

    // REQUIRES: maxBlocks > 0
    explicit Out(U32 maxBlocks = defaultBlocks);
    ~Out() override;

    // A number in network byte order; a truth value is one byte, 0 or 1.
    template <std::integral Number>
    void put(Number number);
    void putBytes(std::string_view bytes) {
        if (unsigned char* const at = claim(bytes.size())) [[likely]] {
            std::copy_n(bytes.data(), bytes.size(), reinterpret_cast<char*>(at));
        } else {
            putAcrossBlocks(reinterpret_cast<unsigned char const*>(bytes.data()), bytes.size());
        }
    }
    // Puts the next chunk of a text, as much as the chunk limit allows, and moves the position
    // behind it. A chunk has no length of its own: the record that encloses it tells its extent.
    void putChunk(String8::IteratorConst& position);

    // Bytes put since the beginning, those taken back not counted.
    U64 written() const noexcept { return lead_ + reinterpret_cast<std::uintptr_t>(write_); }
    // Takes back what was put from that offset on. REQUIRES: sent() <= offset && offset <=
    // written()
    void writtenIs(U64 offset);
    // Puts another number in the place of one that was put at that offset.
    // REQUIRES: sent() <= offset && offset + 4 <= written()
    void u32AtIs(U64 offset, U32 number);
    // Sets bits of the byte that was put at that offset. REQUIRES: sent() <= offset && offset <
    // written()
    void u8AtOr(U64 offset, U8 bits);

    // The next piece for the transport, empty when all is sent. It holds until the next call that
    // is not const.
    std::string_view unsent() const noexcept;
    // REQUIRES: count <= written() - sent()
    void sentInc(std::size_t count);
    U64 sent() const noexcept { return sent_; }

    U32 bufferBlockSize() const noexcept { return blockSize; }
    // Bytes that can be put before the cap is reached; 0 beyond it.
    U64 freeBytes() const noexcept {
        U64 const cap = base_ + U64{maxBlocks_} * blockSize;
        U64 const end = written();
        return cap > end ? cap - end : 0;
    }
    // Whether what is put has a way out; without one the count of free bytes means nothing.
    bool hasLiveBuffer() const noexcept { return isLive_; }
    void hasLiveBufferIs(bool isLive) noexcept { isLive_ = isLive; }
    // Whether a record of any size that is allowed can be put whole.
    bool hasSufficientBuffer() const noexcept { return isLive_ && freeBytes() >= blockSize; }

    // The most bytes that one chunk of a text takes.
    U32 chunkLimit() const noexcept { return chunkLimit_; }
    void chunkLimitIs(U32 bytes) noexcept { chunkLimit_ = bytes; }
    // Whether the chunk put last leaves more of its text to come.
    bool moreChunks() const noexcept { return moreChunks_; }
    void moreChunksIs(bool on) noexcept { moreChunks_ = on; }

    // The other direction of the same connection, or null. Not counted: whoever ties the two keeps
    // them.
    In* in() const noexcept { return in_; }
    void inIs(In* in) noexcept { in_ = in; }
    // Whether the connection is a message channel's.
    bool isChannel() const noexcept { return isChannel_; }
    void isChannelIs(bool isChannel) noexcept { isChannel_ = isChannel; }

  protected:
    // Room for so many bytes in one piece, which count as put; null if the block hasn't it.
    unsigned char* claim(std::size_t count) noexcept {
        if (static_cast<std::size_t>(blockEnd_ - write_) < count) return nullptr;
        unsigned char* const at = write_;
        write_ += count;
        return at;
    }
    // What is begun may be finished although the cap is reached.
    void mayPassCapIs(bool on) noexcept { mayPassCap_ = on; }

  private:
    // The block that is written to now.
    void writeAt(unsigned char* block, std::size_t filled) noexcept;
    void putAcrossBlocks(unsigned char const* bytes, std::size_t count);
    // The low `count` bytes of a number. Never inline: its array would be on the stack of who puts.
    [[gnu::noinline]] void putAcrossBlocks(U64 number, std::size_t count);
    void nextBlock(std::size_t wanted);
    void dropSentBlocks() noexcept;
    unsigned char* at(U64 offset) const noexcept;

    U64 lead_ = 0;  // written() beyond the address of the next byte
    unsigned char* write_ = nullptr;
    unsigned char* blockEnd_ = nullptr;
    std::vector<unsigned char*> blocks_;  // all are full but the last
    U64 base_ = 0;                        // offset of the first block's first byte
    U64 sent_ = 0;
    U32 const maxBlocks_;
    U32 chunkLimit_ = defaultChunkLimit;
    In* in_ = nullptr;
    bool moreChunks_ = false;
    bool mayPassCap_ = false;
    bool isChannel_ = false;
    bool isLive_ = true;
};

template <std::integral Number>
void Out::put(Number number) {
    if constexpr (std::same_as<Number, bool>) {
        put(static_cast<U8>(number ? 1 : 0));
    } else {
        auto const word = static_cast<std::make_unsigned_t<Number>>(number);
        if (static_cast<std::size_t>(blockEnd_ - write_) >= sizeof word) [[likely]] {
            storeNetworkOrder(write_, word);
            write_ += sizeof word;
        } else {
            putAcrossBlocks(U64{word}, sizeof word);
        }
    }
}

}  // namespace Connection

// Out::putChunk().
inline void operator<<(Ptr<Connection::Out> const& out, String8::IteratorConst& position) {
    out->putChunk(position);
}

}  // namespace Qor

#endif
