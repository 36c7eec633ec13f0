#include <qor/collections/BitSet.h>

#include <gtest/gtest.h>

namespace {

using Flags = Qor::BitSet<27, Qor::U32>;

TEST(BitSet, StartsEmpty) {
    Flags const flags;
    EXPECT_EQ(flags.word(), 0U);
    for (int pos = 0; pos < 27; ++pos) {
        EXPECT_FALSE(flags.bit(pos));
    }
}

TEST(BitSet, EachPositionIsItsOwnBit) {
    for (int pos = 0; pos < 27; ++pos) {
        Flags flags;
        flags.bitIs(pos, true);
        EXPECT_EQ(flags.word(), 1U << pos);
        EXPECT_TRUE(flags.bit(pos));
        flags.bitIs(pos, true);
        EXPECT_EQ(flags.word(), 1U << pos);
        flags.bitIs(pos, false);
        EXPECT_EQ(flags.word(), 0U);
    }
}

TEST(BitSet, ClearingLeavesTheOthers) {
    Flags flags(0x7FFFFFF);
    flags.bitIs(13, false);
    EXPECT_EQ(flags.word(), 0x7FFDFFFU);
}

TEST(BitSet, OperatorsWorkOnTheWords) {
    Flags const a(0xF0);
    Flags const b(0x3C);
    EXPECT_EQ((a & b).word(), 0x30U);
    EXPECT_EQ((a | b).word(), 0xFCU);
    EXPECT_TRUE(a == Flags(0xF0));
    EXPECT_FALSE(a == b);
}

class BitSetDeathTest : public testing::TestWithParam<int> {
  protected:
    BitSetDeathTest() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

TEST_P(BitSetDeathTest, SettingAPositionOutsideStopsInLine37) {
    Flags flags;
    EXPECT_EXIT(flags.bitIs(GetParam(), true), testing::KilledBySignal(SIGABRT),
                "Qor/BitSet:37: .*Assertion 'pos>=0 && pos<bits' failed\\.");
}

TEST_P(BitSetDeathTest, ClearingAPositionOutsideStopsInLine43) {
    Flags flags;
    EXPECT_EXIT(flags.bitIs(GetParam(), false), testing::KilledBySignal(SIGABRT),
                "Qor/BitSet:43: .*Assertion 'pos>=0 && pos<bits' failed\\.");
}

TEST_P(BitSetDeathTest, ReadingAPositionOutsideStops) {
    Flags const flags;
    EXPECT_EXIT(static_cast<void>(flags.bit(GetParam())), testing::KilledBySignal(SIGABRT),
                "Qor/BitSet:37: .*Assertion 'pos>=0 && pos<bits' failed\\.");
}

INSTANTIATE_TEST_SUITE_P(Outside, BitSetDeathTest, testing::Values(-1, 27, 32, 1000));

}  // namespace
