// What stops the process in a clone, with the line that it leaves on standard error.
#include "Stops.h"

#include <vgw/OvsdbDataTypes.h>

#include "TraceLog.h"

namespace {

using Kelp::EthAddr;
using Vgw::OvsdbDataModel;

OvsdbDataModel::PtrConst const nothing;

OvsdbDataModel::PtrConst rowOfAnotherClass() { return Qor::make<OvsdbDataModel>("other"); }

template <class X, class Argument = char const*>
Qor::Ptr<X> row(Argument const& argument = "row") {
    return Qor::make<X>(argument);
}

// A row with one mark, which holds false.
template <class X, class Argument = char const*>
Qor::Ptr<X> marked(Argument const& argument = "marked") {
    auto const out = Qor::make<X>(argument);
    out->invalidAttribIs("mac", false);
    return out;
}

#define CAST_LINE(line, name)                                                                     \
    "OvsdbDataTypes:" #line ": virtual void Vgw::" name                                           \
    "::clone(const Vgw::OvsdbDataModel::PtrConst&): Assertion 'rhs && \"Dynamic_cast failed.\"' " \
    "failed."

#define INVALID_LINE(line, name)                                                           \
    "OvsdbDataTypes:" #line ": virtual void Vgw::" name                                    \
    "::clone(const Vgw::OvsdbDataModel::PtrConst&): Assertion '!rhs->invalidAttribs() && " \
    "\"Invalid "                                                                           \
    "attribs in " name "\"' failed."

#define REFUSAL_LINE(line, name)                        \
    "OvsdbDataTypes:" #line ": virtual void Vgw::" name \
    "::clone(const Vgw::OvsdbDataModel::PtrConst&): Assertion '0 && \"Not implemented.\"' failed."

TEST(CloneDeathTest, NullSourceStopsAtTheCast) {
    EXPECT_STOPS(row<Vgw::Global>()->clone(nothing), CAST_LINE(61, "Global"));
    EXPECT_STOPS(row<Vgw::Manager>()->clone(nothing), CAST_LINE(98, "Manager"));
    EXPECT_STOPS(row<Vgw::BackupManager>()->clone(nothing), CAST_LINE(98, "Manager"));
    EXPECT_STOPS(row<Vgw::PhysicalSwitch>()->clone(nothing), CAST_LINE(178, "PhysicalSwitch"));
    EXPECT_STOPS(row<Vgw::PhysicalPort>()->clone(nothing), CAST_LINE(300, "PhysicalPort"));
    EXPECT_STOPS(row<Vgw::LogicalSwitch>()->clone(nothing), CAST_LINE(357, "LogicalSwitch"));
    EXPECT_STOPS(row<Vgw::PhysicalLocator>()->clone(nothing), CAST_LINE(485, "PhysicalLocator"));
    EXPECT_STOPS(row<Vgw::PhysicalLocatorSet>()->clone(nothing),
                 CAST_LINE(549, "PhysicalLocatorSet"));
}

TEST(CloneDeathTest, NullSourceOfAMacRowStopsAtTheCast) {
    EXPECT_STOPS(row<Vgw::UcastMacsLocal>(EthAddr())->clone(nothing),
                 CAST_LINE(368, "UcastMacsLocal"));
    EXPECT_STOPS(row<Vgw::McastMacsLocal>(EthAddr())->clone(nothing),
                 CAST_LINE(381, "McastMacsLocal"));
    EXPECT_STOPS(row<Vgw::UcastMacsRemote>()->clone(nothing), CAST_LINE(406, "UcastMacsRemote"));
    EXPECT_STOPS(row<Vgw::McastMacsRemote>()->clone(nothing), CAST_LINE(419, "McastMacsRemote"));
}

TEST(CloneDeathTest, SourceOfAnotherClassStopsAtTheCast) {
    auto const other = rowOfAnotherClass();
    EXPECT_STOPS(row<Vgw::Global>()->clone(other), CAST_LINE(61, "Global"));
    EXPECT_STOPS(row<Vgw::Manager>()->clone(other), CAST_LINE(98, "Manager"));
    EXPECT_STOPS(row<Vgw::PhysicalSwitch>()->clone(other), CAST_LINE(178, "PhysicalSwitch"));
    EXPECT_STOPS(row<Vgw::PhysicalPort>()->clone(other), CAST_LINE(300, "PhysicalPort"));
    EXPECT_STOPS(row<Vgw::LogicalSwitch>()->clone(other), CAST_LINE(357, "LogicalSwitch"));
    EXPECT_STOPS(row<Vgw::PhysicalLocator>()->clone(other), CAST_LINE(485, "PhysicalLocator"));
    EXPECT_STOPS(row<Vgw::PhysicalLocatorSet>()->clone(other),
                 CAST_LINE(549, "PhysicalLocatorSet"));
}

TEST(CloneDeathTest, MacRowOfAnotherClassStopsAtTheCastThoughItIsMarkedToo) {
    EXPECT_STOPS(row<Vgw::UcastMacsLocal>(EthAddr())->clone(marked<Vgw::McastMacsLocal>(EthAddr())),
                 CAST_LINE(368, "UcastMacsLocal"));
    EXPECT_STOPS(row<Vgw::McastMacsLocal>(EthAddr())->clone(marked<Vgw::UcastMacsLocal>(EthAddr())),
                 CAST_LINE(381, "McastMacsLocal"));
    EXPECT_STOPS(row<Vgw::UcastMacsRemote>()->clone(marked<Vgw::McastMacsRemote>()),
                 CAST_LINE(406, "UcastMacsRemote"));
    EXPECT_STOPS(row<Vgw::McastMacsRemote>()->clone(marked<Vgw::UcastMacsRemote>()),
                 CAST_LINE(419, "McastMacsRemote"));
}

TEST(CloneDeathTest, MacRowWithAMarkStopsEvenIfTheMarkHoldsFalse) {
    EXPECT_STOPS(row<Vgw::UcastMacsLocal>(EthAddr())->clone(marked<Vgw::UcastMacsLocal>(EthAddr())),
                 INVALID_LINE(370, "UcastMacsLocal"));
    EXPECT_STOPS(row<Vgw::McastMacsLocal>(EthAddr())->clone(marked<Vgw::McastMacsLocal>(EthAddr())),
                 INVALID_LINE(383, "McastMacsLocal"));
    EXPECT_STOPS(row<Vgw::UcastMacsRemote>()->clone(marked<Vgw::UcastMacsRemote>()),
                 INVALID_LINE(407, "UcastMacsRemote"));
    EXPECT_STOPS(row<Vgw::McastMacsRemote>()->clone(marked<Vgw::McastMacsRemote>()),
                 INVALID_LINE(420, "McastMacsRemote"));
}

TEST(CloneDeathTest, BareRowIsNeverCloned) {
    EXPECT_STOPS(row<OvsdbDataModel>()->clone(nothing), REFUSAL_LINE(21, "OvsdbDataModel"));
    EXPECT_STOPS(row<OvsdbDataModel>()->clone(rowOfAnotherClass()),
                 REFUSAL_LINE(21, "OvsdbDataModel"));
}

TEST(CloneDeathTest, RowOfStatisticsIsNeverCloned) {
    EXPECT_STOPS(row<Vgw::LogicalBindingStats>()->clone(nothing),
                 REFUSAL_LINE(350, "LogicalBindingStats"));
    EXPECT_STOPS(row<Vgw::LogicalBindingStats>()->clone(row<Vgw::LogicalBindingStats>("other")),
                 REFUSAL_LINE(350, "LogicalBindingStats"));
}

// In the child alone: its default sink writes what is on to standard error.
void cloneWithTrace(OvsdbDataModel& target) {
    TraceLog::levelsAre(true);
    target.clone(nothing);
}

TEST(CloneDeathTest, BannerIsTracedBeforeTheProcessStops) {
    using testing::ContainsRegex;
    EXPECT_DEATH(cloneWithTrace(*row<OvsdbDataModel>()),
                 ContainsRegex("OvsdbDataTypes:20.*clone(.|\n)*OvsdbDataTypes:21: .*Not impl"));
    EXPECT_DEATH(cloneWithTrace(*row<Vgw::LogicalBindingStats>()),
                 ContainsRegex("OvsdbDataTypes:349.*clone(.|\n)*OvsdbDataTypes:350: .*Not impl"));
    EXPECT_DEATH(cloneWithTrace(*row<Vgw::Global>()),
                 ContainsRegex("OvsdbDataTypes:59.*clone(.|\n)*OvsdbDataTypes:61: .*Dynamic_cast"));
}

}  // namespace
