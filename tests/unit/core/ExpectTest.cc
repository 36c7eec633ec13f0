#include <qor/core/Expect.h>

#include <gtest/gtest.h>

#include <stdexcept>
#include <thread>

namespace {

using Qor::Expect;

TEST(Expect, HoldsInItsScopeAlone) {
    EXPECT_FALSE(Expect::isExpected(12));
    {
        Expect const expect(12);
        EXPECT_TRUE(Expect::isExpected(12));
        EXPECT_FALSE(Expect::isExpected(48));
    }
    EXPECT_FALSE(Expect::isExpected(12));
}

TEST(Expect, OuterScopesStayInForce) {
    Expect const outer(48);
    Expect const handler(0);
    Expect const inner(12);
    EXPECT_TRUE(Expect::isExpected(12));
    EXPECT_TRUE(Expect::isExpected(48));
}

TEST(Expect, IdZeroAnnouncesNothing) {
    Expect const expect(0);
    EXPECT_FALSE(Expect::isExpected(0));
    EXPECT_FALSE(Expect::isExpected(12));
}

TEST(Expect, ScopeEndsWhenAnExceptionLeavesIt) {
    try {
        Expect const expect(12);
        throw std::runtime_error("x");
    } catch (std::runtime_error const&) {
        EXPECT_FALSE(Expect::isExpected(12));
    }
}

TEST(Expect, BelongsToItsThread) {
    Expect const expect(12);
    bool elsewhere = true;
    std::thread([&elsewhere] { elsewhere = Expect::isExpected(12); }).join();
    EXPECT_FALSE(elsewhere);
}

}  // namespace
