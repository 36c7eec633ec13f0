// Goes through all schedules of a row of ends, each from its beginning, up to their limits. Of
// those that differ only in the order of two steps of different ends, neither of which needs the
// other, one is enough.
#ifndef TESTS_PROPERTY_INTERLEAVINGS_SCHEDULES_H
#define TESTS_PROPERTY_INTERLEAVINGS_SCHEDULES_H

#include "Ends.h"

namespace Ends {

class Schedules {
  public:
    Schedules(Sort const& sort, Start const& start, Limits const& limits)
        : sort_(sort), start_(start), limits_(limits) {}

    // The first that goes wrong in words, with what goes wrong; empty if none does.
    std::string run();
    // How many there were.
    std::uint64_t count() const { return count_; }

  private:
    bool visit(std::vector<Step> const& before);
    bool isAnotherOrder(Step const& next, std::vector<Step> const& before) const;

    Sort const& sort_;
    Start const start_;
    Limits const limits_;
    std::vector<Step> path_;
    std::uint64_t count_ = 0;
    std::string found_;
};

}  // namespace Ends

#endif
