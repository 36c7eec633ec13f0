#include <vgwd/serve/Quotas.h>

#include <gtest/gtest.h>

#include <limits>

namespace Vgwd {
namespace {

constexpr std::uint64_t most = std::numeric_limits<std::uint64_t>::max();

TEST(Quotas, AreKeptForEachIdentity) {
    Quotas quotas({2, 1, 100});
    EXPECT_TRUE(quotas.takeSession("a"));
    EXPECT_TRUE(quotas.takeSession("a"));
    EXPECT_FALSE(quotas.takeSession("a"));
    EXPECT_TRUE(quotas.takeSession("b"));
    EXPECT_TRUE(quotas.takeMount("a"));
    EXPECT_FALSE(quotas.takeMount("a"));
    EXPECT_TRUE(quotas.takeMount("b"));
}

TEST(Quotas, WhatIsGivenBackCanBeTakenAgain) {
    Quotas quotas({1, 1, 100});
    EXPECT_TRUE(quotas.takeSession("a") && quotas.takeMount("a"));
    quotas.giveBack("a", {1, 1, 0});
    EXPECT_EQ(quotas.useOf("a").sessions, 0U);
    EXPECT_TRUE(quotas.takeSession("a") && quotas.takeMount("a"));
}

TEST(Quotas, HalfTextsOfAllSessionsCountTogether) {
    Quotas quotas({2, 1, 100});
    EXPECT_TRUE(quotas.takeSession("a") && quotas.takeSession("a"));
    EXPECT_TRUE(quotas.moveHalfTexts("a", 0, 60));
    EXPECT_FALSE(quotas.moveHalfTexts("a", 0, 60));
    EXPECT_TRUE(quotas.moveHalfTexts("a", 60, 0));
    EXPECT_EQ(quotas.useOf("a").halfTexts, 60U);
}

TEST(Quotas, EntitiesOfAllSessionsCountTogether) {
    Quotas quotas({2, 1, 100, 10});
    EXPECT_TRUE(quotas.takeSession("a") && quotas.takeSession("a") && quotas.takeSession("b"));
    EXPECT_TRUE(quotas.moveEntities("a", 0, 6));
    EXPECT_FALSE(quotas.moveEntities("a", 0, 5));
    EXPECT_TRUE(quotas.moveEntities("b", 0, 10));
    quotas.giveBack("a", {1, 0, 0, 6});
    EXPECT_EQ(quotas.useOf("a").entities, 5U);
}

TEST(Quotas, CountsStopAtTheGreatestNumberAndAtNone) {
    Quotas quotas({2, 1, most});
    EXPECT_TRUE(quotas.takeSession("a"));
    EXPECT_TRUE(quotas.moveHalfTexts("a", 0, most));
    EXPECT_TRUE(quotas.moveHalfTexts("a", 0, most));
    EXPECT_EQ(quotas.useOf("a").halfTexts, most);
    EXPECT_TRUE(quotas.moveHalfTexts("a", most, 7));
    EXPECT_TRUE(quotas.moveHalfTexts("a", most, 0));
    EXPECT_EQ(quotas.useOf("a").halfTexts, 0U);
    quotas.giveBack("a", {0, 5, most});
    EXPECT_EQ(quotas.useOf("a").mounts, 0U);
}

TEST(Quotas, NobodyGivesBackWhatHeNeverHad) {
    Quotas quotas({1, 1, 1});
    quotas.giveBack("a", {1, 1, 1});
    EXPECT_TRUE(quotas.takeSession("a"));
    EXPECT_FALSE(quotas.takeSession("a"));
}

}  // namespace
}  // namespace Vgwd
