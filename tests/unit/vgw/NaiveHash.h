// One-at-a-time hashing, byte by byte over a text.
#ifndef TESTS_UNIT_VGW_NAIVE_HASH_H
#define TESTS_UNIT_VGW_NAIVE_HASH_H

#include <cstdint>
#include <string>

inline std::uint32_t naiveHash(std::string const& bytes) {
    std::uint32_t h = 0;
    for (char const c : bytes) {
        h = h + static_cast<std::uint8_t>(c);
        h = h + (h << 10);
        h = h ^ (h >> 6);
    }
    h = h + (h << 3);
    h = h ^ (h >> 11);
    return h + (h << 15);
}

/// The four bytes of a word, the lowest first.
inline std::string lowestFirst(std::uint32_t word) {
    std::string bytes;
    for (int i = 0; i < 4; ++i) {
        bytes += static_cast<char>(word % 256);
        word /= 256;
    }
    return bytes;
}

#endif
