// The keys of the map rows, the same in every run: UUID texts of 36 characters, and numbers as they
// are given out, one after the other.
#ifndef BENCH_MAPS_KEYS_H
#define BENCH_MAPS_KEYS_H

#include <cstdint>
#include <string>
#include <vector>

namespace Bench {

/// `count` UUID texts; different `series` have none in common.
std::vector<std::string> uuids(std::size_t count, unsigned series);

/// The numbers from `first` on, `count` of them, in a shuffled order.
std::vector<std::uint32_t> numbers(std::size_t count, std::uint32_t first);

/// 0 to `count` - 1 in an order that has nothing to do with that of insertion.
std::vector<std::uint32_t> shuffledOrder(std::size_t count);

}  // namespace Bench

#endif
