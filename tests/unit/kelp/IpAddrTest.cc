#include "Wire.h"

#include <kelp/IpAddr.h>
#include <qor/core/Strep.h>
#include <tests/support/Refusal.h>

#include <gtest/gtest.h>

#include <arpa/inet.h>

#include <cstring>
#include <set>
#include <sstream>

namespace {

using Kelp::IpAddr;
using namespace std::string_view_literals;

TEST(IpAddr, DefaultIsAllZero) {
    EXPECT_EQ(IpAddr().networkOrder(), 0U);
    EXPECT_EQ(IpAddr().stringValue(), "0.0.0.0");
    EXPECT_EQ(IpAddr(), IpAddr(0));
}

TEST(IpAddr, IsHeldInNetworkByteOrder) {
    IpAddr const address("192.0.2.1"sv);
    auto const word = address.networkOrder();
    unsigned char bytes[4];
    std::memcpy(bytes, &word, sizeof bytes);
    EXPECT_EQ(bytes[0], 192);
    EXPECT_EQ(bytes[1], 0);
    EXPECT_EQ(bytes[2], 2);
    EXPECT_EQ(bytes[3], 1);
    EXPECT_EQ(address.hostOrder(), 0xC0000201U);
    EXPECT_EQ(word, htonl(0xC0000201U));
}

TEST(IpAddr, TextComesBack) {
    for (char const* const text : {"0.0.0.0", "192.0.2.1", "255.255.255.255", "10.0.100.9"}) {
        EXPECT_EQ(IpAddr(std::string_view(text)).stringValue(), text);
    }
}

TEST(IpAddr, TextIsKnownAtCompileTime) {
    constexpr IpAddr address("192.0.2.1"sv);
    static_assert(address.hostOrder() == 0xC0000201U);
    SUCCEED();
}

TEST(IpAddr, OtherTextsAreRefused) {
    for (char const* const text :
         {"",          ".",         "1",        "1.2.3",      "1.2.3.",
          "1.2.3.4.",  "1.2.3.4.5", ".1.2.3.4", "1..2.3",     "256.0.0.1",
          "1.2.3.256", "01.2.3.4",  "1.2.3.04", "00.0.0.0",   " 1.2.3.4",
          "1.2.3.4 ",  "1. 2.3.4",  "-1.2.3.4", "+1.2.3.4",   "0x1.2.3.4",
          "1,2,3,4",   "a.b.c.d",   "::1",      "1.2.3.4/24", "99999999999.2.3.4"}) {
        EXPECT_THROW(IpAddr{std::string_view(text)}, Qor::RangeException) << text;
    }
    EXPECT_THROW(IpAddr("1.2.3.4\0"sv), Qor::RangeException);
}

TEST(IpAddr, RefusalAgreesWithTheSystemsParser) {
    for (char const* const text : {"1.2.3.4", "01.2.3.4", "0.0.0.0", "00.0.0.0", "1.2.3",
                                   "1.2.3.256", "1.2.3.4.", "1.2.3.0004", "255.255.255.255"}) {
        in_addr system{};
        bool const isTaken = inet_pton(AF_INET, text, &system) == 1;
        EXPECT_EQ(textRefusal<IpAddr>(text) == "not refused", isTaken) << text;
        if (isTaken) {
            EXPECT_EQ(IpAddr(std::string_view(text)).networkOrder(), system.s_addr);
        }
    }
}

TEST(IpAddr, RefusalTellsWhatWhereAndWhatWasExpected) {
    EXPECT_EQ(
        textRefusal<IpAddr>("192.0.2.256"),
        "IpAddr '192.0.2.256': expected an octet from 0 to 255 without leading zero at column 8");
    EXPECT_EQ(textRefusal<IpAddr>("192.0.2"), "IpAddr '192.0.2': expected a dot at column 7");
    EXPECT_EQ(textRefusal<IpAddr>("192.0.2.1x"),
              "IpAddr '192.0.2.1x': expected the end of the text at column 9");
}

TEST(IpAddr, OrderIsThatOfTheOctets) {
    EXPECT_LT(IpAddr("192.0.2.1"sv), IpAddr("192.0.2.2"sv));
    EXPECT_LT(IpAddr("9.255.255.255"sv), IpAddr("10.0.0.0"sv));
    EXPECT_FALSE(IpAddr("192.0.2.1"sv) < IpAddr("192.0.2.1"sv));
    EXPECT_NE(IpAddr("192.0.2.1"sv), IpAddr("1.2.0.192"sv));
}

TEST(IpAddr, DifferentAddressesHaveDifferentHashes) {
    std::set<Qor::U32> hashes;
    for (Qor::U32 number = 0; number < 65536; ++number) {
        hashes.insert(IpAddr::fromHostOrder(0xC0000000U + number * 256).hash());
    }
    EXPECT_EQ(hashes.size(), 65536U);
    EXPECT_EQ(IpAddr("192.0.2.1"sv).hash(), 0xD7423D9EU);
}

TEST(IpAddr, StrepIsQuoted) {
    EXPECT_EQ(valueToStrep(IpAddr("192.0.2.1"sv)), "'192.0.2.1'");
    EXPECT_EQ(Qor::strepToValue<IpAddr>("'192.0.2.1'"), IpAddr("192.0.2.1"sv));
    EXPECT_EQ(Qor::strepToValue<IpAddr>(" '192.0.2.1'"), IpAddr("192.0.2.1"sv));
    EXPECT_THROW(Qor::strepToValue<IpAddr>("192.0.2.1"), Qor::RangeException);
    EXPECT_THROW(Qor::strepToValue<IpAddr>("'192.0.2.1'x"), Qor::RangeException);
}

TEST(IpAddr, BadStrepTellsTheColumnOfTheValueToo) {
    try {
        Qor::strepToValue<IpAddr>("  '192.0.2'");
        FAIL();
    } catch (Qor::RangeException const& exception) {
        EXPECT_STREQ(
            exception.what(),
            "IpAddr '192.0.2': expected a dot at column 7, at column 2 deserializing   '192.0.2'");
        EXPECT_TRUE(exception.ids().contains(12));
    }
}

TEST(IpAddr, StreamsItsTextWithoutQuotes) {
    std::ostringstream stream;
    stream << IpAddr("192.0.2.1"sv);
    EXPECT_EQ(stream.str(), "192.0.2.1");
}

TEST(IpAddr, GoesOverTheWireInTheOrderOfItsOctets) {
    IpAddr const address("192.0.2.1"sv);
    EXPECT_EQ(wireOf(address), "\xC0\x00\x02\x01"sv);
    // The reader takes a number and puts it back into network byte order.
    EXPECT_EQ(IpAddr::fromHostOrder(reading(wireOf(address))->nextU32()), address);
}

}  // namespace
