// The hash of strings: 16 bytes a step, folded by a 64 by 64 bit multiplication, the same on every
// machine. It is not meant to withstand somebody who chooses keys in order to make them collide.
#ifndef QOR_CORE_TEXTHASH_H
#define QOR_CORE_TEXTHASH_H

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <type_traits>

namespace Qor {

namespace TextHash {

inline constexpr std::uint64_t seed = 0xA0761D6478BD642FULL;
inline constexpr std::uint64_t secret1 = 0xE7037ED1A0B428DBULL;
inline constexpr std::uint64_t secret2 = 0x8EBC6AF09C88C6E3ULL;

// The bytes as a number, lowest first, whatever the machine.
template <class Word>
constexpr std::uint64_t load(char const* bytes) noexcept {
    if (std::endian::native == std::endian::little && !std::is_constant_evaluated()) {
        Word word;
        std::memcpy(&word, bytes, sizeof word);
        return word;
    }
    std::uint64_t word = 0;
    for (std::size_t i = 0; i < sizeof(Word); ++i) {
        word |= std::uint64_t{static_cast<unsigned char>(bytes[i])} << (8 * i);
    }
    return word;
}

constexpr std::uint64_t fold(std::uint64_t left, std::uint64_t right) noexcept {
    __extension__ using Wide = unsigned __int128;
    Wide const product = static_cast<Wide>(left) * right;
    return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
}

// Up to 15 bytes as two words, which overlap where that saves a branch.
constexpr std::uint64_t foldTail(char const* bytes, std::size_t count,
                                 std::uint64_t state) noexcept {
    std::uint64_t first = 0;
    std::uint64_t second = 0;
    if (count >= 8) {
        first = load<std::uint64_t>(bytes);
        second = load<std::uint64_t>(bytes + count - 8);
    } else if (count >= 4) {
        first = load<std::uint32_t>(bytes);
        second = load<std::uint32_t>(bytes + count - 4);
    } else if (count > 0) {
        first = load<std::uint8_t>(bytes) << 16 | load<std::uint8_t>(bytes + count / 2) << 8 |
                load<std::uint8_t>(bytes + count - 1);
    }
    return fold(first ^ secret1, second ^ state);
}

}  // namespace TextHash

// Never 0, so that 0 can stand for a hash that is not known yet.
constexpr std::uint32_t hashOfText(std::string_view text) noexcept {
    char const* bytes = text.data();
    std::size_t left = text.size();
    std::uint64_t state = TextHash::seed ^ (left * TextHash::secret2);
    for (; left >= 16; left -= 16, bytes += 16) {
        // The old state stays in by a way of its own: a factor of zero must not wipe out what came
        // before.
        auto const kept = state << 29 | state >> 35;
        state = kept ^ TextHash::fold(TextHash::load<std::uint64_t>(bytes) ^ TextHash::secret1,
                                      TextHash::load<std::uint64_t>(bytes + 8) ^ state);
    }
    state = TextHash::fold(TextHash::foldTail(bytes, left, state) ^ TextHash::secret2, state | 1);
    auto const hash = static_cast<std::uint32_t>(state ^ state >> 32);
    return hash != 0 ? hash : 1;
}

}  // namespace Qor

#endif
