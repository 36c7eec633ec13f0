// Ends in a row that write the same: whatever the order of what they do, all hold the same in the
// end, nothing stays owed, and what nobody opposes is not lost.
#include "Schedules.h"

#include <tests/support/Settings.h>

#include <gtest/gtest.h>

#include <cstdio>

namespace {

using Ends::Limits;
using Ends::Schedules;
using Ends::Sort;
using Ends::Start;

unsigned told(char const* name, std::uint64_t otherwise) {
    return static_cast<unsigned>(Settings::number(name, otherwise));
}

std::string inWords(Start const& start) {
    return std::string(start.originalHas ? "original has, " : "") +
           (start.copyHas ? "copy has, " : "") + (start.isSettled ? "mounted" : "mounting");
}

// VGW_SHORTAGES and VGW_CHANGES go further than the build's own share.
void goThrough(Sort const& sort, Limits limits) {
    limits.changes = told("VGW_CHANGES", limits.changes);
    limits.shortages = told("VGW_SHORTAGES", limits.shortages);
    std::uint64_t count = 0;
    for (unsigned bits = 0; bits < 8; ++bits) {
        Start const start{(bits & 1U) != 0, (bits & 2U) != 0, (bits & 4U) != 0};
        if (start.isSettled && start.copyHas) continue;
        Schedules schedules(sort, start, limits);
        std::string const found = schedules.run();
        EXPECT_EQ(found, "") << inWords(start);
        count += schedules.count();
    }
    std::printf("%llu schedules of %u steps\n", static_cast<unsigned long long>(count),
                limits.steps);
}

class Interleavings : public testing::TestWithParam<Sort> {
  protected:
    // Of what goes over in many or in long frames there are fewer schedules in the same time.
    // VGW_MORE_STEPS are added.
    unsigned share(std::uint64_t steps) const {
        return static_cast<unsigned>(steps) + told("VGW_MORE_STEPS", 0) - GetParam().weight;
    }
};

TEST_P(Interleavings, BothEndsHoldTheSameInTheEnd) {
    Limits limits;
    limits.steps = share(Settings::volume(7, 5, 4));
    goThrough(GetParam(), limits);
}

TEST_P(Interleavings, BothEndsHoldTheSameAfterACut) {
    Limits limits;
    limits.steps = share(Settings::volume(5, 3, 3));
    limits.cuts = 1;
    goThrough(GetParam(), limits);
}

TEST_P(Interleavings, AllOfThreeHoldTheSameInTheEnd) {
    Limits limits;
    limits.ends = 3;
    limits.steps = share(Settings::volume(5, 3, 3));
    goThrough(GetParam(), limits);
}

INSTANTIATE_TEST_SUITE_P(All, Interleavings, testing::ValuesIn(Ends::sorts()),
                         [](auto const& one) { return std::string(one.param.name); });

}  // namespace
