// What one would use instead of records: each peer writes messages that name an entity, an
// attribute and a number into a buffer, each behind its length, and reads them back out of it. Only
// what is installed where this is built is there.
#ifndef BENCH_ATTRLOG_PEERS_PEERS_H
#define BENCH_ATTRLOG_PEERS_PEERS_H

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "../../Row.h"

namespace Bench {

/// What is in a message.
struct Number {
    std::uint64_t entity;
    std::int32_t attribute;
    std::uint32_t value;
};

inline constexpr char const* writeRow = "write a record of a number";
inline constexpr char const* readRow = "read and dispatch a record of a number";
inline constexpr std::size_t recordsRead = 1000;

/// Where what was read goes, by its attribute.
struct Sums {
    std::uint64_t keys = 0;
    std::uint64_t others = 0;

    void take(Number const& number) {
        switch (number.attribute) {
            case 386:
            case 387:
                others += number.value;
                break;
            case 388:
                keys += number.value + number.entity;
                break;
            default:
                break;
        }
    }
};

/// A buffer of messages on even words, which begins anew when it is full.
class Messages {
  public:
    static constexpr std::size_t longest = 512;

    Messages() : Messages(1U << 18, longest) {}
    Messages(std::size_t size, std::size_t longestOfAll)
        : bytes_(size), longest_(longestOfAll + sizeof(std::uint64_t)) {}

    /// Room for the longest message.
    std::byte* room() noexcept {
        if (bytes_.size() - at_ < longest_) at_ = 0;
        return bytes_.data() + at_ + sizeof(std::uint64_t);
    }
    /// So long is the message that was put there.
    void written(std::uint64_t length) noexcept {
        std::memcpy(bytes_.data() + at_, &length, sizeof length);
        pass(length);
    }
    void rewind() noexcept { at_ = 0; }
    /// The next message and its length.
    std::byte const* next(std::uint64_t& length) noexcept {
        std::memcpy(&length, bytes_.data() + at_, sizeof length);
        auto const* const message = bytes_.data() + at_ + sizeof length;
        pass(length);
        return message;
    }

  private:
    void pass(std::uint64_t length) noexcept { at_ += sizeof length + ((length + 7) & ~7ULL); }

    std::vector<std::byte> bytes_;
    std::size_t longest_;
    std::size_t at_ = 0;
};

/// Registers a peer's cells. Its write() puts a message at the given room and gives its length, its
/// read() takes one, checked as the peer checks.
template <class Peer>
void addPeer(std::string const& column) {
    cell(writeRow, column, [](auto& state) {
        Peer peer;
        Messages messages;
        std::uint32_t value = 0;
        for (auto _ : state) {
            messages.written(peer.write(Number{3, 388, ++value}, messages.room()));
        }
        tellOperations(state);
    });
    cell(readRow, column, [](auto& state) {
        Peer peer;
        Messages messages;
        for (std::uint32_t i = 0; i < recordsRead; ++i) {
            messages.written(peer.write(Number{3, 388, i}, messages.room()));
        }
        Sums sums;
        for (auto _ : state) {
            messages.rewind();
            for (std::size_t i = 0; i < recordsRead; ++i) {
                std::uint64_t length = 0;
                auto const* const message = messages.next(length);
                sums.take(peer.read(message, length));
            }
        }
        benchmark::DoNotOptimize(sums);
        tellOperations(state, recordsRead);
    });
}

void addFlatbuffers();
void addCapnproto();
void addProtobuf();

}  // namespace Bench

#endif
