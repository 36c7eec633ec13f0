// The members of sets and maps that peers write, one by one.
#include <vgwd/write/RowMembers.h>

#include <vgw/tables/LogicalBindingStats.h>
#include <vgw/tables/PhysicalPort.h>
#include <vgw/tables/PhysicalSwitch.h>

#include <gtest/gtest.h>

#include <vector>

namespace Vgwd {
namespace {

using nlohmann::json;
using Vgw::PhysicalPort;
using Vgw::PhysicalSwitch;

constexpr char const* stats = "11111111-1111-1111-1111-111111111111";

struct Heard {
    explicit Heard(Qor::Entity& row)
        : watch(watchMembers(row, [this](WrittenMember const& one) { all.push_back(one); })) {}

    std::vector<WrittenMember> all;
    Qor::PtrInterface::NotifieeConst::Ptr watch;
};

TEST(RowMembers, EachThatComesOrGoesIsHeardWithItsKey) {
    auto const port = Qor::make<PhysicalPort>("p");
    Heard heard(*port);
    port->faultIs("a", true);
    port->faultIs("b", true);
    port->faultDel("a");
    port->vlanStatIs(7, "new");
    ASSERT_EQ(heard.all.size(), 4U);
    EXPECT_EQ(heard.all[1].column, "port_fault_status");
    EXPECT_EQ(heard.all[1].key, "b");
    EXPECT_TRUE(heard.all[1].member.isThere);
    EXPECT_EQ(heard.all[2].key, "a");
    EXPECT_FALSE(heard.all[2].member.isThere);
    EXPECT_EQ(heard.all[3].column, "vlan_stats");
    EXPECT_EQ(heard.all[3].key, 7);
    EXPECT_EQ(heard.all[3].member.text, "new");
}

TEST(RowMembers, AddressesOfASwitchAreHeardAsTexts) {
    auto const device = Qor::make<PhysicalSwitch>("s");
    Heard heard(*device);
    device->mgmtIpIs(Kelp::IpAddr("192.0.2.1"), true);
    device->tunnelIpIs(Kelp::IpAddr("192.0.2.2"), true);
    ASSERT_EQ(heard.all.size(), 2U);
    EXPECT_EQ(heard.all[0].column, "management_ips");
    EXPECT_EQ(heard.all[0].key, "192.0.2.1");
    EXPECT_EQ(heard.all[1].column, "tunnel_ips");
    EXPECT_EQ(heard.all[1].key, "192.0.2.2");
}

TEST(RowMembers, KeysThatTheDatabaseDoesNotTakeAreRefused) {
    auto const port = Qor::make<PhysicalPort>("p");
    auto const device = Qor::make<PhysicalSwitch>("s");
    Heard ofPort(*port);
    Heard ofDevice(*device);
    port->faultIs("loss\xc3", true);
    port->faultIs(std::string_view("a\0b", 3), true);
    device->faultIs("\x80", true);
    EXPECT_EQ(ofPort.all.at(0).refusal, "fault holds bytes that are not UTF-8");
    EXPECT_EQ(ofPort.all.at(1).refusal,
              "fault holds a zero byte, which the database does not take");
    EXPECT_EQ(ofDevice.all.at(0).refusal, "fault holds bytes that are not UTF-8");
}

TEST(RowMembers, AWatchKeepsNoRow) {
    auto port = Qor::make<PhysicalPort>("p");
    Heard const heard(*port);
    EXPECT_EQ(heard.watch->qorNotifier(), port.ptr());
    port = nullptr;
    EXPECT_EQ(heard.watch->qorNotifier(), nullptr);
    EXPECT_FALSE(watchMembers(*Qor::make<Vgw::LogicalBindingStats>("s"), {}));
}

TEST(RowMembers, WhatWasTakenOutIsPutBack) {
    auto const port = Qor::make<PhysicalPort>("p");
    auto const device = Qor::make<PhysicalSwitch>("s");
    port->faultIs("gone", true);
    device->tunnelIpIs(Kelp::IpAddr("192.0.2.2"), true);
    MemberChanges const ofPort{{"port_fault_status", {{"a", {true, ""}}, {"gone", {false, ""}}}}};
    MemberChanges const ofDevice{
        {"switch_fault_status", {{"b", {true, ""}}}},
        {"management_ips", {{"192.0.2.1", {true, ""}}}},
        {"tunnel_ips", {{"192.0.2.2", {false, ""}}}},
    };
    putMembers(*port, ofPort, false);
    putMembers(*device, ofDevice, false);
    EXPECT_TRUE(port->fault("a"));
    EXPECT_EQ(port->faults(), 1U);
    EXPECT_TRUE(device->fault("b"));
    EXPECT_TRUE(device->mgmtIp(Kelp::IpAddr("192.0.2.1")));
    EXPECT_EQ(device->tunnelIps(), 0U);
}

TEST(RowMembers, StatisticsThatHaveComeAlreadyStay) {
    auto const port = Qor::make<PhysicalPort>("p");
    MemberChanges const changes{{"vlan_stats", {{7, {true, "new"}}}}};
    putMembers(*port, changes, true);
    EXPECT_EQ(port->vlanStat(7), "new");
    port->vlanStatIs(7, stats);
    putMembers(*port, changes, true);
    EXPECT_EQ(port->vlanStat(7), stats);
    putMembers(*port, changes, false);
    EXPECT_EQ(port->vlanStat(7), "new");
}

}  // namespace
}  // namespace Vgwd
