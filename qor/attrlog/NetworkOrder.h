// Numbers as bytes in network byte order, highest byte first (RFC 1700), at any address.
#ifndef QOR_ATTRLOG_NETWORKORDER_H
#define QOR_ATTRLOG_NETWORKORDER_H

#include <bit>
#include <concepts>
#include <cstddef>
#include <cstring>
#include <type_traits>

namespace Qor {

// The word with its bytes in reverse order, on machines that hold the lowest byte first.
template <std::unsigned_integral Word>
constexpr Word networkOrder(Word word) noexcept {
    if constexpr (std::endian::native == std::endian::big || sizeof(Word) == 1) {
        return word;
    } else if constexpr (sizeof(Word) == 2) {
        return __builtin_bswap16(word);
    } else if constexpr (sizeof(Word) == 4) {
        return __builtin_bswap32(word);
    } else {
        return __builtin_bswap64(word);
    }
}

template <std::unsigned_integral Word>
void storeNetworkOrder(unsigned char* bytes, Word word) noexcept {
    word = networkOrder(word);
    std::memcpy(bytes, &word, sizeof word);
}

template <std::unsigned_integral Word>
Word loadNetworkOrder(unsigned char const* bytes) noexcept {
    Word word;
    std::memcpy(&word, bytes, sizeof word);
    return networkOrder(word);
}

}  // namespace Qor

#endif
