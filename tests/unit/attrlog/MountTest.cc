#include "Peers.h"

#include <vgw/attrlog/CliConfig.h>
#include <vgw/attrlog/HwVtepOvsdb.h>
#include <vgw/attrlog/LogicalSwitch.h>
#include <vgw/attrlog/Manager.h>
#include <vgw/attrlog/PhysicalLocator.h>
#include <vgw/attrlog/PhysicalPort.h>
#include <vgw/attrlog/PhysicalSwitch.h>
#include <vgw/attrlog/Status.h>

#include <gtest/gtest.h>

namespace {

using Qor::make;
using Qor::Name;
using Qor::String8;

TEST(Mount, ScalarsAndTextsArrive) {
    auto const original = make<Vgw::CliConfig>(Name("cli"));
    original->enableAgentIs(true);
    original->managerIpIs(Kelp::IpAddr("192.0.2.1"));
    original->vtepListTypeIs(Vgw::sendToAll);
    auto const copy = make<Vgw::CliConfig>(Name("cli"));
    Peers peers;
    peers.mount(original, copy);
    EXPECT_EQ(peers.reader.failure, String8());
    EXPECT_TRUE(copy->enableAgent());
    EXPECT_EQ(copy->managerIp(), Kelp::IpAddr("192.0.2.1"));
    EXPECT_EQ(copy->vtepListType(), Vgw::sendToAll);
    EXPECT_EQ(peers.source.demuxer->flows(), 0U);
}

TEST(Mount, ChangeAfterwardsArrives) {
    auto const original = make<Vgw::CliConfig>(Name("cli"));
    auto const copy = make<Vgw::CliConfig>(Name("cli"));
    Peers peers;
    peers.mount(original, copy);
    original->managerPortIs(1234);
    peers.settle();
    EXPECT_EQ(copy->managerPort(), 1234);
    copy->managerPortIs(4321);
    peers.settle();
    EXPECT_EQ(original->managerPort(), 4321);
}

TEST(Mount, WholeTreeArrivesWithItsReferences) {
    auto const original = Vgw::statusFactory(Name("status"));
    auto const ovsdb = original->ovsdbIs(Name("ovsdb"));
    original->ovsdbSessionStatusIs(Name("session"))->lastMsgSentIs("monitor");
    auto const root = ovsdb->rootIs(Name("r"));
    root->managerIs("m1", true);
    root->managerIs("m2", false);
    auto const sw = ovsdb->physicalSwitchRawIs(Name("s1"));
    sw->displayNameIs(Name("leaf"));
    sw->mgmtIpIs(Kelp::IpAddr("192.0.2.7"), true);
    ovsdb->physicalSwitchIs("leaf", sw);
    auto const port = ovsdb->physicalPortIs(Name("p1"));
    port->vlanBindingIs(7, "ls1");
    port->vlanStatIs(7, "st1");
    auto const locator = ovsdb->physicalLocatorRawIs(Name("l1"));
    Vgw::PhysicalLocatorKey const key(Vgw::vxlan_over_ipv4, Kelp::IpAddr("192.0.2.9"));
    locator->keyIs(key);
    locator->bfdIs("enable", "true");
    ovsdb->remoteLocatorIs(key, locator);
    ovsdb->physicalLocatorIs(Kelp::IpAddr("192.0.2.9"), locator);

    auto const copy = Vgw::statusFactory(Name("status"));
    Peers peers;
    peers.mount(original, copy);
    ASSERT_EQ(peers.reader.failure, String8());
    ASSERT_EQ(peers.source.failure, String8());
    ASSERT_TRUE(copy->ovsdb());
    auto const mirror = copy->ovsdb();
    EXPECT_EQ(copy->ovsdbSessionStatus()->lastMsgSent(), "monitor");
    ASSERT_TRUE(mirror->root(Name("r")));
    EXPECT_TRUE(mirror->root(Name("r"))->manager("m1"));
    EXPECT_EQ(mirror->root(Name("r"))->managers(), 2U);
    ASSERT_TRUE(mirror->physicalSwitch("leaf"));
    EXPECT_EQ(mirror->physicalSwitch("leaf"), mirror->physicalSwitchRaw(Name("s1")));
    EXPECT_EQ(mirror->physicalSwitch("leaf")->displayName(), Name("leaf"));
    EXPECT_TRUE(mirror->physicalSwitch("leaf")->mgmtIp(Kelp::IpAddr("192.0.2.7")));
    EXPECT_EQ(mirror->physicalPort(Name("p1"))->vlanBinding(7), "ls1");
    EXPECT_EQ(mirror->physicalPort(Name("p1"))->vlanStat(7), "st1");
    EXPECT_EQ(mirror->remoteLocator(key), mirror->physicalLocatorRaw(Name("l1")));
    EXPECT_EQ(mirror->physicalLocator(Kelp::IpAddr("192.0.2.9"))->bfd("enable"), "true");
    EXPECT_EQ(peers.source.demuxer->flows(), 0U);
}

// The reader still has children from an earlier connection that the source has let go meanwhile,
// and makes anew while its mount waits for room.
class RemountUnderWay : public testing::Test {
  protected:
    RemountUnderWay() {
        original->ovsdbIs(Name("db"));
        for (int i = 0; i < rows; ++i) row(i)->descIs("old");
        peers.mount(original, copy);
        peers.source.demuxer->close();
        peers.reader.demuxer->close();
    }
    Qor::Ptr<Vgw::LogicalSwitch> row(int number) {
        return original->ovsdb()->logicalSwitchIs(Name(std::to_string(number)));
    }
    // Mounts again, as far as flows go in a ring that nobody reads.
    void mountAgain() {
        again.reader.copy = copy;
        again.source.send(original);
        ASSERT_NE(again.source.demuxer->flows(), 0U);
    }

