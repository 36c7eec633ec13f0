// The copying of MAC rows and locators.
#include <gtest/gtest.h>

#include "Copying.h"
#include "SampleValues.h"

namespace {

using Contract::AllTold;
using Kelp::EthAddr;
using Kelp::IpAddr;
using Vgw::MacVniPair;
using Vgw::PhysicalLocatorKey;
using Vxlan::Vni;

TEST(CloneOfUcastMacsLocal, LeavesTheLogicalSwitchAndTheAddress) {
    EthAddr const mine("00:00:5e:00:53:01");
    EthAddr const theirs("00:00:5e:00:53:02");
    Copying<Vgw::UcastMacsLocal> c(mine, theirs);
    c.target->logicalSwitchIs("a");
    c.source->logicalSwitchIs("b");
    c.source->vniIs(Vni(5));
    c.source->uuidIs("u");
    c.source->vtepIpIs(ip1);
    EXPECT_EQ(c.run(), (AllTold{{387, ""}, {388, ""}, {389, ""}}));
    EXPECT_EQ(c.target->logicalSwitch(), "a");
    EXPECT_EQ(c.target->macAddr(), mine);
    EXPECT_EQ(c.target->vtepIp(), ip1);
    EXPECT_EQ(c.target->uuid(), "u");
    EXPECT_EQ(c.target->vni(), Vni(5));
}

TEST(CloneOfMcastMacsLocal, MirrorsTheAddressesAndCopiesTheSetBeforeTheUuid) {
    EthAddr const mac("01:00:5e:00:53:01");
    Copying<Vgw::McastMacsLocal> c(mac, mac);
    c.target->vtepIpIs(ip1, true);
    c.target->logicalSwitchIs("a");
    c.source->vtepIpIs(ip2, true);
    c.source->logicalSwitchIs("b");
    c.source->vniIs(Vni(5));
    c.source->uuidIs("u");
    c.source->physicalLocatorSetIs("s");
    EXPECT_EQ(
        c.run(),
        (AllTold{{387, "'192.0.2.1'"}, {387, "'192.0.2.2'"}, {390, ""}, {388, ""}, {389, ""}}));
    EXPECT_EQ(c.target->logicalSwitch(), "a");
    EXPECT_FALSE(c.target->vtepIp(ip1));
    EXPECT_TRUE(c.target->vtepIp(ip2));
}

TEST(CloneOfUcastMacsRemote, CopiesAllFour) {
    Copying<Vgw::UcastMacsRemote> c;
    c.source->ipAddrIs(ip1);
    c.source->physicalLocatorIs("pl");
    c.source->logicalSwitchIs("ls");
    c.source->macIs(EthAddr("00:00:5e:00:53:01"));
    EXPECT_EQ(c.run(), (AllTold{{386, ""}, {387, ""}, {388, ""}, {389, ""}}));
    EXPECT_EQ(c.target->mac(), c.source->mac());
    EXPECT_EQ(c.target->logicalSwitch(), "ls");
    EXPECT_EQ(c.target->physicalLocator(), "pl");
    EXPECT_EQ(c.target->ipAddr(), ip1);
}

TEST(CloneOfMcastMacsRemote, CopiesAllFour) {
    Copying<Vgw::McastMacsRemote> c;
    c.source->ipAddrIs(ip1);
    c.source->physicalLocatorSetIs("ps");
    c.source->logicalSwitchIs("ls");
    c.source->macIs(EthAddr("01:00:5e:00:53:01"));
    EXPECT_EQ(c.run(), (AllTold{{386, ""}, {387, ""}, {388, ""}, {389, ""}}));
    EXPECT_EQ(c.target->physicalLocatorSet(), "ps");
}

TEST(CloneOfMacRows, MarksOfTheTargetAreNoHindrance) {
    Copying<Vgw::UcastMacsRemote> c;
    c.target->invalidAttribIs("mac", true);
    c.source->logicalSwitchIs("ls");
    EXPECT_EQ(c.run(), (AllTold{{387, ""}}));
}

TEST(CloneOfPhysicalLocator, CopiesInTheOrderOfTheAttributes) {
    Copying<Vgw::PhysicalLocator> c;
    c.source->mcastMacRefIs(MacVniPair(EthAddr(), Vni(2)), true);
    c.source->ucastMacRefIs(MacVniPair(EthAddr(), Vni(1)), true);
    c.source->bfdStatusIs("s", "t");
    c.source->bfdIs("a", "b");
    c.source->keyIs(PhysicalLocatorKey(vxlan, ip1));
    std::vector<Qor::AttributeId> ids;
    for (auto const& told : c.run()) {
        ids.push_back(told.id);
    }
    EXPECT_EQ(ids, (std::vector<Qor::AttributeId>{386, 387, 388, 389, 390}));
    EXPECT_TRUE(c.target->isEqualTo(c.source));
}

TEST(CloneOfPhysicalLocator, EveryGuardedAttributeIsLeftAloneUnderItsOwnMark) {
    for (char const* mark : {"key", "bfd", "bfdStatus"}) {
        SCOPED_TRACE(mark);
        Copying<Vgw::PhysicalLocator> c;
        c.source->keyIs(PhysicalLocatorKey(vxlan, ip1));
        c.source->bfdIs("a", "b");
        c.source->bfdStatusIs("a", "b");
        c.source->invalidAttribIs(mark, true);
        AllTold const told = c.run();
        EXPECT_EQ(told.size(), 2U);
        for (auto const& one : told) {
            EXPECT_NE(c.target->attributeString(one.id), mark);
        }
    }
}

TEST(CloneOfPhysicalLocator, ReferencesFromMacRowsOnlyGrowAndArriveAsTrue) {
    Copying<Vgw::PhysicalLocator> c;
    MacVniPair const kept(EthAddr(), Vni(1));
    MacVniPair const stored(EthAddr(), Vni(2));
    MacVniPair const added(EthAddr(), Vni(3));
    c.target->ucastMacRefIs(kept, true);
    c.target->ucastMacRefIs(stored, false);
    c.source->ucastMacRefIs(stored, true);
    c.source->ucastMacRefIs(added, false);
    c.source->mcastMacRefIs(added, false);
    c.run();
    EXPECT_TRUE(c.target->ucastMacRef(kept));
    EXPECT_TRUE(c.target->ucastMacRef(stored));
    EXPECT_TRUE(c.target->ucastMacRef(added));
    EXPECT_TRUE(c.target->mcastMacRef(added));
    EXPECT_EQ(c.target->ucastMacRefs(), 3U);
    EXPECT_EQ(c.target->mcastMacRefs(), 1U);
}

TEST(CloneOfPhysicalLocator, ReferencesFromMacRowsHaveNoMark) {
    Copying<Vgw::PhysicalLocator> c;
    c.source->ucastMacRefIs(MacVniPair(), true);
    c.source->invalidAttribIs("ucastMacRef", true);
    c.source->invalidAttribIs("mcastMacRef", true);
    EXPECT_EQ(c.run().size(), 1U);
}

TEST(CloneOfPhysicalLocatorSet, MirrorsItsMembersUnlessMarked) {
    Copying<Vgw::PhysicalLocatorSet> c;
    c.target->locatorIs("old", true);
    c.source->locatorIs("new", true);
    c.source->invalidAttribIs("locator", true);
    EXPECT_EQ(c.run(), AllTold());
    c.source->invalidAttribDel("locator");
    EXPECT_EQ(c.run(), (AllTold{{386, "'old'"}, {386, "'new'"}}));
}

}  // namespace
