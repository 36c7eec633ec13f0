#include <gtest/gtest.h>

#include <functional>

#include "Accessors.h"
#include "SampleValues.h"
#include "TraceLog.h"

namespace {

using Contract::AllTold;
using Contract::Recorder;
using Kelp::IpAddr;
using Vgw::HwVtepOvsdb;
using Vgw::PhysicalLocatorKey;

/// Two members in every collection.
void fill(HwVtepOvsdb& db) {
    for (char const* name : {"one", "two"}) {
        db.rootIs(name);
        db.managerIs(name)->targetIs("ssl:192.0.2.1:6632");
        db.physicalSwitchIs(name, db.physicalSwitchRawIs(name));
        db.physicalPortIs(name);
        db.logicalBindingStatsIs(name);
        db.logicalSwitchIs(name);
        db.physicalLocatorSetIs(name);
        IpAddr const ip(name[0] == 'o' ? "192.0.2.1" : "192.0.2.2");
        auto const locator = db.physicalLocatorRawIs(name);
        db.physicalLocatorIs(ip, locator);
        db.remoteLocatorIs(PhysicalLocatorKey(vxlan, ip), locator);
    }
}

/// The ids in the order of telling, each once for a run of its own.
std::vector<Qor::AttributeId> runs(AllTold const& told) {
    std::vector<Qor::AttributeId> ids;
    for (auto const& one : told) {
        if (ids.empty() || ids.back() != one.id) {
            ids.push_back(one.id);
        }
    }
    return ids;
}

class Clearing : public testing::Test {
  protected:
    HwVtepOvsdb::Ptr db_ = Vgw::hwVtepOvsdbFactory("db");
    Qor::Ptr<Recorder<HwVtepOvsdb>> recorder_ = Qor::make<Recorder<HwVtepOvsdb>>(db_, true);
};

TEST_F(Clearing, EmptiesAllButTheManagersInItsOwnOrder) {
    fill(*db_);
    recorder_->take();
    db_->clear();
    AllTold const told = recorder_->take();
    EXPECT_EQ(runs(told),
              (std::vector<Qor::AttributeId>{268, 265, 264, 267, 261, 262, 263, 260, 266, 258}));
    EXPECT_EQ(told.size(), 20U);
    EXPECT_EQ(db_->roots() + db_->physicalSwitchs() + db_->physicalPorts() +
                  db_->logicalBindingStatss() + db_->logicalSwitchs() + db_->physicalLocators() +
                  db_->physicalLocatorSets() + db_->physicalSwitchRaws() +
                  db_->physicalLocatorRaws() + db_->remoteLocators(),
              0U);
}

TEST_F(Clearing, ManagersStayAsTheyWere) {
    fill(*db_);
    auto const manager = db_->manager("one");
    auto const watched = Qor::make<Recorder<Vgw::Manager>>(manager);
    db_->clear();
    EXPECT_EQ(db_->managers(), 2U);
    EXPECT_EQ(db_->manager("one"), manager);
    EXPECT_EQ(manager->target(), "ssl:192.0.2.1:6632");
    EXPECT_EQ(manager->parent().ptr(), db_.ptr());
    EXPECT_EQ(watched->take(), AllTold());
}

TEST_F(Clearing, EmptyDatabaseTellsNobodyAndOnlyTraces) {
    TraceLog log;
    db_->clear();
    EXPECT_EQ(recorder_->take(), AllTold());
    EXPECT_EQ(log.take("OvsdbDataTypes", "clear"),
              (TraceLines{{5, 566, "void Vgw::HwVtepOvsdb::clear()"}}));
}

TEST_F(Clearing, DatabaseIsUsableAtOnce) {
    fill(*db_);
    db_->clear();
    fill(*db_);
    EXPECT_EQ(db_->roots(), 2U);
    db_->clear();
    EXPECT_EQ(db_->roots(), 0U);
}

TEST_F(Clearing, RowsThatAreHeldLoseTheirParent) {
    fill(*db_);
    auto const locator = db_->physicalLocatorRaw("one");
    db_->clear();
    EXPECT_FALSE(locator->parent());
    EXPECT_EQ(locator->qorRefs(), 1U);
}

// Adds a member on each removal, a set number of times.
class Refilling : public HwVtepOvsdb::NotifieeConst {
  public:
    explicit Refilling(HwVtepOvsdb& db) : db_(db) { notifierIs(HwVtepOvsdb::PtrConst(&db)); }
    void onLogicalSwitch(Qor::Name name) override {
        if (left > 0 && !db_.logicalSwitch(name)) {
            --left;
            db_.logicalSwitchIs(Qor::format("added %d", left));
        }
    }
    void onPhysicalSwitch(Qor::String8 key) override {
        if (left > 0 && !db_.physicalSwitch(key)) {
            --left;
            db_.physicalSwitchIs(key, Qor::make<Vgw::PhysicalSwitch>("again"));
        }
    }
    int left = 25;

