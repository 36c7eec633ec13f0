// The simulation's first scripts over sockets, in each of which one system call that moves bytes
// fails, or all from one on until the script comes to rest: at places spread over all of them,
// VGW_FAILURES of them a script and kind. What is for later changes nothing. What ends a connection
// is told by its name, and a new one makes all equal.
#include "../calls/FailingCalls.h"

#include <tests/simulation/Script.h>
#include <tests/support/Settings.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <limits>
#include <random>

namespace {

using Calls::Call;
using Sim::Outcome;
using Sim::Request;

constexpr std::uint64_t scripts = Settings::volume(20, 3, 2);
constexpr unsigned steps = 100;
constexpr std::uint64_t all = std::numeric_limits<std::uint64_t>::max() / 2;

struct Kind {
    char const* name;
    Call call;
    int error;
};
constexpr std::array<Kind, 10> kinds{{{"SendInterrupted", Call::send, EINTR},
                                      {"SendWithoutRoom", Call::send, EAGAIN},
                                      {"SendOfOneByte", Call::send, Calls::oneByte},
                                      {"SendToNobody", Call::send, EPIPE},
                                      {"SendReset", Call::send, ECONNRESET},
                                      {"ReadInterrupted", Call::read, EINTR},
                                      {"ReadOfNothing", Call::read, EAGAIN},
                                      {"ReadOfOneByte", Call::read, Calls::oneByte},
                                      {"ReadReset", Call::read, ECONNRESET},
                                      {"ReadTimedOut", Call::read, ETIMEDOUT}}};

struct Played {
    Outcome outcome;
    std::uint64_t made = 0;  // calls until the script came to rest
    bool hasFailed = false;
};

Played runFailing(std::uint64_t seed, Calls::Failure const& failure) {
    Played run;
    // Where a connection may end, writers of one value have to be reckoned with.
    Request request{seed, steps, Calls::isEnd(failure.error)};
    request.sockets = true;
    request.onRest = [&run] {
        run.made = Calls::made();
        run.hasFailed = Calls::hasFailed();
        Calls::failNone();
    };
    Calls::failAt(failure);
    run.outcome = Sim::runScript(request);
    Calls::failNone();
    return run;
}

// A reason is that of the system, or that of the end which hears of it by its peer.
bool isTold(std::string const& reason, int error) {
    return reason.find(std::strerror(error)) != std::string::npos ||
           reason.find("the peer has closed the connection") != std::string::npos;
}

class FailingCallScripts : public testing::TestWithParam<Kind> {
  protected:
    void judge(Played const& run) {
        Kind const& kind = GetParam();
        EXPECT_EQ(run.outcome.violation, "") << run.outcome.topology;
        EXPECT_TRUE(run.hasFailed);
        bool const isEnd = Calls::isEnd(kind.error);
        // The script may have cut the connection in whose end the call failed.
        EXPECT_TRUE(isEnd || run.outcome.losses.empty());
        runs_ += isEnd ? 1 : 0;
        endless_ += isEnd && run.outcome.losses.empty() ? 1 : 0;
        for (auto const& reason : run.outcome.losses) {
            EXPECT_TRUE(isTold(reason, kind.error)) << reason;
        }
        ends_ += run.outcome.losses.size();
    }
    std::uint64_t runs_ = 0;
    std::uint64_t endless_ = 0;
    std::uint64_t ends_ = 0;
};

TEST_P(FailingCallScripts, EachConvergesWhicheverFails) {
    Kind const& kind = GetParam();
    std::uint64_t const most = Settings::number("VGW_FAILURES", Settings::volume(2, 1, 1));
    std::mt19937_64 random(Settings::seed());
    std::uint64_t calls = 0;
    for (std::uint64_t seed = 1; seed <= scripts && !HasFailure(); ++seed) {
        auto const whole = runFailing(seed, {kind.call, kind.error, all});
        ASSERT_EQ(whole.outcome.violation, "");
        ASSERT_GT(whole.made, 0U);
        std::uint64_t const failures = std::min(most, whole.made);
        calls += whole.made;
        for (std::uint64_t i = 0; i < failures && !HasFailure(); ++i) {
            // One in each share of the calls.
            std::uint64_t const nth = (i * whole.made + random() % whole.made) / failures + 1;
            for (std::uint64_t const times : {std::uint64_t{1}, all}) {
                SCOPED_TRACE("script " + std::to_string(seed) + ", call " + std::to_string(nth) +
                             " of " + std::to_string(whole.made) +
                             (times == 1 ? "" : " and all behind it") + ", " +
                             Settings::seedText());
                judge(runFailing(seed, {kind.call, kind.error, nth, times}));
            }
        }
    }
    EXPECT_LE(endless_, runs_ / 10);
    std::printf("%llu connections ended; of %llu calls\n", static_cast<unsigned long long>(ends_),
                static_cast<unsigned long long>(calls));
}

INSTANTIATE_TEST_SUITE_P(All, FailingCallScripts, testing::ValuesIn(kinds),
                         [](auto const& one) { return std::string(one.param.name); });

}  // namespace
