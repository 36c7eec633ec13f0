// The seed and the size of a run. VGW_TEST_SEED repeats a run, VGW_TEST_VALUES sets the number of
// values or steps. Under the sanitizers there are fewer.
#ifndef TESTS_PROPERTY_VGW_SETTINGS_H
#define TESTS_PROPERTY_VGW_SETTINGS_H

#include <cstdlib>
#include <random>
#include <string>

#include <qor/core/Types.h>

using Random = std::mt19937_64;

inline Qor::U64 setting(char const* name, Qor::U64 otherwise) {
    char const* const text = std::getenv(name);
    return text != nullptr ? std::strtoull(text, nullptr, 10) : otherwise;
}

inline Qor::U64 seed() { return setting("VGW_TEST_SEED", 20240229); }

inline Qor::U64 amount(Qor::U64 whole) {
#ifdef QOR_PLAIN_NEW
    return setting("VGW_TEST_VALUES", whole / 30);
#else
    return setting("VGW_TEST_VALUES", whole);
#endif
}

inline std::string seedText() { return "VGW_TEST_SEED=" + std::to_string(seed()); }

#endif
