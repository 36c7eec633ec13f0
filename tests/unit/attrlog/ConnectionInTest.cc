#include <qor/attrlog/ByteConnectionIn.h>
#include <qor/attrlog/ConnectionSizeAnchor.h>
#include <qor/core/Exception.h>

#include <gtest/gtest.h>

#include <string>

namespace {

using ByteIn = Qor::ByteConnection::In;

TEST(ConnectionIn, NewOneHasNothingToRead) {
    ByteIn in;
    EXPECT_EQ(in.available(), 0U);
    EXPECT_EQ(in.readPosition(), 0U);
    EXPECT_THROW(in.nextU8(), Qor::AttrLogRecordException);
    EXPECT_EQ(in.nextText(0), "");
    EXPECT_EQ(in.room().size(), 49152U);
}

TEST(ConnectionIn, FullRingTakesNothingUntilReadBytesAreReleased) {
    ByteIn in(8);
    EXPECT_EQ(in.receive("0123456789"), 8U);
    EXPECT_TRUE(in.room().empty());
    EXPECT_EQ(in.nextText(3), "012");
    EXPECT_EQ(in.receive("89"), 0U) << "read, but not released";
    in.releaseRead();
    EXPECT_EQ(in.receive("89"), 2U);
    EXPECT_EQ(in.nextText(7), "3456789");
}

TEST(ConnectionIn, ValuesAcrossTheWrapComeWhole) {
    for (Qor::U32 before = 9; before <= 16; ++before) {
        ByteIn in(16);
        in.receive(std::string(before, 'x'));
        in.nextText(before);
        in.releaseRead();
        ASSERT_EQ(in.receive("12345678"), 8U);
        EXPECT_EQ(in.nextU64(), 0x3132333435363738U) << before;
        EXPECT_EQ(in.readPosition(), before + 8U);
        in.releaseRead();
        ASSERT_EQ(in.receive("abcdefghijklmnop"), 16U);
        EXPECT_EQ(in.nextText(16), "abcdefghijklmnop");
    }
}

TEST(ConnectionIn, ManyLapsKeepCount) {
    ByteIn in(7);
    Qor::U32 number = 0;
    for (int i = 0; i < 10000; ++i) {
        char const bytes[] = {0, 0, static_cast<char>(i >> 8), static_cast<char>(i)};
        ASSERT_EQ(in.receive({bytes, 4}), 4U);
        number = in.nextU32();
        ASSERT_EQ(number, static_cast<Qor::U32>(i));
        in.releaseRead();
    }
    EXPECT_EQ(in.readPosition(), 40000U);
}

TEST(ConnectionIn, GrownRingGoesOnAtItsPlaceInAnyLap) {
    for (Qor::U32 before = 0; before <= 70; ++before) {
        ByteIn in(16);
        for (Qor::U32 passed = 0; passed < before; ++passed) {
            in.receive("x");
            in.nextU8();
            in.releaseRead();
        }
        ASSERT_EQ(in.receive("0123456789abcdef"), 16U);
        EXPECT_EQ(in.nextText(3), "012");
        in.grow();
        EXPECT_EQ(in.readPosition(), before + 3U);
        ASSERT_EQ(in.receive("ghijklmnopqrstuv"), 16U);
        EXPECT_EQ(in.nextText(29), "3456789abcdefghijklmnopqrstuv") << before;
        in.readPositionIs(before);
        EXPECT_EQ(in.nextText(4), "0123");
    }
}

TEST(ConnectionIn, PositionCanBeNotedAndPutBack) {
    ByteIn in(16);
    in.receive("xxxxxxxxxxxx");
    in.nextText(12);
    in.releaseRead();
    in.receive("12345678");
    auto const position = in.readPosition();
    EXPECT_EQ(in.nextU64(), 0x3132333435363738U);
    in.readPositionIs(position);
    EXPECT_EQ(in.nextU16(), 0x3132U);
    in.readPositionIs(position + 6);
    EXPECT_EQ(in.nextU16(), 0x3738U);
}

TEST(ConnectionIn, PositionOutsideOfWhatIsKeptIsRefused) {
    ByteIn in(16);
    in.receive("0123456789");
    in.nextText(4);
    in.releaseRead();
    EXPECT_THROW(in.readPositionIs(3), Qor::AttrLogRecordException);
    EXPECT_THROW(in.readPositionIs(11), Qor::AttrLogRecordException);
    EXPECT_EQ(in.readPosition(), 4U);
    in.readPositionIs(10);
    EXPECT_EQ(in.available(), 0U);
}

TEST(ConnectionIn, AnchorLimitsReadingAndPutsTheOldLimitBack) {
    auto const in = Qor::make<In>(16U);
    in->receive("0123456789");
    {
        Qor::ConnectionInSizeAnchor const outer(in, 6);
        EXPECT_EQ(in->available(), 6U);
        {
            Qor::ConnectionInSizeAnchor const inner(in, 2);
            EXPECT_EQ(in->nextU16(), 0x3031U);
            EXPECT_THROW(in->nextU8(), Qor::AttrLogRecordException);
        }
        EXPECT_EQ(in->available(), 4U);
        Qor::ConnectionInSizeAnchor const wider(in, 100);
        EXPECT_EQ(in->available(), 4U) << "an inner scope does not widen";
    }
    EXPECT_EQ(in->available(), 8U);
    EXPECT_EQ(in->limit(), In::noLimit);
}

TEST(ConnectionIn, AnchorReachesOverTheWrap) {
    auto const in = Qor::make<In>(16U);
    in->receive(std::string(12, 'x'));
    in->nextText(12);
    in->releaseRead();
    in->receive("0123456789");
    Qor::ConnectionInSizeAnchor const record(in, 8);
    EXPECT_EQ(in->available(), 8U);
    EXPECT_EQ(in->nextText(8), "01234567");
    EXPECT_THROW(in->nextU8(), Qor::AttrLogRecordException);
}

TEST(ConnectionIn, AnchorOverWhatIsStillToComeReadsOnWhenItHasCome) {
    auto const in = Qor::make<In>(16U);
    in->receive("01");
    Qor::ConnectionInSizeAnchor const record(in, 4);
    EXPECT_THROW(in->nextU32(), Qor::AttrLogRecordException);
    in->receive("23456");
    EXPECT_EQ(in->nextU32(), 0x30313233U);
    EXPECT_EQ(in->available(), 0U);
}

TEST(ConnectionIn, LimitBeforeThePositionLeavesNothing) {
    ByteIn in(16);
    in.receive("0123456789");
    in.nextText(5);
    in.limitIs(2);
    EXPECT_EQ(in.available(), 0U);
    EXPECT_THROW(in.nextU8(), Qor::AttrLogRecordException);
    in.limitIs(In::noLimit);
    EXPECT_EQ(in.nextU8(), '5');
}

TEST(ConnectionIn, PassesOverBytesOnlyIfTheyComeNext) {
    ByteIn in(8);
    in.receive("abcdef");
    EXPECT_FALSE(in.skipIf("abd"));
    EXPECT_EQ(in.readPosition(), 0U);
    EXPECT_TRUE(in.skipIf("abc"));
    EXPECT_FALSE(in.skipIf("defg"));
    in.limitIs(5);
    EXPECT_FALSE(in.skipIf("def"));
    EXPECT_TRUE(in.skipIf("de"));
    in.limitIs(In::noLimit);
    in.releaseRead();
    in.receive("ghijk");
    // They come, but not in one piece.
    EXPECT_FALSE(in.skipIf("fghi"));
    EXPECT_EQ(in.nextText(4), "fghi");
}

TEST(ConnectionInDeathTest, MoreThanTheRoomStops) {
    ByteIn in(8);
    EXPECT_DEATH(in.receivedInc(9), "Assertion 'count <= room\\(\\).size\\(\\)' failed");
}

}  // namespace
