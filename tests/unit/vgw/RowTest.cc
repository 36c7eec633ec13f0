// What is particular to single row classes.
#include <gtest/gtest.h>

#include "Accessors.h"

namespace {

using Contract::AllTold;
using Contract::Recorder;
using Kelp::EthAddr;
using Kelp::IpAddr;
using Vgw::MacVniPair;
using Vgw::OvsdbDataType;
using Vgw::PhysicalLocatorKey;
using Vxlan::Vni;

template <class X>
struct Watched {
    Qor::Ptr<X> row;
    Qor::Ptr<Recorder<X>> recorder;

    AllTold take() const { return recorder->take(); }
    X* operator->() const { return row.ptr(); }
};

template <class X, class Argument = char const*>
Watched<X> watched(Argument const& argument = "row") {
    auto row = Qor::make<X>(argument);
    auto recorder = Qor::make<Recorder<X>>(row);
    return {row, recorder};
}

TEST(BackupManager, EndsWithItsOwnKind) {
    auto const row = Qor::make<Vgw::BackupManager>("b");
    EXPECT_EQ(row->type(), OvsdbDataType::backupManager);
    EXPECT_EQ(row->attributeString(386), "target");
    EXPECT_EQ(row->attributeString(387), "isEqualTo");
    EXPECT_EQ(row->attributeString(388), "unknown");
}

TEST(BackupManager, CloneFromAnotherCopiesTheTarget) {
    auto const row = Qor::make<Vgw::BackupManager>("b");
    auto const other = Qor::make<Vgw::BackupManager>("c");
    other->targetIs("ssl:192.0.2.1:6632");
    row->clone(other);
    EXPECT_EQ(row->target(), "ssl:192.0.2.1:6632");
}

TEST(BackupManager, NotifieesOfManagersHearOfIt) {
    auto const row = Qor::make<Vgw::BackupManager>("b");
    auto const recorder = Qor::make<Recorder<Vgw::Manager>>(row);
    row->targetIs("tcp:192.0.2.1:6640");
    EXPECT_EQ(recorder->take(), (AllTold{{386, ""}}));
}

TEST(Global, PhysicalSwitchIsEnteredOnce) {
    auto const row = watched<Vgw::Global>();
    row->pSwitchIs("u", true);
    EXPECT_EQ(row.take(), (AllTold{{386, "'u'"}}));
    EXPECT_TRUE(row->pSwitch("u"));
    EXPECT_EQ(row->pSwitchs(), 1U);
    row->pSwitchIs("u", true);
    EXPECT_EQ(row.take(), AllTold());
}

TEST(Global, PhysicalSwitchesAndManagersAreApart) {
    auto const row = watched<Vgw::Global>();
    row->pSwitchIs("u", true);
    EXPECT_EQ(row->managers(), 0U);
    row->managerIs("u", true);
    row->pSwitchDel("u");
    EXPECT_TRUE(row->manager("u"));
}

TEST(Manager, CurrentTargetRaisesNoHandler) {
    auto const row = watched<Vgw::Manager>();
    row->targetIs("");
    EXPECT_EQ(row.take(), AllTold());
    row->targetIs("ssl:192.0.2.1:6632");
    EXPECT_EQ(row.take(), (AllTold{{386, ""}}));
    row->targetIs("ssl:192.0.2.1:6632");
    EXPECT_EQ(row.take(), AllTold());
}

TEST(PhysicalPort, VlanBindingIsReplacedInPlace) {
    auto const row = watched<Vgw::PhysicalPort>();
    row->vlanBindingIs(100, "s");
    row->vlanBindingIs(100, "s");
    EXPECT_EQ(row.take(), (AllTold{{388, "100"}}));
    row->vlanBindingIs(100, "t");
    EXPECT_EQ(row.take(), (AllTold{{388, "100"}}));
    EXPECT_EQ(row->vlanBinding(100), "t");
    EXPECT_EQ(row->vlanBindings(), 1U);
}

TEST(PhysicalPort, RemovalOfAnAbsentVlanGivesTheEmptyString) {
    auto const row = watched<Vgw::PhysicalPort>();
    EXPECT_EQ(row->vlanBindingDel(100), "");
    EXPECT_EQ(row.take(), AllTold());
    row->vlanBindingIs(100, "s");
    EXPECT_EQ(row->vlanBindingDel(100), "s");
}

TEST(PhysicalPort, StatisticsHaveWiderKeysThanBindings) {
    auto const row = watched<Vgw::PhysicalPort>();
    row->vlanStatIs(0x10001, "wide");
    row->vlanStatIs(1, "narrow");
    EXPECT_EQ(row->vlanStat(0x10001), "wide");
    EXPECT_EQ(row->vlanStat(1), "narrow");
    EXPECT_EQ(row->vlanStats(), 2U);
    EXPECT_EQ(row.take(), (AllTold{{389, "65537"}, {389, "1"}}));
    using BindingKey = decltype(row->vlanBindingIterator().key());
    using StatKey = decltype(row->vlanStatIterator().key());
    EXPECT_EQ(sizeof(BindingKey), 2U);
    EXPECT_EQ(sizeof(StatKey), 4U);
}

TEST(PhysicalSwitch, FalseAddressIsAMember) {
    auto const row = watched<Vgw::PhysicalSwitch>();
    row->mgmtIpIs(IpAddr("192.0.2.1"), false);
    EXPECT_EQ(row->mgmtIps(), 1U);
    EXPECT_FALSE(row->mgmtIp(IpAddr("192.0.2.1")));
    EXPECT_EQ(row.take(), (AllTold{{389, "'192.0.2.1'"}}));
}

TEST(PhysicalSwitch, FaultIsAStoredFlagAndNotPresence) {
    auto const row = watched<Vgw::PhysicalSwitch>();
    row->faultIs("fan", true);
    row->faultIs("fan", false);
    EXPECT_EQ(row->faults(), 1U);
    EXPECT_FALSE(row->fault("fan"));
    EXPECT_EQ(row.take().size(), 2U);
}

TEST(PhysicalSwitch, DisplayNameIsANameHereAlone) {
    EXPECT_TRUE(
        (std::is_same_v<decltype(std::declval<Vgw::PhysicalSwitch>().displayName()), Qor::Name>));
    EXPECT_TRUE(
        (std::is_same_v<decltype(std::declval<Vgw::PhysicalPort>().displayName()), Qor::String8>));
    EXPECT_TRUE(
        (std::is_same_v<decltype(std::declval<Vgw::LogicalSwitch>().displayName()), Qor::String8>));
}

TEST(LogicalSwitch, TunnelKeyStartsOneAboveTheGreatestVni) {
    auto const row = watched<Vgw::LogicalSwitch>();
    EXPECT_EQ(row->tunnelKey(), 16777216U);
    EXPECT_EQ(row->tunnelKey(), Vni::max + 1);
    row->tunnelKeyIs(0x1000000);
    EXPECT_EQ(row.take(), AllTold());
    row->tunnelKeyIs(0);
    EXPECT_EQ(row.take(), (AllTold{{388, ""}}));
}

TEST(LogicalSwitch, TunnelKeyTakesAnyNumber) {
    auto const row = watched<Vgw::LogicalSwitch>();
    row->tunnelKeyIs(0xFFFFFFFF);
    EXPECT_EQ(row->tunnelKey(), 0xFFFFFFFFU);
}

TEST(LogicalBindingStats, CounterThatChangesInItsUpperHalfAloneHasChanged) {
    auto const row = watched<Vgw::LogicalBindingStats>();
    row->inBytesIs(0x0000000100000005);
    row.take();
    row->inBytesIs(0x0000000200000005);
    EXPECT_EQ(row.take(), (AllTold{{386, ""}}));
    EXPECT_EQ(row->inBytes(), 0x0000000200000005U);
    row->outPacketsIs(0x100000000);
    EXPECT_EQ(row.take(), (AllTold{{389, ""}}));
}

TEST(UcastMacsLocal, AddressIsItsIdentityAndItHasNoName) {
    EthAddr const mac("00:00:5e:00:53:01");
    auto const row = watched<Vgw::UcastMacsLocal>(mac);
    EXPECT_EQ(row->type(), 11);
    EXPECT_EQ(row->macAddr(), mac);
    EXPECT_EQ(row->name(), "");
}

TEST(McastMacsLocal, AddressIsItsIdentityAndItHasNoName) {
    EthAddr const mac("01:00:5e:00:53:01");
    auto const row = watched<Vgw::McastMacsLocal>(mac);
    EXPECT_EQ(row->type(), 12);
    EXPECT_EQ(row->macAddr(), mac);
    EXPECT_EQ(row->name(), "");
}

TEST(McastMacsLocal, HasASetOfAddressesWhereTheUnicastRowHasOne) {
    IpAddr const ip("192.0.2.1");
    auto const mcast = watched<Vgw::McastMacsLocal>(EthAddr());
    mcast->vtepIpIs(ip, true);
    EXPECT_EQ(mcast.take(), (AllTold{{387, "'192.0.2.1'"}}));
    EXPECT_EQ(mcast->vtepIps(), 1U);
    auto const ucast = watched<Vgw::UcastMacsLocal>(EthAddr());
    ucast->vtepIpIs(ip);
    EXPECT_EQ(ucast.take(), (AllTold{{387, ""}}));
    EXPECT_EQ(ucast->vtepIp(), ip);
}

TEST(MacsRemote, StoredAddressRaisesNothing) {
    EthAddr const mac("00:00:5e:00:53:01");
    auto const ucast = watched<Vgw::UcastMacsRemote>();
    ucast->macIs(mac);
    EXPECT_EQ(ucast.take(), (AllTold{{386, ""}}));
    ucast->macIs(mac);
    EXPECT_EQ(ucast.take(), AllTold());
    auto const mcast = watched<Vgw::McastMacsRemote>();
    mcast->macIs(EthAddr());
    EXPECT_EQ(mcast.take(), AllTold());
}

TEST(MacsRemote, FactoriesMakeNamedRowsWithoutParent) {
    auto const ucast = Vgw::ucastMacsRemoteFactory("u");
    auto const mcast = Vgw::mcastMacsRemoteFactory("m");
    EXPECT_EQ(ucast->name(), "u");
    EXPECT_EQ(ucast->type(), OvsdbDataType::ucastMacsRemote);
    EXPECT_EQ(mcast->name(), "m");
    EXPECT_EQ(mcast->type(), OvsdbDataType::mcastMacsRemote);
    EXPECT_EQ(ucast->qorRefs(), 1U);
    EXPECT_FALSE(mcast->parent());
}

TEST(PhysicalLocator, NewOneHasTheNullKey) {
    auto const row = watched<Vgw::PhysicalLocator>();
    EXPECT_EQ(row->key(), PhysicalLocatorKey());
    EXPECT_EQ(row->key().encapType(), Vgw::EncapsulationType::vxlan_over_ipv4);
    EXPECT_EQ(row->key().dstIp(), IpAddr());
}

TEST(PhysicalLocator, KeyThatDiffersInTheEncapsulationAloneIsAChange) {
    auto const row = watched<Vgw::PhysicalLocator>();
    row->keyIs(PhysicalLocatorKey(Vgw::EncapsulationType::unknownEncapType, IpAddr()));
    EXPECT_EQ(row.take(), (AllTold{{386, ""}}));
    row->keyIs(PhysicalLocatorKey(Vgw::EncapsulationType::unknownEncapType, IpAddr()));
    EXPECT_EQ(row.take(), AllTold());
}

TEST(PhysicalLocator, BfdOptionIsToldOnceAndItsRemovalAgain) {
    auto const row = watched<Vgw::PhysicalLocator>();
    row->bfdIs("a", "b");
    row->bfdIs("a", "b");
    EXPECT_EQ(row.take(), (AllTold{{387, "'a'"}}));
    EXPECT_EQ(row->bfdStatuss(), 0U);
    EXPECT_EQ(row->bfdDel("a"), "b");
    EXPECT_EQ(row.take(), (AllTold{{387, "'a'"}}));
    EXPECT_EQ(row->bfd("a"), "");
}

TEST(PhysicalLocator, PairsThatDifferInTheVniAloneAreTwoMembers) {
    auto const row = watched<Vgw::PhysicalLocator>();
    EthAddr const mac("00:00:5e:00:53:01");
    row->ucastMacRefIs(MacVniPair(mac, Vni(1)), true);
    row->ucastMacRefIs(MacVniPair(mac, Vni(2)), true);
    EXPECT_EQ(row->ucastMacRefs(), 2U);
    EXPECT_EQ(row->mcastMacRefs(), 0U);
    EXPECT_EQ(row.take().size(), 2U);
}

TEST(PhysicalLocator, AbsentPairReadsFalse) {
    auto const row = watched<Vgw::PhysicalLocator>();
    EXPECT_FALSE(row->ucastMacRef(MacVniPair()));
    row->ucastMacRefIs(MacVniPair(EthAddr(), Vni(1)), true);
    EXPECT_FALSE(row->ucastMacRef(MacVniPair()));
    EXPECT_TRUE(row->ucastMacRef(MacVniPair(EthAddr(), Vni(1))));
}

}  // namespace