  private:
    HwVtepOvsdb& db_;
};

TEST_F(Clearing, RemovalOfAllLeavesNothingEvenIfHandlersRefill) {
    for (int i = 0; i < 10; ++i) {
        db_->logicalSwitchIs(Qor::format("%d", i));
    }
    auto const refilling = Qor::make<Refilling>(*db_);
    recorder_->take();
    db_->logicalSwitchDelAll();
    EXPECT_EQ(db_->logicalSwitchs(), 0U);
    EXPECT_EQ(refilling->left, 0);
    EXPECT_EQ(recorder_->take().size(), 10U + 25U + 25U);
}

TEST_F(Clearing, RemovalOfAllLeavesNothingEvenIfAHandlerPutsTheSameKeyBack) {
    db_->physicalSwitchIs("k", Qor::make<Vgw::PhysicalSwitch>("first"));
    auto const refilling = Qor::make<Refilling>(*db_);
    db_->physicalSwitchDelAll();
    EXPECT_EQ(db_->physicalSwitchs(), 0U);
    EXPECT_EQ(refilling->left, 0);
}

TEST_F(Clearing, DestructionTellsOfOwnedRowsAloneInTheOrderOfTheAttributes) {
    fill(*db_);
    recorder_->take();
    db_ = nullptr;
    AllTold told = recorder_->take();
    ASSERT_FALSE(told.empty());
    EXPECT_EQ(told.front(), (Contract::Told{5, ""}));
    told.erase(told.begin());
    EXPECT_EQ(runs(told), (std::vector<Qor::AttributeId>{258, 259, 261, 262, 263, 265, 266, 267}));
    EXPECT_EQ(told.size(), 16U);
}

TEST_F(Clearing, DestructionGivesUpTheReferencesWithoutTellingOfThem) {
    auto const row = Qor::make<Vgw::PhysicalSwitch>("ps");
    db_->physicalSwitchIs("k", row);
    recorder_->take();
    db_ = nullptr;
    EXPECT_EQ(recorder_->take(), (AllTold{{5, ""}}));
    EXPECT_EQ(row->qorRefs(), 1U);
}

TEST(RowDestruction, TellsOfNoMemberAndTracesNothing) {
    TraceLog log;
    auto row = Qor::make<Vgw::PhysicalPort>("p");
    row->invalidAttribIs("desc", true);
    row->vlanBindingIs(1, "ls");
    row->faultIs("f", true);
    auto const recorder = Qor::make<Recorder<Vgw::PhysicalPort>>(row, true);
    row = nullptr;
    EXPECT_EQ(recorder->take(), (AllTold{{5, ""}}));
    EXPECT_TRUE(log.records.empty());
}

TEST(RowDestruction, RemovalOfAllMarksTellsOfThem) {
    auto const row = Qor::make<Vgw::PhysicalPort>("p");
    row->invalidAttribIs("desc", true);
    auto const recorder = Qor::make<Recorder<Vgw::PhysicalPort>>(row);
    row->invalidAttribDelAll();
    EXPECT_EQ(recorder->take(), (AllTold{{259, "'desc'"}}));
}

// Drops the last reference to the database in the middle of its emptying.
class Dropping : public HwVtepOvsdb::NotifieeConst {
  public:
    explicit Dropping(HwVtepOvsdb::Ptr& db) : db_(db) {
        isWeakReferenceIs(true);
        notifierIs(db);
    }
    void onLogicalSwitch(Qor::Name) override {
        ++calls;
        db_ = nullptr;
    }
    int calls = 0;

  private:
    HwVtepOvsdb::Ptr& db_;
};

TEST_F(Clearing, LastReferenceThatGoesInAHandlerEndsTheDatabaseBehindTheRemoval) {
    for (int i = 0; i < 5; ++i) {
        db_->logicalSwitchIs(Qor::format("%d", i));
    }
    db_->rootIs("root");
    auto const dropping = Qor::make<Dropping>(db_);
    recorder_->take();
    db_->logicalSwitchDelAll();
    EXPECT_FALSE(db_);
    EXPECT_EQ(dropping->calls, 5);
    EXPECT_EQ(dropping->qorNotifier(), nullptr);
    AllTold const told = recorder_->take();
    EXPECT_EQ(runs(told), (std::vector<Qor::AttributeId>{263, 5, 258}));
}

TEST(RowDestruction, LastReferenceThatGoesInAHandlerEndsTheRowBehindTheSetter) {
    struct Last : Vgw::LogicalSwitch::NotifieeConst {
        void onTunnelKey() override { row = nullptr; }
        Vgw::LogicalSwitch::Ptr row;
    };
    auto const last = Qor::make<Last>();
    last->row = Qor::make<Vgw::LogicalSwitch>("ls");
    last->isWeakReferenceIs(true);
    last->notifierIs(last->row);
    Vgw::LogicalSwitch::Ptr const held = last->row;
    held->tunnelKeyIs(7);
    EXPECT_FALSE(last->row);
    EXPECT_EQ(held->qorRefs(), 1U);
}

// What is registered before the first use of a static runs after that static's end.
TEST(ClearDeathTest, DatabaseMayBeClearedWhileTheProcessEnds) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    auto const run = [] {
        std::atexit([] {
            std::vector<Qor::String8> const reused(50, Qor::String8("XYZ"));
            Qor::Ptr<Vgw::HwVtepOvsdb> const other = Qor::make<Vgw::HwVtepOvsdb>("XYZ");
            Qor::make<Vgw::HwVtepOvsdb>("db")->clear();
        });
        Qor::traceLevelIs("Vgw", 5, true);
        Qor::make<Vgw::HwVtepOvsdb>("db")->clear();
        std::exit(0);
    };
    auto const line = std::string("Vgw\\[5\\] [^\n]*clear[^\n]*\n");
    EXPECT_EXIT(run(), testing::ExitedWithCode(0), "^" + line + line + "$");
}

}  // namespace
