// What a run of a property test may be told by the environment, and how much of it this build does.
#ifndef TESTS_SUPPORT_SETTINGS_H
#define TESTS_SUPPORT_SETTINGS_H

#include <cstdint>
#include <cstdlib>
#include <string>

namespace Settings {

inline std::uint64_t number(char const* variable, std::uint64_t otherwise) {
    char const* const text = std::getenv(variable);
    return text != nullptr ? std::strtoull(text, nullptr, 10) : otherwise;
}

/// VGW_TEST_SEED repeats a run.
inline std::uint64_t seed() { return number("VGW_TEST_SEED", 20240229); }
inline std::string seedText() { return "VGW_TEST_SEED=" + std::to_string(seed()); }

/// How many cases this build goes through. Each is many times as dear under a sanitizer, and the
/// thread sanitizer, the slowest, has the least to find where there is one thread.
constexpr std::uint64_t volume([[maybe_unused]] std::uint64_t plain,
                               [[maybe_unused]] std::uint64_t address,
                               [[maybe_unused]] std::uint64_t thread) {
#if defined(VGW_UNDER_THREAD_SANITIZER)
    return thread;
#elif defined(QOR_PLAIN_NEW)
    return address;
#else
    return plain;
#endif
}

/// How many values are tried: VGW_TEST_VALUES, or this build's share of `whole`.
inline std::uint64_t values(std::uint64_t whole) {
    return number("VGW_TEST_VALUES", whole / volume(1, 25, 50));
}

}  // namespace Settings

#endif
