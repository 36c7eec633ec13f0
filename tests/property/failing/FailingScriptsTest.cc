// The simulation's first scripts, in each of which memory fails once: at places spread over all of
// its requests, VGW_FAILURES of them a script. Whoever asked is told by an exception, a session
// ends and says so, or the script comes to its end as if nothing had been; never does a copy differ
// in silence. Nothing stays behind, and the same script then runs as it did before.
#include <tests/memory/CountingNew.h>
#include <tests/simulation/Script.h>
#include <tests/support/Settings.h>

#include <qor/core/Exception.h>

#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <new>
#include <optional>
#include <random>

namespace {

using Sim::Outcome;
using Sim::Request;
using Sim::runScript;

constexpr std::uint64_t scripts = 20;
// Enough for all ends to be reached, few enough for the time of a test.
constexpr unsigned steps = 60;

struct Counts {
    std::uint64_t told = 0;
    std::uint64_t ended = 0;
    std::uint64_t completed = 0;
};

// A session that has ended names its reason wherever it is asked for one.
bool hasEnded(Outcome const& outcome) {
    return outcome.violation.starts_with("closed: ") ||
           outcome.violation.find("std::bad_alloc") != std::string::npos;
}

// What the script came to, and whether memory failed in it; nothing where who asked was told.
std::optional<Outcome> runFailing(Request const& request, std::uint64_t nth, bool& hasFailed) {
    std::optional<Outcome> outcome;
    Memory::failAt(nth);
    try {
        outcome = runScript(request);
    } catch (std::bad_alloc const&) {
    } catch (Qor::Exception const&) {
    }
    hasFailed = Memory::hasFailed();
    Memory::failAt(0);
    return outcome;
}

void judge(std::optional<Outcome> const& outcome, std::uint64_t digest, Counts& counts) {
    if (!outcome) {
        ++counts.told;
    } else if (hasEnded(*outcome)) {
        ++counts.ended;
    } else {
        ++counts.completed;
        EXPECT_EQ(outcome->violation, "");
        EXPECT_EQ(outcome->digest, digest);
    }
}

TEST(FailingScripts, EachRequestForMemoryMayFail) {
    std::uint64_t const failures = Settings::number("VGW_FAILURES", Settings::volume(60, 3, 2));
    std::mt19937_64 random(Settings::seed());
    auto const start = std::chrono::steady_clock::now();
    Counts counts;
    std::uint64_t allRequests = 0;
    for (std::uint64_t seed = 1; seed <= scripts && !HasFailure(); ++seed) {
        Request const request{seed, steps};
        static_cast<void>(runScript(request));
        std::uint64_t const asked = Memory::asked();
        auto const whole = runScript(request);
        std::uint64_t const requests = Memory::asked() - asked;
        allRequests += requests;
        ASSERT_EQ(whole.violation, "");
        for (std::uint64_t i = 0; i < failures && !HasFailure(); ++i) {
            // One in each share of the requests.
            std::uint64_t const nth = (i * requests + random() % requests) / failures + 1;
            SCOPED_TRACE("script " + std::to_string(seed) + ", request " + std::to_string(nth) +
                         " of " + std::to_string(requests) + ", " + Settings::seedText());
            std::size_t const before = Memory::heldBlocks();
            bool hasFailed = false;
            {
                auto const outcome = runFailing(request, nth, hasFailed);
                judge(outcome, whole.digest, counts);
            }
            EXPECT_TRUE(hasFailed);
            EXPECT_LE(Memory::heldBlocks(), before + 2) << "something is kept";
        }
        EXPECT_EQ(runScript(request).digest, whole.digest);
    }
    std::chrono::duration<double> const past = std::chrono::steady_clock::now() - start;
    auto const all = counts.told + counts.ended + counts.completed;
    std::printf(
        "%llu failures in %.1f s, %.0f a second: %llu told to who asked, %llu ended a "
        "session, %llu changed nothing; of %llu requests\n",
        static_cast<unsigned long long>(all), past.count(), static_cast<double>(all) / past.count(),
        static_cast<unsigned long long>(counts.told), static_cast<unsigned long long>(counts.ended),
        static_cast<unsigned long long>(counts.completed),
        static_cast<unsigned long long>(allRequests));
    EXPECT_EQ(all, scripts * failures);
    EXPECT_GT(counts.told, 0U);
}

}  // namespace
