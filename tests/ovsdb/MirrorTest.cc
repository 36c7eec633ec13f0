#include "MirrorMessages.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace Ovsdb {
namespace {

TEST(Mirror, ReferencesMayNameRowsThatComeLaterInTheMessage) {
    json tables = network();
    tables["Ucast_Macs_Local"][uuidText(31)] = ucast("00:00:5e:00:53:01", red, locatorA);
    MirrorUnderTest mirror;
    mirror.update(tables);
    json const row = mirror.dump()["ucastMacsLocal"][uuidText(31)];
    EXPECT_EQ(row["vni"], 5001);
    EXPECT_EQ(row["vtepIp"], "192.0.2.1");
    EXPECT_EQ(mirror.dump()["ovsdb"]["physicalLocatorRaw"][uuidText(locatorA)]["ucastMacRef"],
              pairs({{"00:00:5e:00:53:01", 5001}}));
}

TEST(Mirror, APairGoesWithTheLastRowThatGivesIt) {
    MirrorUnderTest mirror;
    mirror.update(network());
    mirror.update(
        {{"Ucast_Macs_Local", {{uuidText(31), ucast("00:00:5e:00:53:01", red, locatorA)}}},
         {"Ucast_Macs_Remote", {{uuidText(32), ucast("00:00:5E:00:53:01", red, locatorA)}}}});
    auto const pairs = [&] {
        return mirror.dump()["ovsdb"]["physicalLocatorRaw"][uuidText(locatorA)]["ucastMacRef"]
            .size();
    };
    EXPECT_EQ(pairs(), 1U);
    mirror.update({{"Ucast_Macs_Remote", {{uuidText(32), gone}}}});
    EXPECT_EQ(pairs(), 1U);
    mirror.update({{"Ucast_Macs_Local", {{uuidText(31), gone}}}});
    EXPECT_EQ(pairs(), 0U);
}

TEST(Mirror, APairThatAnotherRowTakesOverIsNotTold) {
    MirrorUnderTest mirror;
    mirror.update(network());
    mirror.update(
        {{"Ucast_Macs_Remote", {{uuidText(31), ucast("00:00:5e:00:53:01", red, locatorA)}}}});
    Heard heard(mirror);
    mirror.update(
        {{"Ucast_Macs_Remote",
          {{uuidText(31), gone}, {uuidText(32), ucast("00:00:5e:00:53:01", red, locatorA)}}}});
    for (std::string const& line : heard.lines())
        EXPECT_EQ(line.find("MacRef"), std::string::npos) << line;
}

TEST(Mirror, AChangedTunnelKeyMovesAllPairsAndLocalVnis) {
    MirrorUnderTest mirror;
    mirror.update(network());
    mirror.update(
        {{"Ucast_Macs_Local", {{uuidText(31), ucast("00:00:5e:00:53:01", red, locatorA)}}},
         {"Physical_Locator_Set",
          {{uuidText(locatorSet), insert({{"locators", set({ref(locatorA), ref(locatorB)})}})}}},
         {"Mcast_Macs_Local", {{uuidText(32), mcast("unknown-dst", red, locatorSet)}}}});
    mirror.update({{"Logical_Switch", {{uuidText(red), modify({{"tunnel_key", 6001}})}}}});
    json const dump = mirror.dump();
    EXPECT_EQ(dump["ucastMacsLocal"][uuidText(31)]["vni"], 6001);
    EXPECT_EQ(dump["mcastMacsLocal"][uuidText(32)]["vni"], 6001);
    EXPECT_EQ(dump["mcastMacsLocal"][uuidText(32)]["vtepIp"],
              json::array({"192.0.2.1", "192.0.2.2"}));
    for (unsigned const at : {locatorA, locatorB})
        EXPECT_EQ(dump["ovsdb"]["physicalLocatorRaw"][uuidText(at)]["mcastMacRef"],
                  pairs({{"00:00:00:00:00:00", 6001}}));
    mirror.update({{"Logical_Switch", {{uuidText(red), modify({{"tunnel_key", set({})}})}}}});
    EXPECT_EQ(mirror.dump()["ovsdb"]["logicalSwitch"][uuidText(red)]["tunnelKey"], 0x1000000);
    EXPECT_TRUE(
        mirror.dump()["ovsdb"]["physicalLocatorRaw"][uuidText(locatorA)]["ucastMacRef"].empty());
}

TEST(Mirror, ALocatorsKeyIsTheVniOfASwitchWithoutOne) {
    json tables = network();
    tables["Logical_Switch"][uuidText(red)] = insert({{"name", "red"}});
    tables["Physical_Locator"][uuidText(locatorA)]["insert"]["tunnel_key"] = 777;
    tables["Ucast_Macs_Local"][uuidText(31)] = ucast("00:00:5e:00:53:01", red, locatorA);
    MirrorUnderTest mirror;
    mirror.update(tables);
    EXPECT_EQ(mirror.dump()["ucastMacsLocal"][uuidText(31)]["vni"], 777);
    mirror.update({{"Physical_Locator", {{uuidText(locatorA), modify({{"tunnel_key", 778}})}}}});
    EXPECT_EQ(mirror.dump()["ucastMacsLocal"][uuidText(31)]["vni"], 778);
    EXPECT_EQ(mirror.dump()["ovsdb"]["physicalLocatorRaw"][uuidText(locatorA)]["ucastMacRef"],
              pairs({{"00:00:5e:00:53:01", 778}}));
}

TEST(Mirror, OfLocatorsOfOneAddressTheOneWithoutKeyIsEntered) {
    MirrorUnderTest mirror;
    mirror.update({{"Physical_Locator",
                    {{uuidText(1), insert({{"dst_ip", "192.0.2.9"}, {"tunnel_key", 5}})},
                     {uuidText(3), insert({{"dst_ip", "192.0.2.9"}})},
                     {uuidText(2), insert({{"dst_ip", "192.0.2.9"}, {"tunnel_key", 6}})}}}});
    auto const entered = [&] { return mirror.dump()["ovsdb"]["physicalLocator"]["192.0.2.9"]; };
    EXPECT_EQ(entered(), uuidText(3));
    mirror.update({{"Physical_Locator", {{uuidText(3), gone}}}});
    EXPECT_EQ(entered(), uuidText(1));
    EXPECT_EQ(mirror.dump()["ovsdb"]["remoteLocator"]["vxlan_over_ipv4 192.0.2.9"], uuidText(1));
}

TEST(Mirror, AnAddressOfOursIsNoRemoteLocator) {
    MirrorUnderTest mirror;
    mirror.update(network());
    EXPECT_EQ(mirror.dump()["ovsdb"]["remoteLocator"].size(), 2U);
    mirror.update({{"Physical_Switch",
                    {{uuidText(41), insert({{"name", "tor-1"}, {"tunnel_ips", "192.0.2.1"}})}}}});
    EXPECT_EQ(mirror.dump()["ovsdb"]["remoteLocator"],
              (json{{"vxlan_over_ipv4 192.0.2.2", uuidText(locatorB)}}));
    EXPECT_EQ(mirror.dump()["ovsdb"]["physicalLocator"].size(), 2U);
    mirror.update({{"Physical_Switch", {{uuidText(41), modify({{"tunnel_ips", "192.0.2.1"}})}}}});
    EXPECT_EQ(mirror.dump()["ovsdb"]["remoteLocator"].size(), 2U);
}

TEST(Mirror, SwitchesMaySwapTheirNamesInOneMessage) {
    MirrorUnderTest mirror;
    mirror.update({{"Physical_Switch",
                    {{uuidText(41), insert({{"name", "tor-1"}})},
                     {uuidText(42), insert({{"name", "tor-2"}})}}}});
    mirror.update({{"Physical_Switch",
                    {{uuidText(41), modify({{"name", "tor-2"}})},
                     {uuidText(42), modify({{"name", "tor-1"}})}}}});
    EXPECT_EQ(mirror.dump()["ovsdb"]["physicalSwitch"],
              (json{{"tor-1", uuidText(42)}, {"tor-2", uuidText(41)}}));
    mirror.update({{"Physical_Switch", {{uuidText(41), modify({{"name", "tor-9"}})}}}});
    EXPECT_EQ(mirror.dump()["ovsdb"]["physicalSwitch"],
              (json{{"tor-1", uuidText(42)}, {"tor-9", uuidText(41)}}));
}

TEST(Mirror, ALocalRowWhoseAddressChangesIsANewObject) {
    MirrorUnderTest mirror;
    mirror.update(network());
    mirror.update(
        {{"Ucast_Macs_Local", {{uuidText(31), ucast("00:00:5e:00:53:01", red, locatorA)}}}});
    auto const row = mirror.directories().ucastMacsLocal->entry(std::string_view(uuidText(31)));
    mirror.update({{"Ucast_Macs_Local", {{uuidText(31), modify({{"locator", ref(locatorB)}})}}}});
    EXPECT_EQ(mirror.directories().ucastMacsLocal->entry(std::string_view(uuidText(31))), row);
    mirror.update({{"Ucast_Macs_Local", {{uuidText(31), modify({{"MAC", "00:00:5e:00:53:02"}})}}}});
    EXPECT_FALSE(mirror.directories().ucastMacsLocal->entry(std::string_view(uuidText(31))) == row);
    EXPECT_EQ(mirror.dump()["ucastMacsLocal"][uuidText(31)]["macAddr"], "00:00:5e:00:53:02");
}

TEST(Mirror, TheSameDatabaseAgainTellsNobody) {
    json tables = network();
    tables["Ucast_Macs_Remote"][uuidText(31)] = ucast("00:00:5e:00:53:01", red, locatorA);
    tables["Ucast_Macs_Local"][uuidText(32)] = ucast("00:00:5e:00:53:02", red, locatorB);
    tables["Physical_Switch"][uuidText(41)] =
        insert({{"name", "tor-1"}, {"management_ips", set({"192.0.2.101", "2001:db8::1"})}});
    tables["Physical_Locator"][uuidText(locatorA)]["insert"]["bfd"] = map({{"a", ""}});
    MirrorUnderTest mirror;
    Heard heard(mirror);
    mirror.update(tables);
    EXPECT_GT(heard.lines().size(), 20U);
    mirror.update(tables, true);
    EXPECT_EQ(heard.lines(), std::vector<std::string>());
}

TEST(Mirror, OneChangedColumnIsOneNotification) {
    MirrorUnderTest mirror;
    Heard heard(mirror);
    mirror.update(network());
    static_cast<void>(heard.lines());
    mirror.update({{"Logical_Switch", {{uuidText(red), modify({{"description", "x"}})}}}});
    EXPECT_EQ(heard.lines(),
              std::vector<std::string>{"/ovsdb/logicalSwitch/" + uuidText(red) + ".desc -> \"x\""});
}

TEST(Mirror, WhatIsReferredToGoesAfterWhatRefersToIt) {
    json tables = network();
    tables["Ucast_Macs_Remote"][uuidText(31)] = ucast("00:00:5e:00:53:01", red, locatorA);
    tables["Physical_Locator_Set"][uuidText(locatorSet)] =
        insert({{"locators", set({ref(locatorA)})}});
    tables["Physical_Switch"][uuidText(41)] = insert({{"name", "tor-1"}});
    tables["Global"][uuidText(71)] = insert({{"switches", ref(41)}});
    MirrorUnderTest mirror;
    Heard heard(mirror);
    mirror.update(tables);
    static_cast<void>(heard.lines());
    mirror.update(json::object(), true);
    std::vector<std::string> order;
    for (std::string const& line : heard.lines()) {
        std::string const place = line.substr(0, line.find('['));
        if (order.empty() || order.back() != place) order.push_back(place);
    }
    EXPECT_EQ(order,
              (std::vector<std::string>{
                  "/ucastMacsRemote.entry",
                  "/ovsdb/physicalLocatorRaw/" + uuidText(locatorA) + ".ucastMacRef",
                  "/ovsdb.remoteLocator", "/ovsdb.physicalLocatorSet", "/ovsdb.physicalLocator",
                  "/ovsdb.physicalLocatorRaw", "/ovsdb.logicalSwitch", "/ovsdb.physicalSwitch",
                  "/ovsdb.physicalSwitchRaw", "/ovsdb.root"}));
    EXPECT_EQ(mirror.store().size(), 0U);
}

TEST(Mirror, ReferencesToRowsThatNeverComeAreBorne) {
    MirrorUnderTest mirror;
    mirror.update(
        {{"Ucast_Macs_Local", {{uuidText(31), ucast("00:00:5e:00:53:01", red, locatorA)}}},
         {"Mcast_Macs_Local", {{uuidText(32), mcast("unknown-dst", red, locatorSet)}}}});
    EXPECT_EQ(mirror.dump()["ucastMacsLocal"][uuidText(31)]["vni"], 0);
    // They come after all.
    mirror.update(network());
    EXPECT_EQ(mirror.dump()["ucastMacsLocal"][uuidText(31)]["vni"], 5001);
    EXPECT_EQ(
        mirror.dump()["ovsdb"]["physicalLocatorRaw"][uuidText(locatorA)]["ucastMacRef"].size(), 1U);
    mirror.update({{"Physical_Locator", {{uuidText(locatorA), gone}}}});
    mirror.update({{"Physical_Locator", {{uuidText(locatorA), locator("192.0.2.7")}}}});
    EXPECT_EQ(mirror.dump()["ucastMacsLocal"][uuidText(31)]["vtepIp"], "192.0.2.7");
    EXPECT_EQ(
        mirror.dump()["ovsdb"]["physicalLocatorRaw"][uuidText(locatorA)]["ucastMacRef"].size(), 1U);
}

}  // namespace
}  // namespace Ovsdb
