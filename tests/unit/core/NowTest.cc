#include <qor/core/Now.h>

#include <gtest/gtest.h>

#include <chrono>

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

}  // namespace
