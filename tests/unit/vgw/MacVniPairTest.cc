#include <gtest/gtest.h>

#include <sstream>

#include <qor/attrlog/NboAttrLogIn.h>
#include <qor/attrlog/NboAttrLogOut.h>
#include <tests/support/Refusal.h>
#include <vgw/OvsdbDataTypes.h>

#include "NaiveHash.h"

namespace {

using Kelp::EthAddr;
using Vgw::MacVniPair;
using Vxlan::Vni;

EthAddr mac(Qor::U64 number) { return EthAddr::fromNumber(number); }

Qor::Ptr<Qor::NboAttrLog::In> reading(std::string_view bytes) {
    auto in = Qor::make<Qor::NboAttrLog::In>();
    in->receive(bytes);
    return in;
}

std::string parsed(char const* text) {
    return std::string(Vgw::valueToStrep(Qor::strepToValue<MacVniPair>(text)).view());
}

TEST(NaiveHash, GivesThePublishedValues) {
    EXPECT_EQ(naiveHash("a"), 0xCA2E9442U);
    EXPECT_EQ(naiveHash("The quick brown fox jumps over the lazy dog"), 0x519E91F5U);
}

TEST(MacVniPair, HashTakesTheAddressFirst) {
    for (Qor::U32 i = 0; i < 100; ++i) {
        MacVniPair const pair(mac(0x00005E005300 + i * 7), Vni(i * 1001));
        EXPECT_EQ(pair.hash(),
                  naiveHash(lowestFirst(pair.mac().hash()) + lowestFirst(pair.vni().value())));
    }
}

TEST(MacVniPair, DefaultIsNull) {
    EXPECT_TRUE(!MacVniPair());
    EXPECT_EQ(MacVniPair().mac(), EthAddr());
    EXPECT_EQ(MacVniPair().vni().value(), 0U);
}

TEST(MacVniPair, ZeroAddressWithAVniIsNotNull) {
    EXPECT_FALSE(!MacVniPair(EthAddr(), Vni(1)));
    EXPECT_FALSE(!MacVniPair(mac(1), Vni(0)));
}

TEST(MacVniPair, OrderIsByAddressAndThenByUnsignedVni) {
    MacVniPair const low(mac(1), Vni(Vni::max));
    MacVniPair const high(mac(2), Vni(0));
    EXPECT_TRUE(low < high);
    EXPECT_FALSE(high < low);
    EXPECT_TRUE(MacVniPair(mac(1), Vni(1)) < MacVniPair(mac(1), Vni(0x800000)));
    EXPECT_FALSE(low < low);
    EXPECT_TRUE(low <= low);
    EXPECT_TRUE(low >= low);
    EXPECT_FALSE(low > low);
    EXPECT_TRUE(high > low);
    EXPECT_TRUE(high >= low);
    EXPECT_TRUE(low <= high);
    EXPECT_TRUE(low != high);
    EXPECT_TRUE(low == MacVniPair(mac(1), Vni(Vni::max)));
}

TEST(MacVniPair, PrintsItsFieldsInOrder) {
    MacVniPair const pair(EthAddr("00:00:5e:00:53:01"), Vni(5000));
    EXPECT_EQ(Vgw::valueToStrep(pair),
              "Value('Vgw::MacVniPair', ** {'mac': '00:00:5e:00:53:01', 'vni': 5000})");
    std::ostringstream out;
    out << pair;
    EXPECT_EQ(out.str(), Vgw::valueToStrep(pair).view());
}

TEST(MacVniPair, TextWithoutAttributesIsTheNullValue) {
    EXPECT_TRUE(!Qor::strepToValue<MacVniPair>("Value('Vgw::MacVniPair', ** {})"));
}

TEST(MacVniPair, AttributesMayStandInAnyOrder) {
    EXPECT_EQ(parsed("Value('Vgw::MacVniPair', ** {'vni': 5000, 'mac': '00:00:5e:00:53:01'})"),
              "Value('Vgw::MacVniPair', ** {'mac': '00:00:5e:00:53:01', 'vni': 5000})");
}

TEST(MacVniPair, RepeatedAttributeKeepsTheLastValue) {
    EXPECT_EQ(parsed("Value('Vgw::MacVniPair', ** {'vni': 1, 'vni': 2})"),
              "Value('Vgw::MacVniPair', ** {'mac': '00:00:00:00:00:00', 'vni': 2})");
}

TEST(MacVniPair, BlanksAreAllowedWhereverThePartsMeet) {
    EXPECT_EQ(parsed(" \tValue (  'Vgw::MacVniPair' ,  **  {  'vni' : 7 } ) "),
              "Value('Vgw::MacVniPair', ** {'mac': '00:00:00:00:00:00', 'vni': 7})");
    EXPECT_EQ(parsed("Value('Vgw::MacVniPair',**{'vni':7})"),
              "Value('Vgw::MacVniPair', ** {'mac': '00:00:00:00:00:00', 'vni': 7})");
}

TEST(MacVniPair, TrailingCommaIsRefused) {
    EXPECT_NE(refusal([] { parsed("Value('Vgw::MacVniPair', ** {'vni': 7,})"); }), "not refused");
    EXPECT_NE(refusal([] { parsed("Value('Vgw::MacVniPair', ** {'vni': 7, })"); }), "not refused");
}

TEST(MacVniPair, CommaBeforeTheFirstAttributeIsRefused) {
    EXPECT_NE(refusal([] { parsed("Value('Vgw::MacVniPair', ** {, 'vni': 7})"); }), "not refused");
    EXPECT_NE(refusal([] { parsed("Value('Vgw::MacVniPair', ** {'vni': 7 'vni': 8})"); }),
              "not refused");
}

TEST(MacVniPair, TextThatEndsWithinTheListIsPremature) {
    EXPECT_EQ(refusal([] { parsed("Value('Vgw::MacVniPair', ** {"); }),
              "premature end of value type MacVniPair");
    EXPECT_EQ(refusal([] { parsed("Value('Vgw::MacVniPair', ** {'vni': 7 "); }),
              "premature end of value type MacVniPair");
}

TEST(MacVniPair, UnknownAttributeIsRefusedByName) {
    EXPECT_EQ(refusal([] { parsed("Value('Vgw::MacVniPair', ** {'Mac': 1})"); }),
              "MacVniPair has no such attribute: Mac");
    EXPECT_EQ(refusal([] { parsed("Value('Vgw::MacVniPair', ** {'hash': 1})"); }),
              "MacVniPair has no such attribute: hash");
}

TEST(MacVniPair, OtherTypesNameIsRefused) {
    EXPECT_NE(refusal([] { parsed("Value('Vgw::PhysicalLocatorKey', ** {})"); }), "not refused");
    EXPECT_NE(refusal([] { parsed("Value('MacVniPair', ** {})"); }), "not refused");
}

TEST(MacVniPair, FailureOfAFieldNamesTheAttribute) {
    std::string const words =
        refusal([] { parsed("Value('Vgw::MacVniPair', ** {'vni': 16777216})"); });
    EXPECT_NE(words.find("vni"), std::string::npos) << words;
    EXPECT_NE(refusal([] { parsed("Value('Vgw::MacVniPair', ** {'mac': 'no'})"); }).find("mac"),
              std::string::npos);
}

TEST(MacVniPair, RestBehindTheValueIsJunk) {
    EXPECT_EQ(refusal([] { parsed("Value('Vgw::MacVniPair', ** {})!"); }),
              "junk at column 31 deserializing Value('Vgw::MacVniPair', ** {})!");
}

TEST(MacVniPair, WireFormIsTheAddressAndThenTheVni) {
    Qor::Ptr<Qor::NboAttrLog::Out> const out = Qor::make<Qor::NboAttrLog::Out>();
    out << MacVniPair(EthAddr("00:00:5e:00:53:01"), Vni(0x010203));
    using namespace std::string_view_literals;
    EXPECT_EQ(out->unsent(), "\x00\x00\x5e\x00\x53\x01\x00\x01\x02\x03"sv);
}

TEST(MacVniPair, GreatestVniOnTheWireIsTaken) {
    using namespace std::string_view_literals;
    auto const in = reading("\0\0\0\0\0\0\x00\xff\xff\xff"sv);
    EXPECT_EQ(MacVniPair(in.ptr(), Qor::StreamBogon()).vni().value(), 0xFFFFFFU);
}

TEST(MacVniPair, GreaterVniOnTheWireIsRefused) {
    using namespace std::string_view_literals;
    auto const in = reading("\0\0\0\0\0\0\x01\x00\x00\x00"sv);
    EXPECT_EQ(refusal([&] { MacVniPair(in.ptr(), Qor::StreamBogon()); }),
              "Vni::value < Vni::min or > Vni::max not allowed");
    auto const greatest = reading("\0\0\0\0\0\0\xff\xff\xff\xff"sv);
    EXPECT_EQ(refusal([&] { MacVniPair(greatest.ptr(), Qor::StreamBogon()); }),
              "Vni::value < Vni::min or > Vni::max not allowed");
}

}  // namespace
