#include "Wire.h"

#include <kelp/Vni.h>
#include <qor/core/Strep.h>
#include <tests/support/Refusal.h>

#include <gtest/gtest.h>

#include <sstream>

namespace {

using Vxlan::Vni;
using namespace std::string_view_literals;

constexpr char outOfRange[] = "Vni::value < Vni::min or > Vni::max not allowed";

TEST(Vni, DefaultIsZero) { EXPECT_EQ(Vni().value(), 0U); }

TEST(Vni, BoundsAreThoseOf24Bits) {
    EXPECT_EQ(Vni::min, 0U);
    EXPECT_EQ(Vni::max, 0xFFFFFFU);
    EXPECT_EQ(Vni(0xFFFFFF).value(), 0xFFFFFFU);
    EXPECT_EQ(refusal([] { Vni{0x1000000}; }), outOfRange);
    EXPECT_EQ(refusal([] { Vni{0xFFFFFFFF}; }), outOfRange);
}

TEST(Vni, IsKnownAtCompileTime) {
    static_assert(Vni(5000).value() == 5000);
    SUCCEED();
}

TEST(Vni, OrderIsThatOfTheNumber) {
    EXPECT_LT(Vni(9), Vni(10));
    EXPECT_EQ(Vni(9), Vni(9));
    EXPECT_NE(Vni(9), Vni(10));
}

TEST(Vni, StrepIsPlainDigits) {
    EXPECT_EQ(Vni(5000).stringValue(), "5000");
    EXPECT_EQ(valueToStrep(Vni(5000)), "5000");
    EXPECT_EQ(Qor::strepToValue<Vni>("5000"), Vni(5000));
    EXPECT_EQ(Qor::strepToValue<Vni>(" 16777215"), Vni(Vni::max));
}

TEST(Vni, OtherStrepsAreRefused) {
    for (char const* const text :
         {"", "'5000'", "-1", "0x10", "05", "16777216", "99999999999999999999", "5 "}) {
        EXPECT_THROW(Qor::strepToValue<Vni>(text), Qor::RangeException) << text;
    }
    EXPECT_EQ(refusal([] { Qor::strepToValue<Vni>("16777216"); }),
              "expected a number from 0 to 16777215 at column 0 deserializing 16777216");
}

TEST(Vni, ReadingLeavesThePositionBehindTheDigits) {
    Qor::String8 const text("5000})");
    Qor::String8::IteratorConst position(text);
    EXPECT_EQ(Vni(position, text.end()), Vni(5000));
    EXPECT_EQ(position.index(), 4U);
}

TEST(Vni, StreamsItsDigits) {
    std::ostringstream stream;
    stream << Vni(5000);
    EXPECT_EQ(stream.str(), "5000");
}

TEST(Vni, GoesOverTheWireAsA32BitNumber) {
    EXPECT_EQ(wireOf(Vni(5000)), "\x00\x00\x13\x88"sv);
    EXPECT_EQ(Vni(reading(wireOf(Vni(5000))).ptr(), Qor::StreamBogon()), Vni(5000));
}

TEST(Vni, NumberOver24BitsOnTheWireIsRefused) {
    auto const greatest = reading("\x00\xFF\xFF\xFF"sv);
    EXPECT_EQ(Vni(greatest.ptr(), Qor::StreamBogon()).value(), 0xFFFFFFU);
    auto const tooGreat = reading("\x01\x00\x00\x00"sv);
    EXPECT_EQ(refusal([&] { Vni(tooGreat.ptr(), Qor::StreamBogon()); }), outOfRange);
}

}  // namespace
