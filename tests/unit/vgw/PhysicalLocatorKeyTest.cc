#include <gtest/gtest.h>

#include <sstream>
#include <unordered_map>
#include <utility>

#include <qor/attrlog/NboAttrLogIn.h>
#include <qor/attrlog/NboAttrLogOut.h>
#include <tests/support/Refusal.h>
#include <vgw/OvsdbDataTypes.h>

#include "NaiveHash.h"
#include "SampleValues.h"

namespace {

using Kelp::IpAddr;
using Vgw::EncapsulationType;
using Vgw::PhysicalLocatorKey;

constexpr auto unknown = EncapsulationType::unknownEncapType;

PhysicalLocatorKey parsedKey(char const* text) {
    return Qor::strepToValue<PhysicalLocatorKey>(text);
}

// Two keys with one hash.
std::pair<PhysicalLocatorKey, PhysicalLocatorKey> const& colliding() {
    static auto const found = [] {
        std::unordered_map<Qor::U32, PhysicalLocatorKey> seen;
        for (Qor::U32 number = 0xC0000200;; ++number) {
            PhysicalLocatorKey const key(vxlan, IpAddr::fromHostOrder(number));
            auto const [at, isNew] = seen.emplace(key.hash(), key);
            if (!isNew) {
                return std::pair(at->second, key);
            }
        }
    }();
    return found;
}

TEST(PhysicalLocatorKey, HashTakesTheAddressBeforeTheEncapsulation) {
    for (Qor::U32 i = 0; i < 100; ++i) {
        PhysicalLocatorKey const key(i % 2 ? vxlan : unknown, IpAddr::fromHostOrder(i * 77777));
        EXPECT_EQ(key.hash(),
                  naiveHash(lowestFirst(key.dstIp().hash()) + lowestFirst(key.encapType())));
    }
}

TEST(PhysicalLocatorKey, OrderIsThatOfTheHashesAndNotOfTheEncapsulation) {
    int withTheEncapsulation = 0;
    int againstIt = 0;
    for (Qor::U32 i = 0; i < 100; ++i) {
        IpAddr const ip = IpAddr::fromHostOrder(0xC0000200 + i);
        PhysicalLocatorKey const less(unknown, ip);
        PhysicalLocatorKey const more(vxlan, ip);
        ASSERT_NE(less.hash(), more.hash());
        EXPECT_EQ(less < more, less.hash() < more.hash());
        EXPECT_EQ(more < less, more.hash() < less.hash());
        ++(less < more ? withTheEncapsulation : againstIt);
    }
    EXPECT_GT(withTheEncapsulation, 0);
    EXPECT_GT(againstIt, 0);
}

TEST(PhysicalLocatorKey, DifferentKeysWithOneHashAreNeitherLessNorGreater) {
    auto const& [a, b] = colliding();
    ASSERT_EQ(a.hash(), b.hash());
    EXPECT_FALSE(a == b);
    EXPECT_TRUE(a != b);
    EXPECT_FALSE(a < b);
    EXPECT_FALSE(b < a);
    EXPECT_FALSE(a > b);
    EXPECT_FALSE(b > a);
    EXPECT_TRUE(a <= b);
    EXPECT_TRUE(b <= a);
    EXPECT_TRUE(a >= b);
    EXPECT_TRUE(b >= a);
}

TEST(PhysicalLocatorKey, KeysWithOneHashBothStayInACollection) {
    auto const& [a, b] = colliding();
    auto const db = Vgw::hwVtepOvsdbFactory("db");
    auto const first = db->physicalLocatorRawIs("first");
    auto const second = db->physicalLocatorRawIs("second");
    db->remoteLocatorIs(a, first);
    db->remoteLocatorIs(b, second);
    EXPECT_EQ(db->remoteLocators(), 2U);
    EXPECT_EQ(db->remoteLocator(a), first);
    EXPECT_EQ(db->remoteLocator(b), second);
    int met = 0;
    for (auto at = db->remoteLocatorIterator(); at; ++at) {
        ++met;
        at.del();
    }
    EXPECT_EQ(met, 2);
    EXPECT_EQ(db->remoteLocators(), 0U);
}

TEST(PhysicalLocatorKey, DefaultIsTheNullValue) {
    EXPECT_EQ(PhysicalLocatorKey(), PhysicalLocatorKey(vxlan, IpAddr()));
    EXPECT_EQ(PhysicalLocatorKey().encapType(), vxlan);
}

TEST(PhysicalLocatorKey, ZeroAddressWithUnknownEncapsulationIsNotTheNullValue) {
    EXPECT_NE(PhysicalLocatorKey(), PhysicalLocatorKey(unknown, IpAddr()));
}

TEST(PhysicalLocatorKey, PrintsItsFieldsInOrder) {
    PhysicalLocatorKey const key(vxlan, IpAddr("192.0.2.1"));
    EXPECT_EQ(Vgw::valueToStrep(key),
              "Value('Vgw::PhysicalLocatorKey', ** {'encapType': 'vxlan_over_ipv4', 'dstIp': "
              "'192.0.2.1'})");
    std::ostringstream out;
    out << key;
    EXPECT_EQ(out.str(), Vgw::valueToStrep(key).view());
}

TEST(PhysicalLocatorKey, AttributesMayStandInAnyOrderAndBeRepeated) {
    EXPECT_EQ(parsedKey("Value('Vgw::PhysicalLocatorKey', ** {'dstIp': '192.0.2.9', 'encapType': "
                        "'unknownEncapType', 'dstIp': '192.0.2.1'})"),
              PhysicalLocatorKey(unknown, IpAddr("192.0.2.1")));
}

TEST(PhysicalLocatorKey, TextWithoutAnEncapsulationMeansVxlan) {
    EXPECT_EQ(parsedKey("Value('Vgw::PhysicalLocatorKey', ** {'dstIp': '192.0.2.1'})"),
              PhysicalLocatorKey(vxlan, IpAddr("192.0.2.1")));
    EXPECT_EQ(parsedKey("Value('Vgw::PhysicalLocatorKey', ** {})"), PhysicalLocatorKey());
}

TEST(PhysicalLocatorKey, FailuresNameTheTypeOrTheAttribute) {
    EXPECT_EQ(refusal([] { parsedKey("Value('Vgw::PhysicalLocatorKey', ** { "); }),
              "premature end of value type PhysicalLocatorKey");
    EXPECT_EQ(refusal([] { parsedKey("Value('Vgw::PhysicalLocatorKey', ** {'ip': 1})"); }),
              "PhysicalLocatorKey has no such attribute: ip");
    std::string const words =
        refusal([] { parsedKey("Value('Vgw::PhysicalLocatorKey', ** {'encapType': 'gre'})"); });
    EXPECT_NE(words.find("encapType"), std::string::npos) << words;
    EXPECT_NE(words.find("EncapsulationType"), std::string::npos) << words;
}

TEST(PhysicalLocatorKey, UnprintableEncapsulationDoesNotComeBack) {
    PhysicalLocatorKey const key(static_cast<EncapsulationType>(9), IpAddr("192.0.2.1"));
    EXPECT_NE(refusal([&] { Qor::strepToValue<PhysicalLocatorKey>(Vgw::valueToStrep(key)); }),
              "not refused");
}

TEST(PhysicalLocatorKey, WireFormIsTheEncapsulationAndThenTheAddress) {
    Qor::Ptr<Qor::NboAttrLog::Out> const out = Qor::make<Qor::NboAttrLog::Out>();
    out << PhysicalLocatorKey(vxlan, IpAddr("192.0.2.1"));
    using namespace std::string_view_literals;
    EXPECT_EQ(out->unsent(), "\x00\x00\x00\x01\xc0\x00\x02\x01"sv);
}

TEST(PhysicalLocatorKey, UnknownEncapsulationNumberOnTheWireIsRefused) {
    using namespace std::string_view_literals;
    auto const in = Qor::make<Qor::NboAttrLog::In>();
    in->receive("\x00\x00\x00\x02\xc0\x00\x02\x01"sv);
    EXPECT_EQ(refusal([&] { PhysicalLocatorKey(in.ptr(), Qor::StreamBogon()); }),
              "EncapsulationType");
}

}  // namespace
