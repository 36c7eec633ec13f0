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
        macInsertion(Table::ucastMacsLocal, {mac, red, {vtep}}, *databaseWithLocator());
    ASSERT_EQ(request.size(), 1U);
    EXPECT_EQ(request[0]["op"], "insert");
    EXPECT_EQ(request[0]["table"], "Ucast_Macs_Local");
    EXPECT_EQ(request[0]["row"]["MAC"], "00:00:5e:00:53:01");
    EXPECT_EQ(request[0]["row"]["locator"], json::array({"uuid", locator}));
    EXPECT_EQ(request[0]["row"]["logical_switch"], json::array({"uuid", red}));
}

TEST(MacRequest, ALocatorThatIsMissingComesWithTheRow) {
    json const request = macInsertion(
        Table::ucastMacsLocal, {mac, red, {Kelp::IpAddr("192.0.2.2")}}, *databaseWithLocator());
    ASSERT_EQ(request.size(), 2U);
    EXPECT_EQ(request[0]["table"], "Physical_Locator");
    EXPECT_EQ(request[0]["row"]["dst_ip"], "192.0.2.2");
    EXPECT_EQ(request[1]["row"]["locator"], json::array({"named-uuid", request[0]["uuid-name"]}));
}

TEST(MacRequest, AMulticastRowHasASetOfItsLocators) {
    json const request = macInsertion(Table::mcastMacsLocal,
                                      {Kelp::EthAddr(), red, {vtep, Kelp::IpAddr("192.0.2.2")}},
                                      *databaseWithLocator());
    ASSERT_EQ(request.size(), 3U);
    EXPECT_EQ(request[1]["table"], "Physical_Locator_Set");
    json const members = json::array(
        {json::array({"uuid", locator}), json::array({"named-uuid", request[0]["uuid-name"]})});
    EXPECT_EQ(request[1]["row"]["locators"], json::array({"set", members}));
    EXPECT_EQ(request[2]["row"]["MAC"], "unknown-dst");
    EXPECT_EQ(request[2]["row"]["locator_set"], json::array({"named-uuid", "locators"}));
}

TEST(MacRequest, AnUpdateOfARowThatIsGoneFails) {
    json const request = rowUpdate(Table::physicalPort, red, {{"description", "x"}});
    ASSERT_EQ(request.size(), 2U);
    EXPECT_EQ(request[0]["op"], "wait");
    EXPECT_EQ(request[0]["rows"][0]["_uuid"], json::array({"uuid", red}));
    EXPECT_EQ(request[1]["op"], "update");
    EXPECT_EQ(request[1]["where"], request[0]["where"]);
}

TEST(MacRequest, WhatARowLacksIsNamed) {
    EXPECT_EQ(macLacks({mac, "", {vtep}}), "logicalSwitch is not set");
    EXPECT_EQ(macLacks({mac, "red", {vtep}}), "logicalSwitch is no row's UUID");
    EXPECT_EQ(macLacks({mac, red, {}}), "vtepIp is not set");
    EXPECT_EQ(macLacks({mac, red, {vtep}}), "");
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
