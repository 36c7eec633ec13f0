#include "Script.h"

#include <tests/support/Settings.h>

#include <gtest/gtest.h>

namespace {

using Sim::Request;
using Sim::runScript;

constexpr std::uint64_t scripts = Settings::volume(1080, 108, 36);

TEST(Simulation, EveryCopyEqualsItsSourceAndThePlan) {
    Sim::Volumes sum;
    for (std::uint64_t seed = 1; seed <= scripts; ++seed) {
        auto const outcome = runScript(Request{seed});
        sum.changes += outcome.volumes.changes;
        sum.cuts += outcome.volumes.cuts;
        sum.crashes += outcome.volumes.crashes;
        sum.returns += outcome.volumes.returns;
        sum.described += outcome.volumes.described;
        ASSERT_EQ(outcome.violation, "")
            << outcome.topology << "; to see it again: simulate --trace --scripts 1 --seed "
            << seed;
    }
    EXPECT_GT(sum.changes, 17 * scripts);
    EXPECT_GT(sum.cuts, scripts / 3);
    EXPECT_GT(sum.crashes, scripts / 30);
    EXPECT_GT(sum.returns, scripts / 30);
    EXPECT_GT(sum.described, scripts / 3);
}

TEST(Simulation, AuthorsOfTheSameValuesConverge) {
    for (std::uint64_t seed = 1; seed <= scripts / 3; ++seed) {
        auto const outcome = runScript(Request{seed, 0, true});
        ASSERT_EQ(outcome.violation, "")
            << outcome.topology
            << "; to see it again: simulate --rivals --trace --scripts 1 --seed " << seed;
    }
}

TEST(Simulation, MountsAreGivenBackAndMadeAgainOnTheSameConnection) {
    std::uint64_t remounts = 0;
    for (std::uint64_t seed = 1; seed <= scripts / 3; ++seed) {
        Request const request{seed, 0, seed % 4 == 0, true};
        auto const outcome = runScript(request);
        remounts += outcome.volumes.remounts;
        ASSERT_EQ(outcome.violation, "")
            << outcome.topology << "; to see it again: simulate --remounts --trace --scripts 1 "
            << (request.rivals ? "--rivals " : "") << "--seed " << seed;
    }
    EXPECT_GT(remounts, scripts / 20);
}

TEST(Simulation, CollectionsWhoseKeysTieConverge) {
    for (std::uint64_t seed = 1; seed <= scripts / 4; ++seed) {
        Request const request{seed, 0, seed % 3 == 0, seed % 4 == 0, true};
        auto const outcome = runScript(request);
        ASSERT_EQ(outcome.violation, "")
            << outcome.topology << "; to see it again: simulate --ties --trace --scripts 1 "
            << (request.rivals ? "--rivals " : "") << (request.remounts ? "--remounts " : "")
            << "--seed " << seed;
    }
}

TEST(Simulation, ClassesThatAreMetLateAreLearnedAndConverge) {
    std::uint64_t learnings = 0;
    for (std::uint64_t seed = 1; seed <= scripts / 3; ++seed) {
        Request request{seed, 0, seed % 4 == 0, seed % 3 == 0, seed % 5 == 0};
        request.late = true;
        auto const outcome = runScript(request);
        learnings += outcome.volumes.learnings;
        ASSERT_EQ(outcome.violation, "")
            << outcome.topology << "; to see it again: simulate --late --trace --scripts 1 "
            << (request.rivals ? "--rivals " : "") << (request.remounts ? "--remounts " : "")
            << (request.ties ? "--ties " : "") << "--seed " << seed;
    }
    EXPECT_GT(learnings, scripts / 6);
}

// A script that was found when all processes had the classes and no maker ended, kept as it was.
Request compiled(std::uint64_t seed, bool rivals = false) {
    Request request{seed, 0, rivals};
    request.compiled = true;
    request.makersStay = true;
    return request;
}

// Each is a run in which a child, or what its author wrote below it, had got lost while the source
// removed or replaced others of the same collection; or a flow was owed for ever.
TEST(Simulation, NoWriteIsLostThatNobodyOpposes) {
    for (std::uint64_t const seed : {10, 52, 2019, 1021685}) {
        EXPECT_EQ(runScript(compiled(seed)).violation, "") << seed;
    }
    for (std::uint64_t const seed : {3, 69, 2013}) {
        EXPECT_EQ(runScript(compiled(seed, true)).violation, "") << seed;
    }
}

TEST(Simulation, NoFlowStaysOwedForATargetThatTheSourceTookAway) {
    EXPECT_EQ(runScript(compiled(1887, true)).violation, "");
}

// A copy removed a child, made another of its name and removed that as well; the source's word that
// the first has gone settled what the copy owed, and the second stayed at the source.
TEST(Simulation, NoChildStaysAtTheSourceThatItsCopyLetGo) {
    EXPECT_EQ(runScript(compiled(5011256, true)).violation, "");
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

}  // namespace
