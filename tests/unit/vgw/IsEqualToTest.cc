#include <gtest/gtest.h>

#include <sstream>

#include <vgw/OvsdbDataTypes.h>

#include "TraceLog.h"

namespace {

using Kelp::IpAddr;
using Vgw::Global;
using Vgw::MacVniPair;
using Vgw::PhysicalLocatorKey;

char const* const globalBanner = "bool Vgw::Global::isEqualTo(const Vgw::Global::PtrConst&) const";

template <class X>
class Pair : public testing::Test {
  protected:
    Qor::Ptr<X> a_ = Qor::make<X>("a");
    Qor::Ptr<X> b_ = Qor::make<X>("b");

    bool equal() const { return a_->isEqualTo(b_); }
    bool reversed() const { return b_->isEqualTo(a_); }
};

class GlobalPair : public Pair<Global> {
  protected:
    TraceLog log_;

    TraceLines reasons() {
        TraceLines lines = log_.take("OvsdbDataTypes", "isEqualTo");
        EXPECT_FALSE(lines.empty());
        if (!lines.empty()) {
            EXPECT_EQ(lines.front(), (TraceLine{5, 26, globalBanner}));
            lines.erase(lines.begin());
        }
        return lines;
    }
};

TEST_F(GlobalPair, EmptyRowsAreEqualAndTraceTheBannerAlone) {
    EXPECT_TRUE(equal());
    EXPECT_EQ(reasons(), TraceLines());
}

TEST_F(GlobalPair, RowIsEqualToItself) {
    a_->pSwitchIs("p", true);
    a_->managerIs("m", true);
    EXPECT_TRUE(a_->isEqualTo(a_));
}

TEST_F(GlobalPair, DifferentManagerCountsAreToldAtLine51) {
    a_->managerIs("m", true);
    a_->managerIs("n", true);
    b_->managerIs("m", true);
    EXPECT_FALSE(equal());
    EXPECT_EQ(reasons(), (TraceLines{{6, 51, "Rhs len: 1 lhs len:2"}}));
}

TEST_F(GlobalPair, DifferentSwitchCountsAreToldWithTheManagerCountsBehindThem) {
    a_->pSwitchIs("p", true);
    a_->managerIs("m", true);
    b_->managerIs("m", true);
    EXPECT_FALSE(equal());
    EXPECT_EQ(reasons(),
              (TraceLines{{6, 38, "Rhs len: 0 lhs len:1"}, {6, 51, "Rhs len: 1 lhs len:1"}}));
}

TEST_F(GlobalPair, DifferentSwitchValueIsToldWithTheManagerCountsBehindIt) {
    a_->pSwitchIs("p", true);
    b_->pSwitchIs("p", false);
    EXPECT_FALSE(equal());
    EXPECT_EQ(reasons(),
              (TraceLines{{6, 32, "Rhs uuid: 0 lhs uuid: 1"}, {6, 51, "Rhs len: 0 lhs len:0"}}));
}

TEST_F(GlobalPair, ManagersAreNotLookedAtBehindADifferentSwitch) {
    a_->pSwitchIs("p", true);
    b_->pSwitchIs("p", false);
    a_->managerIs("m", true);
    b_->managerIs("m", false);
    EXPECT_FALSE(equal());
    EXPECT_EQ(reasons(),
              (TraceLines{{6, 32, "Rhs uuid: 0 lhs uuid: 1"}, {6, 51, "Rhs len: 1 lhs len:1"}}));
}

TEST_F(GlobalPair, DifferentManagerValueIsToldAtLine45) {
    a_->managerIs("m", false);
    b_->managerIs("m", true);
    EXPECT_FALSE(equal());
    EXPECT_EQ(reasons(), (TraceLines{{6, 45, "Rhs uuid: 1 lhs uuid: 0"}}));
}

TEST_F(GlobalPair, FirstDifferenceEndsTheWalk) {
    for (char const* key : {"p", "q", "r"}) {
        a_->pSwitchIs(key, true);
        b_->pSwitchIs(key, false);
    }
    EXPECT_FALSE(equal());
    EXPECT_EQ(reasons().size(), 2U);
}

TEST_F(GlobalPair, AbsentKeyReadsFalse) {
    a_->pSwitchIs("a", true);
    b_->pSwitchIs("b", true);
    EXPECT_FALSE(equal());
    a_->pSwitchIs("a", false);
    b_->pSwitchIs("b", false);
    EXPECT_TRUE(equal());
    a_->pSwitchDel("a");
    a_->pSwitchIs("b", true);
    EXPECT_FALSE(equal());
}

TEST_F(GlobalPair, WalkIsOneSided) {
    a_->pSwitchIs("a", false);
    b_->pSwitchIs("b", true);
    EXPECT_TRUE(equal()) << "a reads false on both sides";
    EXPECT_FALSE(reversed()) << "b is true here and absent there";
}

TEST_F(GlobalPair, MarksAreNotAsked) {
    a_->invalidAttribIs("pSwitch", true);
    b_->invalidAttribIs("pSwitch", true);
    a_->invalidAttribIs("manager", true);
    a_->managerIs("m", true);
    EXPECT_FALSE(equal());
    a_->managerDel("m");
    a_->pSwitchIs("p", true);
    EXPECT_FALSE(equal());
}

TEST_F(GlobalPair, NameKindParentAndMarksAreNeverCompared) {
    auto const db = Vgw::hwVtepOvsdbFactory("db");
    auto const row = db->rootIs("other");
    row->typeIs(Vgw::OvsdbDataType::manager);
    row->invalidAttribIs("x", true);
    EXPECT_TRUE(a_->isEqualTo(row));
    EXPECT_TRUE(row->isEqualTo(a_));
}

TEST(ComparisonTrace, IsSilentWhileItsLevelsAreOff) {
    TraceLog log;
    TraceLog::levelsAre(false);
    auto const row = Qor::make<Global>("a");
    EXPECT_TRUE(row->isEqualTo(row));
    EXPECT_TRUE(log.records.empty());
}

TEST(ComparisonTrace, LevelsAreIndependent) {
    TraceLog log;
    Qor::traceLevelIs("Vgw", 5, false);
    auto const a = Qor::make<Global>("a");
    auto const b = Qor::make<Global>("b");
    b->managerIs("m", true);
    EXPECT_FALSE(a->isEqualTo(b));
    EXPECT_EQ(log.take("OvsdbDataTypes", "isEqualTo"),
              (TraceLines{{6, 51, "Rhs len: 1 lhs len:0"}}));
}

TEST(ComparisonTrace, RunsForTheCoverageStreamAndTellsThatItsLevelIsOff) {
    TraceLog log;
    TraceLog::levelsAre(false);
    std::ostringstream coverage;
    Qor::coverageStream_ = &coverage;
    auto const row = Qor::make<Global>("a");
    EXPECT_TRUE(row->isEqualTo(row));
    Qor::coverageStream_ = nullptr;
    ASSERT_EQ(log.records.size(), 1U);
    EXPECT_FALSE(log.records[0].on);
    EXPECT_EQ(log.records[0].text, globalBanner);
    EXPECT_NE(coverage.str().find(globalBanner), std::string::npos);
}

template <class X>
TraceLines traceOf(X const& row) {
    TraceLog log;
    EXPECT_TRUE(row->isEqualTo(row));
    return log.take("OvsdbDataTypes", "isEqualTo");
}

TEST(ComparisonTrace, EveryOtherClassTracesItsBannerAlone) {
    EXPECT_EQ(
        traceOf(Qor::make<Vgw::Manager>("m")),
        (TraceLines{{5, 90, "bool Vgw::Manager::isEqualTo(const Vgw::Manager::PtrConst&) const"}}));
    EXPECT_EQ(traceOf(Qor::make<Vgw::PhysicalSwitch>("m")),
              (TraceLines{{5, 104,
                           "bool Vgw::PhysicalSwitch::isEqualTo(const "
                           "Vgw::PhysicalSwitch::PtrConst&) const"}}));
    EXPECT_EQ(traceOf(Qor::make<Vgw::PhysicalPort>("m")),
              (TraceLines{{5, 239,
                           "bool Vgw::PhysicalPort::isEqualTo(const Vgw::PhysicalPort::PtrConst&) "
                           "const"}}));
    EXPECT_EQ(traceOf(Qor::make<Vgw::PhysicalLocator>("m")),
              (TraceLines{{5, 443,
                           "bool Vgw::PhysicalLocator::isEqualTo(const "
                           "Vgw::PhysicalLocator::PtrConst&) const"}}));
    EXPECT_EQ(traceOf(Qor::make<Vgw::PhysicalLocatorSet>("m")),
              (TraceLines{{5, 526,
                           "bool Vgw::PhysicalLocatorSet::isEqualTo(const "
                           "Vgw::PhysicalLocatorSet::PtrConst&) const"}}));
}

TEST(ComparisonTrace, DifferenceOfOtherClassesIsNotExplained) {
    TraceLog log;
    auto const a = Qor::make<Vgw::Manager>("a");
    auto const b = Qor::make<Vgw::Manager>("b");
    b->targetIs("t");
    EXPECT_FALSE(a->isEqualTo(b));
    EXPECT_EQ(log.records.size(), 1U);
}

using ManagerPair = Pair<Vgw::Manager>;

TEST_F(ManagerPair, IsEqualByItsTargetAlone) {
    EXPECT_TRUE(equal());
    a_->targetIs("ssl:192.0.2.1:6632");
    EXPECT_FALSE(equal());
    a_->invalidAttribIs("target", true);
    EXPECT_FALSE(equal()) << "marks are not asked";
    b_->targetIs("ssl:192.0.2.1:6632");
    EXPECT_TRUE(equal());
}

TEST_F(ManagerPair, BackupManagerIsComparedAsAManager) {
    auto const backup = Qor::make<Vgw::BackupManager>("c");
    EXPECT_TRUE(backup->isEqualTo(a_));
    EXPECT_TRUE(a_->isEqualTo(backup));
    backup->targetIs("t");
    EXPECT_FALSE(backup->isEqualTo(a_));
}

// Each attribute on its own: a difference is found, and passed over when the left row's mark of
// that name holds.
template <class X, class Change>
void expectGuarded(char const* guard, Change&& change) {
    SCOPED_TRACE(guard);
    auto const a = Qor::make<X>("a");
    auto const b = Qor::make<X>("b");
    change(*a);
    EXPECT_FALSE(a->isEqualTo(b));
    EXPECT_FALSE(b->isEqualTo(a));
    a->invalidAttribIs(guard, false);
    EXPECT_FALSE(a->isEqualTo(b)) << "a mark that holds false skips nothing";
    a->invalidAttribIs(guard, true);
    EXPECT_TRUE(a->isEqualTo(b));
    EXPECT_FALSE(b->isEqualTo(a)) << "the marks are those of the left row";
    b->invalidAttribIs(guard, true);
    EXPECT_TRUE(b->isEqualTo(a));
}

TEST(RowPair, EveryGuardedAttributeOfAPhysicalSwitchIsCompared) {
    using X = Vgw::PhysicalSwitch;
    expectGuarded<X>("displayName", [](X& x) { x.displayNameIs("n"); });
    expectGuarded<X>("desc", [](X& x) { x.descIs("d"); });
    expectGuarded<X>("ports", [](X& x) { x.portIs("p", true); });
    expectGuarded<X>("mgmtIp", [](X& x) { x.mgmtIpIs(IpAddr("192.0.2.1"), true); });
    expectGuarded<X>("tunnelIp", [](X& x) { x.tunnelIpIs(IpAddr("192.0.2.1"), true); });
    expectGuarded<X>("fault", [](X& x) { x.faultIs("f", true); });
}

TEST(RowPair, EveryGuardedAttributeOfAPhysicalPortIsCompared) {
    using X = Vgw::PhysicalPort;
    expectGuarded<X>("displayName", [](X& x) { x.displayNameIs("n"); });
    expectGuarded<X>("desc", [](X& x) { x.descIs("d"); });
    expectGuarded<X>("vlanBinding", [](X& x) { x.vlanBindingIs(7, "ls"); });
    expectGuarded<X>("vlanStat", [](X& x) { x.vlanStatIs(7, "st"); });
    expectGuarded<X>("fault", [](X& x) { x.faultIs("f", true); });
}

TEST(RowPair, EveryGuardedAttributeOfALocatorIsCompared) {
    using X = Vgw::PhysicalLocator;
    expectGuarded<X>("key", [](X& x) {
        x.keyIs(PhysicalLocatorKey(Vgw::EncapsulationType::vxlan_over_ipv4, IpAddr("192.0.2.1")));
    });
    expectGuarded<X>("bfd", [](X& x) { x.bfdIs("o", "v"); });
    expectGuarded<X>("bfdStatus", [](X& x) { x.bfdStatusIs("o", "v"); });
}

TEST(RowPair, EveryGuardedAttributeOfALocatorSetIsCompared) {
    using X = Vgw::PhysicalLocatorSet;
    expectGuarded<X>("locator", [](X& x) { x.locatorIs("l", true); });
}

TEST(RowPair, SwitchMarkedUnderPortStillHasItsPortsCompared) {
    auto const a = Qor::make<Vgw::PhysicalSwitch>("a");
    auto const b = Qor::make<Vgw::PhysicalSwitch>("b");
    a->portIs("p", true);
    a->invalidAttribIs("port", true);
    EXPECT_FALSE(a->isEqualTo(b));
    a->invalidAttribIs("ports", true);
    EXPECT_TRUE(a->isEqualTo(b));
}

TEST(RowPair, EmptyBindingEqualsAnAbsentOneWhenTheCountsMatch) {
    auto const a = Qor::make<Vgw::PhysicalPort>("a");
    auto const b = Qor::make<Vgw::PhysicalPort>("b");
    a->vlanBindingIs(7, "");
    EXPECT_FALSE(a->isEqualTo(b)) << "the counts differ";
    b->vlanBindingIs(8, "");
    EXPECT_TRUE(a->isEqualTo(b));
    b->vlanBindingIs(8, "x");
    EXPECT_TRUE(a->isEqualTo(b));
    EXPECT_FALSE(b->isEqualTo(a));
}

TEST(RowPair, LocatorsThatDifferInReferencesFromMacRowsAreEqual) {
    auto const a = Qor::make<Vgw::PhysicalLocator>("a");
    auto const b = Qor::make<Vgw::PhysicalLocator>("b");
    a->ucastMacRefIs(MacVniPair(), true);
    b->mcastMacRefIs(MacVniPair(), true);
    EXPECT_TRUE(a->isEqualTo(b));
    EXPECT_TRUE(b->isEqualTo(a));
}

TEST(RowPair, LocatorSetThatIsMarkedIsEqualToAny) {
    auto const a = Qor::make<Vgw::PhysicalLocatorSet>("a");
    auto const b = Qor::make<Vgw::PhysicalLocatorSet>("b");
    a->locatorIs("x", true);
    b->locatorIs("y", true);
    b->locatorIs("z", true);
    a->invalidAttribIs("locator", true);
    EXPECT_TRUE(a->isEqualTo(b));
}

}  // namespace
