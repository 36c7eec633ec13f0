#include <gtest/gtest.h>

#include "Copying.h"
#include "SampleValues.h"
#include "TraceLog.h"

namespace {

using Contract::AllTold;
using Kelp::EthAddr;
using Kelp::IpAddr;
using Vgw::MacVniPair;
using Vgw::PhysicalLocatorKey;
using Vxlan::Vni;

TEST(CloneOfGlobal, MirrorsBothCollections) {
    Copying<Vgw::Global> c;
    c.target->pSwitchIs("old", true);
    c.source->pSwitchIs("new", true);
    c.source->managerIs("m", true);
    EXPECT_EQ(c.run(), (AllTold{{386, "'old'"}, {386, "'new'"}, {387, "'m'"}}));
    EXPECT_TRUE(c.target->isEqualTo(c.source));
    EXPECT_EQ(c.target->pSwitchs(), 1U);
}

TEST(CloneOfGlobal, AttributeThatTheSourceMarksInvalidIsLeftAlone) {
    Copying<Vgw::Global> c;
    c.target->managerIs("mine", true);
    c.source->managerIs("theirs", true);
    c.source->pSwitchIs("p", true);
    c.source->invalidAttribIs("manager", true);
    EXPECT_EQ(c.run(), (AllTold{{386, "'p'"}}));
    EXPECT_TRUE(c.target->manager("mine"));
    EXPECT_FALSE(c.target->manager("theirs"));
}

TEST(CloneOfGlobal, MarksOfTheTargetAndMarksThatHoldFalseCountForNothing) {
    Copying<Vgw::Global> c;
    c.source->managerIs("m", true);
    c.target->invalidAttribIs("manager", true);
    c.source->invalidAttribIs("manager", false);
    EXPECT_EQ(c.run(), (AllTold{{387, "'m'"}}));
}

TEST(Clone, LeavesNameKindParentAndMarksOfTheTarget) {
    auto const db = Vgw::hwVtepOvsdbFactory("db");
    auto const target = db->rootIs("target");
    target->invalidAttribIs("mine", true);
    auto const source = Qor::make<Vgw::Global>("source");
    source->invalidAttribIs("theirs", true);
    source->typeIs(Vgw::OvsdbDataType::manager);
    target->clone(source);
    EXPECT_EQ(target->name(), "target");
    EXPECT_EQ(target->type(), Vgw::OvsdbDataType::global);
    EXPECT_EQ(target->parent().ptr(), db.ptr());
    EXPECT_TRUE(target->invalidAttrib("mine"));
    EXPECT_EQ(target->invalidAttribs(), 1U);
}

TEST(CloneOfManager, CopiesTheTargetWhateverIsMarked) {
    Copying<Vgw::Manager> c;
    c.source->targetIs("tcp:192.0.2.1:6640");
    c.source->invalidAttribIs("target", true);
    EXPECT_EQ(c.run(), (AllTold{{386, ""}}));
    EXPECT_EQ(c.target->target(), "tcp:192.0.2.1:6640");
}

TEST(CloneOfManager, ManagersAndBackupManagersCloneEachOther) {
    auto const manager = Qor::make<Vgw::Manager>("m");
    auto const backup = Qor::make<Vgw::BackupManager>("b");
    manager->targetIs("one");
    backup->clone(manager);
    EXPECT_EQ(backup->target(), "one");
    EXPECT_EQ(backup->type(), Vgw::OvsdbDataType::backupManager);
    backup->targetIs("two");
    manager->clone(backup);
    EXPECT_EQ(manager->target(), "two");
    EXPECT_EQ(manager->type(), Vgw::OvsdbDataType::manager);
}

class WatchingManager : public Vgw::Manager {
  public:
    using Manager::Manager;
    void targetIs(Qor::String8 target) override {
        ++calls;
        Manager::targetIs(target);
    }
    int calls = 0;
};

TEST(CloneOfManager, ReachesTheTargetByAVirtualCall) {
    auto const watching = Qor::make<WatchingManager>("w");
    auto const source = Qor::make<Vgw::Manager>("m");
    source->targetIs("t");
    watching->clone(source);
    EXPECT_EQ(watching->calls, 1);
    EXPECT_EQ(watching->target(), "t");
}

TEST(CloneOfPhysicalSwitch, CopiesInTheOrderOfTheAttributes) {
    Copying<Vgw::PhysicalSwitch> c;
    c.source->faultIs("f", true);
    c.source->tunnelIpIs(ip2, true);
    c.source->mgmtIpIs(ip1, true);
    c.source->portIs("p", true);
    c.source->descIs("d");
    c.source->displayNameIs("n");
    EXPECT_EQ(c.run(), (AllTold{{386, ""},
                                {387, ""},
                                {388, "'p'"},
                                {389, "'192.0.2.1'"},
                                {390, "'192.0.2.2'"},
                                {391, "'f'"}}));
    EXPECT_TRUE(c.target->isEqualTo(c.source));
    EXPECT_EQ(c.run(), AllTold()) << "again";
}

TEST(CloneOfPhysicalSwitch, EveryAttributeIsLeftAloneUnderItsOwnMark) {
    for (char const* mark : {"displayName", "desc", "port", "mgmtIp", "tunnelIp", "fault"}) {
        SCOPED_TRACE(mark);
        Copying<Vgw::PhysicalSwitch> c;
        c.source->displayNameIs("n");
        c.source->descIs("d");
        c.source->portIs("p", true);
        c.source->mgmtIpIs(ip1, true);
        c.source->tunnelIpIs(ip1, true);
        c.source->faultIs("f", true);
        c.source->invalidAttribIs(mark, true);
        AllTold const told = c.run();
        EXPECT_EQ(told.size(), 5U);
        for (auto const& one : told) {
            EXPECT_NE(c.target->attributeString(one.id), mark);
        }
    }
}

TEST(CloneOfPhysicalSwitch, PortsThatAreMarkedUnderPortsAreCopied) {
    Copying<Vgw::PhysicalSwitch> c;
    c.source->portIs("p", true);
    c.source->invalidAttribIs("ports", true);
    EXPECT_EQ(c.run(), (AllTold{{388, "'p'"}}));
}

TEST(CloneOfPhysicalPort, CopiesInTheOrderOfTheAttributes) {
    Copying<Vgw::PhysicalPort> c;
    c.source->faultIs("f", true);
    c.source->vlanStatIs(70000, "st");
    c.source->vlanBindingIs(10, "ls");
    c.source->descIs("d");
    c.source->displayNameIs("n");
    EXPECT_EQ(c.run(), (AllTold{{386, ""}, {387, ""}, {388, "10"}, {389, "70000"}, {390, "'f'"}}));
    EXPECT_TRUE(c.target->isEqualTo(c.source));
}

TEST(CloneOfPhysicalPort, EveryAttributeIsLeftAloneUnderItsOwnMark) {
    for (char const* mark : {"displayName", "desc", "vlanBinding", "vlanStat", "fault"}) {
        SCOPED_TRACE(mark);
        Copying<Vgw::PhysicalPort> c;
        c.source->displayNameIs("n");
        c.source->descIs("d");
        c.source->vlanBindingIs(10, "ls");
        c.source->vlanStatIs(10, "st");
        c.source->faultIs("f", true);
        c.source->invalidAttribIs(mark, true);
        AllTold const told = c.run();
        EXPECT_EQ(told.size(), 4U);
        for (auto const& one : told) {
            EXPECT_NE(c.target->attributeString(one.id), mark);
        }
    }
}

TEST(CloneOfPhysicalPort, EmptyBindingOfTheSourceIsRemovedAndMadeAnew) {
    Copying<Vgw::PhysicalPort> c;
    c.source->vlanBindingIs(10, "");
    c.target->vlanBindingIs(10, "x");
    EXPECT_EQ(c.run(), (AllTold{{388, "10"}, {388, "10"}}));
    EXPECT_EQ(c.target->vlanBindings(), 1U);
    EXPECT_EQ(c.target->vlanBinding(10), "");
    EXPECT_EQ(c.run().size(), 2U) << "a default value is removed and made anew each time";
}

TEST(CloneOfPhysicalPort, ChangedBindingIsStoredInPlaceAndEqualOnesAreLeft) {
    Copying<Vgw::PhysicalPort> c;
    c.target->vlanBindingIs(10, "a");
    c.target->vlanBindingIs(11, "b");
    c.source->vlanBindingIs(10, "a");
    c.source->vlanBindingIs(11, "c");
    EXPECT_EQ(c.run(), (AllTold{{388, "11"}}));
}

// Sees how many members the collection has at each telling.
class Counting : public Vgw::PhysicalPort::NotifieeConst {
  public:
    void onVlanBinding(Qor::U16) override { counts.push_back(notifier()->vlanBindings()); }
    std::vector<Qor::U32> counts;
};

TEST(CloneOfPhysicalPort, RemovalComesBeforeAddition) {
    Copying<Vgw::PhysicalPort> c;
    for (Qor::U16 vlan = 1; vlan <= 3; ++vlan) {
        c.target->vlanBindingIs(vlan, "old");
        c.source->vlanBindingIs(static_cast<Qor::U16>(vlan + 10), "new");
    }
    auto const counting = Qor::make<Counting>();
    counting->notifierIs(c.target);
    c.run();
    EXPECT_EQ(counting->counts, (std::vector<Qor::U32>{2, 1, 0, 1, 2, 3}));
}

TEST(CloneOfLogicalSwitch, CopiesWhateverIsMarked) {
    Copying<Vgw::LogicalSwitch> c;
    c.source->displayNameIs("n");
    c.source->descIs("d");
    c.source->tunnelKeyIs(7);
    for (char const* mark : {"displayName", "desc", "tunnelKey"}) {
        c.source->invalidAttribIs(mark, true);
    }
    EXPECT_EQ(c.run(), (AllTold{{386, ""}, {387, ""}, {388, ""}}));
    EXPECT_EQ(c.target->displayName(), "n");
    EXPECT_EQ(c.target->desc(), "d");
    EXPECT_EQ(c.target->tunnelKey(), 7U);
    EXPECT_EQ(c.run(), AllTold()) << "equal rows tell nothing";
}

TEST(Clone, EqualRowsTellNothing) {
    Copying<Vgw::PhysicalLocator> c;
    c.source->keyIs(PhysicalLocatorKey(vxlan, ip1));
    c.source->bfdIs("a", "b");
    c.source->ucastMacRefIs(MacVniPair(), true);
    c.run();
    EXPECT_EQ(c.run(), AllTold());
}

TEST(Clone, HandlersExceptionReachesNeitherTheCallerNorTheRest) {
    Copying<Vgw::Global> c;
    c.recorder->throwsIs(true);
    c.source->pSwitchIs("p", true);
    c.source->managerIs("m", true);
    EXPECT_NO_THROW(c.target->clone(c.source));
    EXPECT_TRUE(c.target->isEqualTo(c.source));
}

template <class X>
TraceLines traceOfClone(Qor::Ptr<X> const& row) {
    TraceLog log;
    row->clone(Qor::Ptr<Vgw::OvsdbDataModel const>(row));
    return log.take("OvsdbDataTypes", "clone");
}

TraceLines banner(int line, std::string const& name) {
    return {
        {5, line, "virtual void Vgw::" + name + "::clone(const Vgw::OvsdbDataModel::PtrConst&)"}};
}

TEST(CloneTrace, EveryClassTracesItsBannerAlone) {
    using namespace Vgw;
    EXPECT_EQ(traceOfClone(Qor::make<Global>("r")), banner(59, "Global"));
    EXPECT_EQ(traceOfClone(Qor::make<Manager>("r")), banner(96, "Manager"));
    EXPECT_EQ(traceOfClone(Qor::make<BackupManager>("r")), banner(96, "Manager"));
    EXPECT_EQ(traceOfClone(Qor::make<PhysicalSwitch>("r")), banner(176, "PhysicalSwitch"));
    EXPECT_EQ(traceOfClone(Qor::make<PhysicalPort>("r")), banner(298, "PhysicalPort"));
    EXPECT_EQ(traceOfClone(Qor::make<LogicalSwitch>("r")), banner(355, "LogicalSwitch"));
    EXPECT_EQ(traceOfClone(Qor::make<UcastMacsLocal>(EthAddr())), banner(366, "UcastMacsLocal"));
    EXPECT_EQ(traceOfClone(Qor::make<McastMacsLocal>(EthAddr())), banner(379, "McastMacsLocal"));
    EXPECT_EQ(traceOfClone(Qor::make<UcastMacsRemote>("r")), banner(404, "UcastMacsRemote"));
    EXPECT_EQ(traceOfClone(Qor::make<McastMacsRemote>("r")), banner(417, "McastMacsRemote"));
    EXPECT_EQ(traceOfClone(Qor::make<PhysicalLocator>("r")), banner(483, "PhysicalLocator"));
    EXPECT_EQ(traceOfClone(Qor::make<PhysicalLocatorSet>("r")), banner(547, "PhysicalLocatorSet"));
}

}  // namespace
