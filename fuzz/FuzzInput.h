// What a fuzz target is given, as text; and the way in which a broken rule ends the run.
#ifndef FUZZ_FUZZ_INPUT_H
#define FUZZ_FUZZ_INPUT_H

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

inline std::string_view textOf(std::uint8_t const* data, std::size_t size) {
    return {reinterpret_cast<char const*>(data), size};
}

/// Ends the run, which keeps the input, when `holds` is false.
inline void must(bool holds) {
    if (!holds) {
        std::abort();
    }
}

#endif
