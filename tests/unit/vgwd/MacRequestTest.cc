#include <vgwd/write/MacRequest.h>

#include <vgw/tables/McastMacsLocal.h>
#include <vgw/tables/UcastMacsLocal.h>

#include <gtest/gtest.h>

namespace Vgwd {
namespace {

using nlohmann::json;
using Ovsdb::Table;

constexpr char const* red = "11111111-1111-1111-1111-111111111111";
constexpr char const* locator = "22222222-2222-2222-2222-222222222222";
Kelp::EthAddr const mac("00:00:5e:00:53:01");
Kelp::IpAddr const vtep("192.0.2.1");

Vgw::HwVtepOvsdb::Ptr databaseWithLocator() {
    auto const database = Vgw::hwVtepOvsdbFactory("ovsdb");
    database->physicalLocatorIs(vtep, database->physicalLocatorRawIs(locator));
    return database;
}

TEST(MacRequest, ALocatorThatIsThereIsUsed) {
    json const request =
        macInsertion(Table::ucastMacsLocal, {mac, red, {vtep}}, *databaseWithLocator(), red);
    ASSERT_EQ(request.size(), 1U);
    EXPECT_EQ(request[0]["op"], "insert");
    EXPECT_EQ(request[0]["table"], "Ucast_Macs_Local");
    EXPECT_EQ(request[0]["uuid"], red);
    EXPECT_EQ(request[0]["row"]["MAC"], "00:00:5e:00:53:01");
    EXPECT_EQ(request[0]["row"]["locator"], json::array({"uuid", locator}));
    EXPECT_EQ(request[0]["row"]["logical_switch"], json::array({"uuid", red}));
}

TEST(MacRequest, ALocatorThatIsMissingComesWithTheRow) {
    json const request = macInsertion(
        Table::ucastMacsLocal, {mac, red, {Kelp::IpAddr("192.0.2.2")}}, *databaseWithLocator(), "");
    ASSERT_EQ(request.size(), 2U);
    EXPECT_EQ(request[0]["table"], "Physical_Locator");
    EXPECT_EQ(request[0]["row"]["dst_ip"], "192.0.2.2");
    EXPECT_EQ(request[1]["row"]["locator"], json::array({"named-uuid", request[0]["uuid-name"]}));
    EXPECT_FALSE(request[1].contains("uuid"));
}

TEST(MacRequest, AMulticastRowHasASetOfItsLocators) {
    json const request = macInsertion(Table::mcastMacsLocal,
                                      {Kelp::EthAddr(), red, {vtep, Kelp::IpAddr("192.0.2.2")}},
                                      *databaseWithLocator(), "");
    ASSERT_EQ(request.size(), 3U);
    EXPECT_EQ(request[1]["table"], "Physical_Locator_Set");
    json const members = json::array(
        {json::array({"uuid", locator}), json::array({"named-uuid", request[0]["uuid-name"]})});
    EXPECT_EQ(request[1]["row"]["locators"], json::array({"set", members}));
    EXPECT_EQ(request[2]["row"]["MAC"], "unknown-dst");
    EXPECT_EQ(request[2]["row"]["locator_set"], json::array({"named-uuid", "locators"}));
}

TEST(MacRequest, AnUpdateOfARowThatIsGoneFails) {
    json const request = rowUpdate(Table::physicalPort, red, {{{"description", "x"}}, {}});
    ASSERT_EQ(request.size(), 2U);
    EXPECT_EQ(request[0]["op"], "wait");
    EXPECT_EQ(request[0]["rows"][0]["_uuid"], json::array({"uuid", red}));
    EXPECT_EQ(request[1]["op"], "update");
    EXPECT_EQ(request[1]["where"], request[0]["where"]);
}

TEST(MacRequest, MembersOfASetComeAndGoByKey) {
    RowChanges changes;
    changes.members["port_fault_status"] = {{"a", {true, ""}}, {"b", {false, ""}}};
    json const request = rowUpdate(Table::physicalPort, red, changes);
    ASSERT_EQ(request.size(), 2U);
    EXPECT_EQ(request[1]["op"], "mutate");
    EXPECT_EQ(request[1]["where"], request[0]["where"]);
    EXPECT_EQ(request[1]["mutations"],
              json::parse(R"([["port_fault_status", "delete", ["set", ["b"]]],
                                                       ["port_fault_status", "insert", ["set", ["a"]]]])"));
}

TEST(MacRequest, WhatAMapHoldsUnderAKeyGoesBeforeTheNewValueComes) {
    RowChanges changes;
    changes.members["vlan_stats"] = {
        {1, {true, locator}}, {2, {true, "new"}}, {3, {false, ""}}, {5000, {false, ""}}};
    json const request = rowUpdate(Table::physicalPort, red, changes);
    ASSERT_EQ(request.size(), 3U);
    EXPECT_EQ(request[1]["table"], "Logical_Binding_Stats");
    json const& mutations = request[2]["mutations"];
    ASSERT_EQ(mutations.size(), 2U);
    EXPECT_EQ(mutations[0], json::parse(R"(["vlan_stats", "delete", ["set", [1, 2, 3]]])"));
    EXPECT_EQ(mutations[1][1], "insert");
    json const stats = json::array({"named-uuid", request[1]["uuid-name"]});
    EXPECT_EQ(mutations[1][2][1], json::array({json::array({1, json::array({"uuid", locator})}),
                                               json::array({2, stats})}));
}

TEST(MacRequest, ASetOfLocatorsKeepsWhatOthersPutIn) {
    constexpr char const* other = "33333333-3333-3333-3333-333333333333";
    constexpr char const* ipv6 = "44444444-4444-4444-4444-444444444444";
    LocatorSet const there{
        red, {{locator, vtep}, {other, Kelp::IpAddr("192.0.2.2")}, {ipv6, std::nullopt}}};
    MacChanges changes;
    changes.vtepIps = {{vtep, false}, {Kelp::IpAddr("192.0.2.3"), true}};
    json const request =
        macUpdate(Table::mcastMacsLocal, locator, changes, there, *databaseWithLocator());
    ASSERT_EQ(request.size(), 5U);
    EXPECT_EQ(request[1]["op"], "wait");
    EXPECT_EQ(request[1]["rows"][0]["locator_set"], json::array({"uuid", red}));
    EXPECT_EQ(request[2]["row"]["dst_ip"], "192.0.2.3");
    json const members = json::array({json::array({"uuid", other}), json::array({"uuid", ipv6}),
                                      json::array({"named-uuid", request[2]["uuid-name"]})});
    EXPECT_EQ(request[3]["row"]["locators"], json::array({"set", members}));
    EXPECT_FALSE(request[4]["row"].contains("logical_switch"));
}

TEST(MacRequest, OnlyWhatWasChangedIsUpdated) {
    MacChanges changes;
    changes.logicalSwitch = red;
    json const request =
        macUpdate(Table::ucastMacsLocal, locator, changes, {}, *databaseWithLocator());
    ASSERT_EQ(request.size(), 2U);
    EXPECT_EQ(request[1]["row"], json({{"logical_switch", json::array({"uuid", red})}}));
}

TEST(MacRequest, WhatAChangeLeavesARowLackingIsNamed) {
    LocatorSet const one{red, {{locator, vtep}}};
    LocatorSet const withIpv6{red, {{locator, vtep}, {red, std::nullopt}}};
    EXPECT_EQ(macLacks(MacChanges{"", {}, {}}, {}), "logicalSwitch is not set");
    EXPECT_EQ(macLacks(MacChanges{"red", {}, {}}, {}), "logicalSwitch is no row's UUID");
    EXPECT_EQ(macLacks(MacChanges{{}, Kelp::IpAddr(), {}}, {}), "vtepIp is not set");
    EXPECT_EQ(macLacks(MacChanges{{}, {}, {{vtep, false}}}, one), "vtepIp is not set");
    EXPECT_EQ(macLacks(MacChanges{{}, {}, {{vtep, false}}}, withIpv6), "");
    EXPECT_EQ(macLacks(MacChanges{red, vtep, {}}, one), "");
}

TEST(MacRequest, WhatARowLacksIsNamed) {
    EXPECT_EQ(macLacks(MacContent{mac, "", {vtep}}), "logicalSwitch is not set");
    EXPECT_EQ(macLacks(MacContent{mac, "red", {vtep}}), "logicalSwitch is no row's UUID");
    EXPECT_EQ(macLacks(MacContent{mac, red, {}}), "vtepIp is not set");
    EXPECT_EQ(macLacks(MacContent{mac, red, {vtep}}), "");
}

TEST(MacRequest, ContentIsThatOfLocalRowsOnly) {
    auto const row = Qor::make<Vgw::McastMacsLocal>(mac);
    row->logicalSwitchIs(red);
    row->vtepIpIs(vtep, true);
    row->vtepIpIs(Kelp::IpAddr("192.0.2.2"), false);
    auto const content = macContentOf(*row);
    ASSERT_TRUE(content);
    EXPECT_EQ(content->vtepIps, std::vector<Kelp::IpAddr>{vtep});
    EXPECT_EQ(content->logicalSwitch, red);
    EXPECT_FALSE(macContentOf(*databaseWithLocator()));
    EXPECT_TRUE(macContentOf(*Qor::make<Vgw::UcastMacsLocal>(mac))->vtepIps.empty());
}

}  // namespace
}  // namespace Vgwd