    static constexpr int rows = 300;
    Qor::Ptr<Vgw::Status> const original = make<Vgw::Status>(Name("status"));
    Qor::Ptr<Vgw::Status> const copy = make<Vgw::Status>(Name("status"));
    Peers peers;
    Peers again;
};

TEST_F(RemountUnderWay, SingleChildMadeAnewKeepsNothingOfTheOldOne) {
    original->ovsdbIs(Name("other"));
    original->ovsdbSessionStatusIs(Name("session"))
        ->lastMsgSentIs(String8(std::string(1U << 20, 'x')));
    mountAgain();
    original->ovsdbIs(Name("db"));
    again.settle();
    ASSERT_TRUE(copy->ovsdb());
    EXPECT_EQ(copy->ovsdb()->logicalSwitchs(), 0U);
}

TEST_F(RemountUnderWay, ChildrenOfACollectionMadeAnewKeepNothingOfTheOldOnes) {
    for (int i = 0; i < rows; i += 2) original->ovsdb()->logicalSwitchDel(Name(std::to_string(i)));
    for (int i = 1; i < rows; i += 2) row(i)->descIs(String8(std::string(10000, 'x')));
    mountAgain();
    for (int i = 0; i < rows; i += 2) row(i);
    again.settle();
    ASSERT_EQ(copy->ovsdb()->logicalSwitchs(), static_cast<unsigned>(rows));
    for (int i = 0; i < rows; i += 2) {
        EXPECT_EQ(copy->ovsdb()->logicalSwitch(Name(std::to_string(i)))->desc(), "") << i;
    }
}

TEST(Mount, ReferenceThatWaitsInTheLastAttributeHoldsUpNoChild) {
    auto const original = make<Vgw::HwVtepOvsdb>(Name("db"));
    auto const copy = make<Vgw::HwVtepOvsdb>(Name("db"));
    auto const outside = make<Vgw::PhysicalLocator>(Name("outside"));
    Vgw::PhysicalLocatorKey const key(Vgw::vxlan_over_ipv4, Kelp::IpAddr("192.0.2.9"));
    original->remoteLocatorIs(key, outside);
    Peers peers;
    peers.mount(original, copy);
    EXPECT_EQ(peers.source.demuxer->flows(), 1U);
    original->logicalSwitchIs(Name("new"))->tunnelKeyIs(7);
    peers.settle();
    ASSERT_TRUE(copy->logicalSwitch(Name("new")));
    EXPECT_EQ(copy->logicalSwitch(Name("new"))->tunnelKey(), 7U);
    original->physicalLocatorRawIs(Name("inside"));
    original->remoteLocatorIs(key, original->physicalLocatorRaw(Name("inside")));
    peers.settle();
    EXPECT_EQ(copy->remoteLocator(key), copy->physicalLocatorRaw(Name("inside")));
    EXPECT_EQ(peers.source.demuxer->flows(), 0U);
}

}  // namespace
