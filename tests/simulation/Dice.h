// What is random in a script: everything comes from one seed, so a script runs again as it ran.
#ifndef TESTS_SIMULATION_DICE_H
#define TESTS_SIMULATION_DICE_H

#include <cstdint>
#include <random>
#include <string>

namespace Sim {

class Dice {
  public:
    explicit Dice(std::uint64_t seed) : random_(seed) {}
    // REQUIRES: limit > 0
    std::size_t below(std::size_t limit) { return static_cast<std::size_t>(random_() % limit); }
    bool oneIn(std::size_t count) { return below(count) == 0; }
    template <class Range>
    auto& oneOf(Range& range) {
        return range[below(std::size(range))];
    }

  private:
    std::mt19937_64 random_;
};

}  // namespace Sim

#endif
