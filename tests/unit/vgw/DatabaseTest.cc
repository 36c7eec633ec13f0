#include <gtest/gtest.h>

#include "Accessors.h"
#include "SampleValues.h"

namespace {

using Contract::AllTold;
using Contract::Recorder;
using Kelp::IpAddr;
using Vgw::HwVtepOvsdb;
using Vgw::PhysicalLocatorKey;
using Vgw::PhysicalSwitch;

class Database : public testing::Test {
  protected:
    HwVtepOvsdb::Ptr db_ = Vgw::hwVtepOvsdbFactory("db");
    Qor::Ptr<Recorder<HwVtepOvsdb>> recorder_ = Qor::make<Recorder<HwVtepOvsdb>>(db_);
};

TEST_F(Database, FactoryMakesANamedOneWithoutParent) {
    EXPECT_EQ(db_->name(), "db");
    EXPECT_FALSE(db_->parent());
    EXPECT_EQ(db_->qorRefs(), 2U) << "this and the recorder's";
}

TEST_F(Database, NullReferenceUnderAnAbsentKeyDoesNothing) {
    db_->physicalSwitchIs("k", nullptr);
    EXPECT_EQ(db_->physicalSwitchs(), 0U);
    EXPECT_EQ(recorder_->take(), AllTold());
}

TEST_F(Database, NullReferenceUnderAPresentKeyRemovesTheMember) {
    db_->physicalSwitchIs("k", Qor::make<PhysicalSwitch>("ps"));
    recorder_->take();
    db_->physicalSwitchIs("k", nullptr);
    EXPECT_EQ(db_->physicalSwitchs(), 0U);
    EXPECT_EQ(recorder_->take(), (AllTold{{260, "'k'"}}));
}

TEST_F(Database, SameRowAgainRaisesNothingAndAnotherReplacesItInPlace) {
    auto const one = Qor::make<PhysicalSwitch>("one");
    auto const two = Qor::make<PhysicalSwitch>("two");
    db_->physicalSwitchIs("k", one);
    auto const member = db_->qorPhysicalSwitch("k");
    recorder_->take();
    db_->physicalSwitchIs("k", one);
    EXPECT_EQ(recorder_->take(), AllTold());
    db_->physicalSwitchIs("k", two);
    EXPECT_EQ(recorder_->take(), (AllTold{{260, "'k'"}}));
    EXPECT_EQ(db_->qorPhysicalSwitch("k"), member);
    EXPECT_EQ(db_->physicalSwitch("k"), two);
    EXPECT_EQ(one->qorRefs(), 1U);
}

TEST_F(Database, RowsAreCountedAsTheyCompareByIdentityNotByName) {
    auto const one = Qor::make<PhysicalSwitch>("same");
    auto const two = Qor::make<PhysicalSwitch>("same");
    db_->physicalSwitchIs("k", one);
    recorder_->take();
    db_->physicalSwitchIs("k", two);
    EXPECT_EQ(recorder_->take().size(), 1U);
}

TEST_F(Database, ReferenceKeepsARowThatHasLeftItsOwner) {
    auto row = db_->physicalLocatorRawIs("pl");
    EXPECT_EQ(row->parent().ptr(), db_.ptr());
    EXPECT_EQ(row->parentAttrId(), 267);
    db_->physicalLocatorIs(IpAddr("192.0.2.1"), row);
    db_->physicalLocatorRawDel("pl");
    EXPECT_EQ(db_->physicalLocator(IpAddr("192.0.2.1")), row);
    EXPECT_FALSE(row->parent());
    EXPECT_EQ(row->qorRefs(), 2U);
}

TEST_F(Database, BothHomesTakeTwoCallsAndTwoTellings) {
    auto const row = db_->physicalLocatorRawIs("pl");
    EXPECT_EQ(recorder_->take(), (AllTold{{267, "'pl'"}}));
    EXPECT_EQ(db_->physicalLocators(), 0U);
    db_->physicalLocatorIs(IpAddr("192.0.2.1"), row);
    EXPECT_EQ(recorder_->take(), (AllTold{{264, "'192.0.2.1'"}}));
}

TEST_F(Database, AddressAndWholeKeyFindRowsIndependently) {
    auto const row = db_->physicalLocatorRawIs("pl");
    IpAddr const ip("192.0.2.1");
    db_->physicalLocatorIs(ip, row);
    EXPECT_EQ(db_->physicalLocator(ip), row);
    EXPECT_FALSE(db_->remoteLocator(PhysicalLocatorKey(vxlan, ip)));
    db_->physicalLocatorDel(ip);
    db_->remoteLocatorIs(PhysicalLocatorKey(vxlan, ip), row);
    EXPECT_EQ(db_->remoteLocator(PhysicalLocatorKey(vxlan, ip)), row);
    EXPECT_FALSE(db_->physicalLocator(ip));
}

TEST_F(Database, ChangeOfALocatorsKeyMovesItNowhere) {
    auto const row = db_->physicalLocatorRawIs("pl");
    PhysicalLocatorKey const before(vxlan, IpAddr("192.0.2.1"));
    PhysicalLocatorKey const after(vxlan, IpAddr("192.0.2.2"));
    row->keyIs(before);
    db_->remoteLocatorIs(before, row);
    recorder_->take();
    row->keyIs(after);
    EXPECT_EQ(db_->remoteLocator(before), row);
    EXPECT_FALSE(db_->remoteLocator(after));
    EXPECT_EQ(recorder_->take(), AllTold());
}

TEST_F(Database, RemovalOfAnAbsentRootGivesNull) {
    EXPECT_FALSE(db_->rootDel("none"));
    EXPECT_EQ(recorder_->take(), AllTold());
}

TEST_F(Database, ManagerCollectionBuildsManagersAlone) {
    auto const row = db_->managerIs("m");
    EXPECT_EQ(row->type(), Vgw::OvsdbDataType::manager);
    EXPECT_FALSE(Qor::dynamicCast<Vgw::BackupManager>(row));
}

TEST_F(Database, ExistingNameGivesTheExistingRow) {
    auto const row = db_->logicalSwitchIs("ls");
    recorder_->take();
    EXPECT_EQ(db_->logicalSwitchIs("ls"), row);
    EXPECT_EQ(db_->logicalSwitch("ls"), row);
    EXPECT_FALSE(db_->logicalSwitch("other"));
    EXPECT_EQ(recorder_->take(), AllTold());
}

TEST_F(Database, EmptyNameIsAName) {
    auto const row = db_->rootIs("");
    EXPECT_EQ(db_->root(""), row);
    EXPECT_EQ(recorder_->take(), (AllTold{{258, "''"}}));
}

TEST_F(Database, RowThatWasNeverOwnedMayBeReferred) {
    auto const row = Qor::make<Vgw::PhysicalLocator>("free");
    db_->remoteLocatorIs(PhysicalLocatorKey(), row);
    EXPECT_EQ(db_->remoteLocator(PhysicalLocatorKey()), row);
    EXPECT_FALSE(row->parent());
}

TEST_F(Database, NotificationsOfRowsStayWithTheRows) {
    auto const row = db_->logicalSwitchIs("ls");
    recorder_->take();
    row->tunnelKeyIs(7);
    EXPECT_EQ(recorder_->take(), AllTold());
}

TEST_F(Database, PathOfARowTellsItsCollectionAndName) {
    EXPECT_EQ(db_->logicalSwitchIs("ls")->uriPath(), "/db/logicalSwitch/ls");
}

// Growth and shrinking with references and owners in step, as an agent keeps them.
TEST_F(Database, TenThousandRowsComeAndGo) {
    constexpr int many = 10000;
    for (int i = 0; i < many; ++i) {
        auto const name = Qor::format("pl%d", i);
        IpAddr const ip = IpAddr::fromHostOrder(0xC0000000U + static_cast<Qor::U32>(i));
        auto const row = db_->physicalLocatorRawIs(name);
        row->keyIs(PhysicalLocatorKey(vxlan, ip));
        db_->physicalLocatorIs(ip, row);
        db_->remoteLocatorIs(row->key(), row);
    }
    EXPECT_EQ(recorder_->take().size(), 3U * many);
    for (auto const& [key, row] : db_->remoteLocatorIterator()) {
        ASSERT_EQ(row->key(), key);
        ASSERT_EQ(db_->physicalLocator(key.dstIp()), row);
    }
    for (int i = 0; i < many; ++i) {
        auto const row = db_->physicalLocatorRawDel(Qor::format("pl%d", i));
        ASSERT_TRUE(row);
        ASSERT_EQ(db_->physicalLocatorDel(row->key().dstIp()), row);
        ASSERT_EQ(db_->remoteLocatorDel(row->key()), row);
        ASSERT_EQ(row->qorRefs(), 1U);
    }
    EXPECT_EQ(db_->physicalLocatorRaws() + db_->physicalLocators() + db_->remoteLocators(), 0U);
}

}  // namespace
