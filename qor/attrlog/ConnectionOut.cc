#include <qor/attrlog/ConnectionOut.h>

#include <qor/core/Assert.h>
#include <qor/core/Exception.h>
#include <qor/core/Format.h>

#include <algorithm>

namespace Qor {

namespace Connection {

namespace {

void requireOutbound(bool holds, char const* text, int line, char const* function) {
    assertThat(holds, text, "Qor/ConnectionOut", line, function);
}

}  // namespace

Out::Out(U32 maxBlocks) : maxBlocks_(maxBlocks) {
    requireOutbound(maxBlocks > 0, "maxBlocks > 0", __LINE__, "Out");
}

Out::~Out() {
    for (auto* const block : blocks_) giveRingBlock(block);
}

void Out::putChunk(String8::IteratorConst& position) {
    auto const chunk = position.rest().substr(0, chunkLimit_);
    putBytes(chunk);
    position.indexIs(position.index() + static_cast<U32>(chunk.size()));
    moreChunksIs(static_cast<bool>(position));
}

void Out::putAcrossBlocks(U64 number, std::size_t count) {
    unsigned char bytes[sizeof number];
    storeNetworkOrder(bytes, number);
    putAcrossBlocks(bytes + sizeof number - count, count);
}

void Out::putAcrossBlocks(unsigned char const* bytes, std::size_t count) {
    while (count > 0) {
        if (write_ == blockEnd_) nextBlock(count);
        auto const piece = std::min(count, static_cast<std::size_t>(blockEnd_ - write_));
        write_ = std::copy_n(bytes, piece, write_);
        bytes += piece;
        count -= piece;
    }
}

void Out::nextBlock(std::size_t wanted) {
    if (blocks_.size() >= maxBlocks_ && !mayPassCap_) {
        throw AttrLogRecordException(
            format("%zu more bytes at offset %llu are over the buffer's "
                   "%u blocks of %u bytes",
                   wanted, static_cast<unsigned long long>(written()), maxBlocks_, blockSize));
    }
    blocks_.reserve(blocks_.size() + 1);
    auto* const block = takeRingBlock();
    blocks_.push_back(block);
    writeAt(block, 0);
}

void Out::writeAt(unsigned char* block, std::size_t filled) noexcept {
    write_ = block + filled;
    blockEnd_ = block + blockSize;
    lead_ = base_ + (blocks_.size() - 1) * U64{blockSize} - reinterpret_cast<std::uintptr_t>(block);
}

void Out::writtenIs(U64 offset) {
    requireOutbound(sent_ <= offset && offset <= written(),
                    "sent() <= offset && offset <= written()", __LINE__, "writtenIs");
    if (offset == written()) return;
    auto const kept = static_cast<std::size_t>((offset - base_) / blockSize + 1);
    for (; blocks_.size() > kept; blocks_.pop_back()) giveRingBlock(blocks_.back());
    writeAt(blocks_.back(), static_cast<std::size_t>((offset - base_) % blockSize));
}

unsigned char* Out::at(U64 offset) const noexcept {
    return blocks_[static_cast<std::size_t>((offset - base_) / blockSize)] +
           (offset - base_) % blockSize;
}

void Out::u32AtIs(U64 offset, U32 number) {
    requireOutbound(sent_ <= offset && offset + sizeof number <= written(),
                    "sent() <= offset && offset + 4 <= written()", __LINE__, "u32AtIs");
    if ((offset - base_) % blockSize <= blockSize - sizeof number) [[likely]] {
        storeNetworkOrder(at(offset), number);
        return;
    }
    unsigned char bytes[sizeof number];
    storeNetworkOrder(bytes, number);
    for (auto const byte : bytes) *at(offset++) = byte;
}

void Out::u8AtOr(U64 offset, U8 bits) {
    requireOutbound(sent_ <= offset && offset < written(), "sent() <= offset && offset < written()",
                    __LINE__, "u8AtOr");
    *at(offset) = static_cast<unsigned char>(*at(offset) | bits);
}

std::string_view Out::unsent() const noexcept {
    if (sent_ == written()) return {};
    auto const* const start = at(sent_);
    auto const* const end = blocks_.size() == 1 ? write_ : blocks_.front() + blockSize;
    return {reinterpret_cast<char const*>(start), static_cast<std::size_t>(end - start)};
}

void Out::sentInc(std::size_t count) {
    requireOutbound(count <= written() - sent_, "count <= written() - sent()", __LINE__, "sentInc");
    sent_ += count;
    dropSentBlocks();
}

void Out::dropSentBlocks() noexcept {
    if (blocks_.empty()) return;
    if (sent_ == written()) {
        // All is out: the next byte starts a block, so that pieces stay long.
        for (auto* const block : blocks_) giveRingBlock(block);
        blocks_.clear();
        base_ = sent_;
        lead_ = sent_;
        write_ = nullptr;
        blockEnd_ = nullptr;
        return;
    }
    auto const full = static_cast<std::ptrdiff_t>((sent_ - base_) / blockSize);
    std::for_each_n(blocks_.begin(), full, giveRingBlock);
    blocks_.erase(blocks_.begin(), blocks_.begin() + full);
    base_ += static_cast<U64>(full) * blockSize;
}

}  // namespace Connection

}  // namespace Qor
