#include "Wire.h"

#include <kelp/EthAddr.h>
#include <qor/core/Strep.h>
#include <tests/support/Refusal.h>

#include <gtest/gtest.h>

#include <set>
#include <sstream>

namespace {

using Kelp::EthAddr;
using namespace std::string_view_literals;

TEST(EthAddr, DefaultIsAllZero) {
    EXPECT_EQ(EthAddr().stringValue(), "00:00:00:00:00:00");
    EXPECT_EQ(EthAddr(), EthAddr(0, 0, 0));
}

TEST(EthAddr, IsThreeWords) {
    EthAddr const address("00:00:5e:00:53:01"sv);
    EXPECT_EQ(address, EthAddr(0x0000, 0x5e00, 0x5301));
    EXPECT_EQ(address.number(), 0x00005e005301U);
    EXPECT_EQ(EthAddr::fromNumber(0x00005e005301U), address);
}

TEST(EthAddr, NumberOver48BitsIsRefused) {
    EXPECT_EQ(EthAddr::fromNumber(0xFFFFFFFFFFFFU).stringValue(), "ff:ff:ff:ff:ff:ff");
    EXPECT_THROW(EthAddr::fromNumber(0x1000000000000U), Qor::RangeException);
}

TEST(EthAddr, TextComesBackInLowerCase) {
    EXPECT_EQ(EthAddr("00:00:5E:00:53:aF"sv).stringValue(), "00:00:5e:00:53:af");
    EXPECT_EQ(EthAddr("01:23:45:67:89:ab"sv).stringValue(), "01:23:45:67:89:ab");
}

TEST(EthAddr, TextIsKnownAtCompileTime) {
    constexpr EthAddr address("00:00:5e:00:53:01"sv);
    static_assert(address.number() == 0x00005e005301U);
    SUCCEED();
}

TEST(EthAddr, OtherTextsAreRefused) {
    for (char const* const text :
         {"", "00", "00:00:5e:00:53", "00:00:5e:00:53:", "00:00:5e:00:53:0",
          "00:00:5e:00:53:01:", "00:00:5e:00:53:01:02", "0:0:5e:0:53:1", "00-00-5e-00-53-01",
          "00005e005301", "0000.5e00.5301", " 00:00:5e:00:53:01", "00:00:5e:00:53:01 ",
          "00:00:5e:00:53:0g", "00:00:5e:00:5301", "unknown-dst"}) {
        EXPECT_THROW(EthAddr{std::string_view(text)}, Qor::RangeException) << text;
    }
}

TEST(EthAddr, RefusalTellsWhatWhereAndWhatWasExpected) {
    EXPECT_EQ(textRefusal<EthAddr>("00:00:5e:00:53:0g"),
              "EthAddr '00:00:5e:00:53:0g': expected a hexadecimal digit at column 16");
    EXPECT_EQ(textRefusal<EthAddr>("00-00"), "EthAddr '00-00': expected a colon at column 2");
    EXPECT_EQ(textRefusal<EthAddr>("00:00:5e:00:53:01 "),
              "EthAddr '00:00:5e:00:53:01 ': expected the end of the text at column 17");
}

TEST(EthAddr, OrderIsThatOfTheOctets) {
    EXPECT_LT(EthAddr("00:00:5e:00:53:01"sv), EthAddr("00:00:5e:00:53:02"sv));
    EXPECT_LT(EthAddr("00:ff:ff:ff:ff:ff"sv), EthAddr("01:00:00:00:00:00"sv));
    EXPECT_FALSE(EthAddr() < EthAddr());
}

TEST(EthAddr, NeighboursHaveDifferentHashes) {
    std::set<Qor::U32> hashes;
    for (Qor::U64 number = 0; number < 1000; ++number) {
        hashes.insert(EthAddr::fromNumber(0x00005e005300U + number).hash());
        hashes.insert(EthAddr::fromNumber(number << 32).hash());
    }
    EXPECT_EQ(hashes.size(), 2000U);
    EXPECT_EQ(EthAddr("00:00:5e:00:53:01"sv).hash(), 0xB2F03EC7U);
}

TEST(EthAddr, StrepIsQuoted) {
    EthAddr const address("00:00:5e:00:53:01"sv);
    EXPECT_EQ(valueToStrep(address), "'00:00:5e:00:53:01'");
    EXPECT_EQ(Qor::strepToValue<EthAddr>("'00:00:5e:00:53:01'"), address);
    EXPECT_THROW(Qor::strepToValue<EthAddr>("00:00:5e:00:53:01"), Qor::RangeException);
    EXPECT_THROW(Qor::strepToValue<EthAddr>("'00:00:5e:00:53:01"), Qor::RangeException);
}

TEST(EthAddr, StreamsItsTextWithoutQuotes) {
    std::ostringstream stream;
    stream << EthAddr("00:00:5e:00:53:01"sv);
    EXPECT_EQ(stream.str(), "00:00:5e:00:53:01");
}

TEST(EthAddr, GoesOverTheWireInTheOrderOfItsOctets) {
    EthAddr const address("00:00:5e:00:53:01"sv);
    auto const wire = wireOf(address);
    EXPECT_EQ(wire, "\x00\x00\x5e\x00\x53\x01"sv);
    EXPECT_EQ(EthAddr(reading(wire).ptr(), Qor::StreamBogon()), address);
}

TEST(EthAddr, CutOnTheWireIsRefused) {
    for (std::size_t cut = 0; cut < 6; ++cut) {
        auto const in = reading("\x00\x00\x5e\x00\x53\x01"sv.substr(0, cut));
        EXPECT_THROW(EthAddr(in.ptr(), Qor::StreamBogon()), Qor::AttrLogRecordException) << cut;
    }
}

}  // namespace
