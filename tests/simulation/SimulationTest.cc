#include "Script.h"

#include <tests/support/Settings.h>

#include <gtest/gtest.h>

namespace {

using Sim::Request;
using Sim::runScript;

constexpr std::uint64_t scripts = Settings::volume(1200, 120, 40);

TEST(Simulation, EveryCopyEqualsItsSourceAndThePlan) {
    for (std::uint64_t seed = 1; seed <= scripts; ++seed) {
        auto const outcome = runScript(Request{seed});
        ASSERT_EQ(outcome.violation, "")
            << outcome.topology << "; to see it again: simulate --trace --scripts 1 --seed "
            << seed;
    }
}

TEST(Simulation, AuthorsOfTheSameValuesConverge) {
    for (std::uint64_t seed = 1; seed <= scripts / 3; ++seed) {
        auto const outcome = runScript(Request{seed, 0, true});
        ASSERT_EQ(outcome.violation, "")
            << outcome.topology
            << "; to see it again: simulate --rivals --trace --scripts 1 --seed " << seed;
    }
}

TEST(Simulation, OneSeedIsOneRun) {
    for (std::uint64_t seed = 7000; seed < 7010; ++seed) {
        auto const once = runScript(Request{seed, 150});
        auto const again = runScript(Request{seed, 150});
        EXPECT_EQ(once.digest, again.digest) << seed;
        EXPECT_EQ(once.volumes.bytes, again.volumes.bytes) << seed;
    }
}

TEST(Simulation, OtherSeedsAreOtherRuns) {
    EXPECT_NE(runScript(Request{7000, 150}).digest, runScript(Request{7001, 150}).digest);
}

TEST(Simulation, ScriptsChangeCutAndCrash) {
    Sim::Volumes sum;
    for (std::uint64_t seed = 1; seed <= 60; ++seed) {
        auto const outcome = runScript(Request{seed});
        sum.changes += outcome.volumes.changes;
        sum.cuts += outcome.volumes.cuts;
        sum.crashes += outcome.volumes.crashes;
    }
    EXPECT_GT(sum.changes, 1000U);
    EXPECT_GT(sum.cuts, 20U);
    EXPECT_GT(sum.crashes, 2U);
}

}  // namespace
