// The random source of the property tests. VGW_TEST_SEED repeats a run; a failure prints the seed.
#ifndef TESTS_PROPERTY_FRAMEWORK_RANDOM_H
#define TESTS_PROPERTY_FRAMEWORK_RANDOM_H

#include <tests/support/Settings.h>

#include <cstdint>
#include <string>

namespace Sample {

/// Of so many parts of the work this build does one.
inline constexpr int workShare = static_cast<int>(Settings::volume(1, 25, 50));

class Random {
  public:
    explicit Random(std::uint64_t seed) : state_(seed * 2 + 1) {}

    std::uint32_t next() {
        state_ = state_ * 6364136223846793005U + 1442695040888963407U;
        auto const word = static_cast<std::uint32_t>(state_ >> 33);
        return word ^ static_cast<std::uint32_t>(state_ >> 50);
    }
    /// 0 to n - 1.
    std::uint32_t below(std::uint32_t n) { return next() % n; }
    bool oneIn(std::uint32_t n) { return below(n) == 0; }

  private:
    std::uint64_t state_;
};

inline std::uint64_t testSeed() { return Settings::seed(); }
inline std::string seedNote(std::uint64_t seed) { return "VGW_TEST_SEED=" + std::to_string(seed); }

}  // namespace Sample

#endif
