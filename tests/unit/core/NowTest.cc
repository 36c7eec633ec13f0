#include <qor/core/Now.h>

#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <memory>

#include <unistd.h>

namespace {

TEST(Now, IsTheSystemsTimeInSeconds) {
    using std::chrono::system_clock;
    auto const seconds = [] {
        return std::chrono::duration<double>(system_clock::now().time_since_epoch()).count();
    };
    auto const before = seconds();
    auto const now = Qor::now();
    EXPECT_LE(before, now);
    EXPECT_LE(now, seconds());
}

TEST(Now, CanBeReplacedAndPutBack) {
    double time = 1000.5;
    Qor::nowIs([&time] { return time; });
    EXPECT_EQ(Qor::now(), 1000.5);
    time = 2000;
    EXPECT_EQ(Qor::now(), 2000);
    Qor::nowIs({});
    EXPECT_GT(Qor::now(), 1e9);
}

// What is registered before the first use of a static runs after that static's end.
TEST(NowDeathTest, ClockMayBeReadWhileTheProcessEnds) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    struct State {
        ~State() { time = -1; }
        double time = 1000.5;
    };
    auto const run = [] {
        std::atexit([] { std::fprintf(stderr, "at the end: %g", Qor::now()); });
        Qor::nowIs([state = std::make_shared<State>()] { return state->time; });
        std::exit(0);
    };
    EXPECT_EXIT(run(), testing::ExitedWithCode(0), "at the end: 1000.5");
}

TEST(NowDeathTest, WhatAReplacedClockHeldMayReadTheClockAtItsEnd) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    struct Reading {
        ~Reading() { std::fprintf(stderr, "then %g ", Qor::now()); }
    };
    auto const run = [] {
        alarm(10);
        Qor::nowIs([held = std::make_shared<Reading>()] { return 1.0; });
        Qor::nowIs([held = std::make_shared<Reading>()] { return 2.0; });
        Qor::nowIs({});
        std::exit(0);
    };
    EXPECT_EXIT(run(), testing::ExitedWithCode(0), "then 2 then 1.*e\\+09");
}

}  // namespace
