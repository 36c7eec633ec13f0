// The hashes that decide the order of collections. All are 32 bits wide, take no memory and give
// the same on every machine.
#ifndef QOR_CORE_HASH_H
#define QOR_CORE_HASH_H

#include <qor/core/String8.h>

#include <concepts>
#include <cstdint>
#include <type_traits>

namespace Qor {

// The word with its bits in reverse order. A map's buckets are chosen by the top bits, and hashes
// mix their low bits best.
constexpr std::uint32_t bitReverse(std::uint32_t word) noexcept {
    word = (word >> 1 & 0x55555555U) | (word & 0x55555555U) << 1;
    word = (word >> 2 & 0x33333333U) | (word & 0x33333333U) << 2;
    word = (word >> 4 & 0x0F0F0F0FU) | (word & 0x0F0F0F0FU) << 4;
    return __builtin_bswap32(word);
}

// The reversed hash of a string or a name: what its map is ordered by.
inline std::uint32_t rhash(String8 const& text) noexcept { return bitReverse(text.hash()); }

// One-at-a-time hash over the bytes of 32-bit words, the words in the order given, each lowest byte
// first.
class OneAtATimeHash {
  public:
    constexpr void add(std::uint32_t word) noexcept {
        for (int byte = 0; byte < 4; ++byte) {
            hash_ += word >> (8 * byte) & 0xFFU;
            hash_ += hash_ << 10;
            hash_ ^= hash_ >> 6;
        }
    }
    constexpr std::uint32_t value() const noexcept {
        std::uint32_t hash = hash_;
        hash += hash << 3;
        hash ^= hash >> 11;
        hash += hash << 15;
        return hash;
    }

  private:
    std::uint32_t hash_ = 0;
};

template <std::same_as<std::uint32_t>... Words>
constexpr std::uint32_t oneAtATimeHash(Words... words) noexcept {
    OneAtATimeHash hash;
    (hash.add(words), ...);
    return hash.value();
}

// What a field of a composite value gives to its hash: a number or an enumeration itself, any other
// value its own hash.
template <class T>
constexpr std::uint32_t hashWord(T const& value) noexcept {
    if constexpr (std::is_arithmetic_v<T> || std::is_enum_v<T>) {
        return static_cast<std::uint32_t>(value);
    } else {
        return value.hash();
    }
}

}  // namespace Qor

#endif
