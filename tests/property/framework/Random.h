// The random source of the property tests. VGW_TEST_SEED repeats a run; a failure prints the seed.
#ifndef TESTS_PROPERTY_FRAMEWORK_RANDOM_H
#define TESTS_PROPERTY_FRAMEWORK_RANDOM_H

#include <cstdint>
#include <cstdlib>
#include <string>

namespace Sample {

/// How much of the work is done in this build: all of it, or a share where a sanitizer makes each
/// step many times as dear.
#ifdef QOR_PLAIN_NEW
inline constexpr int workShare = 25;
#else
inline constexpr int workShare = 1;
#endif

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

inline std::uint64_t testSeed() {
    char const* const text = std::getenv("VGW_TEST_SEED");
    return text ? std::strtoull(text, nullptr, 10) : 20240229;
}
inline std::string seedNote(std::uint64_t seed) { return "VGW_TEST_SEED=" + std::to_string(seed); }

}  // namespace Sample

#endif
