#include <gtest/gtest.h>

#include <sstream>

#include <tests/support/Refusal.h>
#include <vgw/OvsdbDataTypes.h>
#include <vgw/VgwTypes.h>

namespace {

TEST(Enumeration, NumberPastTheLastPrintsInTheFallbackForm) {
    EXPECT_EQ(Vgw::stringValue(static_cast<Vgw::OvsdbDataType>(14)), "OvsdbDataType(14)");
    EXPECT_EQ(Vgw::stringValue(static_cast<Vgw::EncapsulationType>(2)), "EncapsulationType(2)");
    EXPECT_EQ(Vgw::stringValue(static_cast<Vgw::VtepListType>(2)), "VtepListType(2)");
    EXPECT_EQ(Vgw::stringValue(static_cast<Vgw::OvsdbRequestType>(5)), "OvsdbRequestType(5)");
    EXPECT_EQ(Vgw::stringValue(static_cast<Vgw::SessionState>(4)), "SessionState(4)");
    EXPECT_EQ(Vgw::stringValue(static_cast<Vgw::OvsdbLogLevel>(6)), "OvsdbLogLevel(6)");
}

TEST(Enumeration, FallbackFormPrintsASignedNumber) {
    EXPECT_EQ(Vgw::stringValue(static_cast<Vgw::SessionState>(0xFFFFFFFF)), "SessionState(-1)");
    EXPECT_EQ(Vgw::stringValue(static_cast<Vgw::SessionState>(0x80000000)),
              "SessionState(-2147483648)");
}

TEST(Enumeration, InstanceTakesTheLastNumberAndRefusesTheNext) {
    EXPECT_EQ(Vgw::OvsdbDataTypeInstance(13), Vgw::OvsdbDataType::backupManager);
    EXPECT_EQ(refusal([] { Vgw::OvsdbDataTypeInstance(14); }), "OvsdbDataType");
    EXPECT_EQ(refusal([] { Vgw::EncapsulationTypeInstance(2); }), "EncapsulationType");
    EXPECT_EQ(refusal([] { Vgw::VtepListTypeInstance(2); }), "VtepListType");
    EXPECT_EQ(refusal([] { Vgw::OvsdbRequestTypeInstance(5); }), "OvsdbRequestType");
    EXPECT_EQ(refusal([] { Vgw::SessionStateInstance(4); }), "SessionState");
    EXPECT_EQ(refusal([] { Vgw::OvsdbLogLevelInstance(6); }), "OvsdbLogLevel");
}

TEST(Enumeration, TextFormStandsBetweenSingleQuotes) {
    EXPECT_EQ(Vgw::valueToStrep(Vgw::VtepListType::sendToAny), "'sendToAny'");
    EXPECT_EQ(Vgw::valueToStrep(Vgw::VtepListType::sendToAny).length(), 11U);
}

TEST(Enumeration, StreamGetsTheNameWithoutQuotes) {
    std::ostringstream out;
    out << Vgw::SessionState::stateConnected << ' ' << static_cast<Vgw::SessionState>(9);
    EXPECT_EQ(out.str(), "stateConnected SessionState(9)");
}

TEST(Enumeration, WholeTextIsRead) {
    EXPECT_EQ(Qor::strepToValue<Vgw::OvsdbLogLevel>("'debug'"), 5);
    EXPECT_EQ(Qor::strepToValue<Vgw::OvsdbLogLevel>("  'debug'"), Vgw::OvsdbLogLevel::debug);
    EXPECT_EQ(Qor::strepToValue<Vgw::OvsdbLogLevel>("'debug'", nullptr), Vgw::OvsdbLogLevel::debug);
}

TEST(Enumeration, WhatIsLeftBehindTheClosingQuoteIsJunkAtItsColumn) {
    EXPECT_EQ(refusal([] { Qor::strepToValue<Vgw::OvsdbLogLevel>("'debug'x"); }),
              "junk at column 7 deserializing 'debug'x");
    EXPECT_EQ(refusal([] { Qor::strepToValue<Vgw::OvsdbLogLevel>("'debug' "); }),
              "junk at column 7 deserializing 'debug' ");
}

TEST(Enumeration, JunkCarriesTheIdOfRangeExceptions) {
    try {
        Qor::strepToValue<Vgw::OvsdbLogLevel>("'debug'x");
        FAIL();
    } catch (Qor::RangeException const& exception) {
        EXPECT_TRUE(exception.ids().contains(12));
    }
}

TEST(Enumeration, MatchingIsByBytesAndCaseSensitive) {
    EXPECT_EQ(refusal([] { Vgw::OvsdbLogLevelInstance(Qor::String8("Debug")); }), "OvsdbLogLevel");
    EXPECT_EQ(refusal([] { Qor::strepToValue<Vgw::OvsdbLogLevel>("'Debug'"); }), "OvsdbLogLevel");
    EXPECT_EQ(refusal([] { Vgw::OvsdbLogLevelInstance(Qor::String8(" debug")); }), "OvsdbLogLevel");
    EXPECT_EQ(refusal([] { Vgw::OvsdbLogLevelInstance(Qor::String8("'debug'")); }),
              "OvsdbLogLevel");
    EXPECT_EQ(refusal([] { Vgw::OvsdbLogLevelInstance(Qor::String8("")); }), "OvsdbLogLevel");
}

TEST(Enumeration, FallbackFormDoesNotParse) {
    EXPECT_EQ(refusal([] {
                  Qor::strepToValue<Vgw::EncapsulationType>(
                      Vgw::valueToStrep(static_cast<Vgw::EncapsulationType>(7)));
              }),
              "EncapsulationType");
    EXPECT_EQ(Vgw::valueToStrep(static_cast<Vgw::EncapsulationType>(7)), "'EncapsulationType(7)'");
}

TEST(Enumeration, SequenceIsReadAtThePositionWhichIsLeftBehindIt) {
    Qor::String8 const text("'error','warning'");
    Qor::String8::IteratorConst position(text);
    auto const level =
        Vgw::sequenceToValue(position, text.end(), static_cast<Vgw::OvsdbLogLevel*>(nullptr));
    EXPECT_EQ(level, Vgw::OvsdbLogLevel::error);
    EXPECT_EQ(position.index(), 7U);
    EXPECT_EQ((Qor::sequenceToValue<Vgw::OvsdbLogLevel, Qor::String8::IteratorConst>(++position,
                                                                                     text.end())),
              Vgw::OvsdbLogLevel::warning);
}

TEST(Enumeration, TextWithoutQuotesIsRefusedByTheStringReader) {
    std::string const words = refusal([] { Qor::strepToValue<Vgw::OvsdbLogLevel>("debug"); });
    EXPECT_NE(words, "not refused");
    EXPECT_NE(words, "OvsdbLogLevel");
}

TEST(Enumeration, AttributeOfACompositeValueIsNamedInTheFailure) {
    Qor::String8 const text("'none'");
    Qor::String8::IteratorConst position(text);
    std::string const words = refusal(
        [&] { Qor::deserializeAttr<Vgw::EncapsulationType>(position, text.end(), "encapType"); });
    EXPECT_NE(words.find("encapType"), std::string::npos);
    EXPECT_NE(words.find("EncapsulationType"), std::string::npos);
}

TEST(Enumeration, OneEncapsulationIsSpelledWithUnderscores) {
    EXPECT_EQ(Vgw::stringValue(Vgw::EncapsulationType::vxlan_over_ipv4), "vxlan_over_ipv4");
}

TEST(Enumeration, ListTypeHasNoUnknownValue) {
    EXPECT_EQ(Vgw::VtepListType::sendToAll, 0);
    EXPECT_EQ(Vgw::VtepListType::sendToAny, 1);
}

}  // namespace
