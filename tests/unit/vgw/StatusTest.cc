#include <gtest/gtest.h>

#include <limits>

#include <qor/tree/EntityPath.h>

#include "Accessors.h"

namespace {

using Contract::AllTold;
using Contract::Recorder;
using Vgw::Status;

class Published : public testing::Test {
  protected:
    Status::Ptr status_ = Vgw::statusFactory("status");
    Qor::Ptr<Recorder<Status>> recorder_ = Qor::make<Recorder<Status>>(status_, true);
};

TEST_F(Published, NewOneHasNoChildren) {
    EXPECT_EQ(status_->name(), "status");
    EXPECT_FALSE(status_->ovsdb());
    EXPECT_FALSE(status_->ovsdbSessionStatus());
    EXPECT_FALSE(status_->running());
    EXPECT_EQ(status_->vtepListType(), Vgw::VtepListType::sendToAny);
}

TEST_F(Published, SameNameGivesTheSameDatabaseAndTellsOnce) {
    auto const db = status_->ovsdbIs("db");
    EXPECT_EQ(recorder_->take(), (AllTold{{259, ""}}));
    EXPECT_EQ(status_->ovsdbIs("db"), db);
    EXPECT_EQ(recorder_->take(), AllTold());
}

TEST_F(Published, PathsOfWhatIsOwnedLeadBackToIt) {
    auto const root = Qor::make<Qor::Dir>("vgw");
    root->entryIs("status", status_);
    Qor::rootDirIs(root);
    auto const port = status_->ovsdbIs("db")->physicalPortIs("a/b");
    auto const session = status_->ovsdbSessionStatusIs("session");
    EXPECT_EQ(session->uriPath(), "/vgw/status/ovsdbSessionStatus");
    EXPECT_TRUE(Qor::entityAt(session->uriPath()) == session);
    EXPECT_EQ(port->uriPath(), "/vgw/status/ovsdb/physicalPort/a%2Fb");
    EXPECT_TRUE(Qor::entityAt(port->uriPath()) == port);
    EXPECT_FALSE(Qor::entityAt("/vgw/status/ovsdb/physicalPort/none"));
    EXPECT_FALSE(Qor::entityAt("/vgw/status/ovsdb/physicalPort"));
    EXPECT_FALSE(Qor::entityAt("/vgw/status/running"));
    Qor::rootDirIs(nullptr);
}

TEST_F(Published, AnotherNameReplacesTheWholeDatabase) {
    auto const first = status_->ovsdbIs("one");
    first->rootIs("root");
    auto const second = status_->ovsdbIs("two");
    EXPECT_EQ(recorder_->take(), (AllTold{{259, ""}, {259, ""}}));
    EXPECT_FALSE(first == second);
    EXPECT_FALSE(first->parent());
    EXPECT_EQ(first->roots(), 1U);
    EXPECT_EQ(second->roots(), 0U);
    EXPECT_EQ(status_->ovsdb(), second);
}

TEST_F(Published, ReplacedDatabaseIsGoneUnlessSomebodyHoldsIt) {
    auto const weak = Qor::make<Recorder<Vgw::HwVtepOvsdb>>(status_->ovsdbIs("one"), true);
    status_->ovsdbIs("two");
    EXPECT_EQ(weak->qorNotifier(), nullptr);
    EXPECT_EQ(weak->take(), (AllTold{{5, ""}}));
}

TEST_F(Published, RemovalWithoutAChildGivesNull) {
    EXPECT_FALSE(status_->ovsdbDel());
    EXPECT_FALSE(status_->ovsdbSessionStatusDel());
    EXPECT_EQ(recorder_->take(), AllTold());
}

TEST_F(Published, RemovalHandsTheDatabaseOverAndTheSameNameMakesANewOne) {
    auto const db = status_->ovsdbIs("db");
    auto const gone = status_->ovsdbDel();
    EXPECT_EQ(gone, db);
    EXPECT_FALSE(gone->parent());
    EXPECT_FALSE(status_->ovsdb());
    EXPECT_FALSE(status_->ovsdbIs("db") == db);
}

TEST_F(Published, ChildrenBearTheIdsOfTheirAttributes) {
    EXPECT_EQ(status_->ovsdbIs("db")->parentAttrId(), 259);
    EXPECT_EQ(status_->ovsdbSessionStatusIs("s")->parentAttrId(), 258);
    EXPECT_EQ(status_->ovsdb()->parent().ptr(), status_.ptr());
    EXPECT_EQ(status_->ovsdbSessionStatus()->uriPath(), "/status/ovsdbSessionStatus");
}

TEST_F(Published, BareNewStepLeavesTheAttributeUnset) {
    auto const db = status_->newOvsdb("db");
    EXPECT_EQ(db->parentAttrId(), 259);
    EXPECT_EQ(db->parent().ptr(), status_.ptr());
    EXPECT_FALSE(status_->ovsdb());
    EXPECT_EQ(recorder_->take(), AllTold());
    db->parentIs(nullptr);
}

TEST_F(Published, EndRemovesTheSessionBeforeTheDatabaseAndTellsOfBoth) {
    status_->ovsdbIs("db");
    status_->ovsdbSessionStatusIs("s");
    recorder_->take();
    status_ = nullptr;
    EXPECT_EQ(recorder_->take(), (AllTold{{5, ""}, {258, ""}, {259, ""}}));
}

TEST_F(Published, EndDestroysTheDatabaseUnlessSomebodyHoldsIt) {
    auto const db = status_->ovsdbIs("db");
    db->rootIs("root");
    status_ = nullptr;
    EXPECT_FALSE(db->parent());
    EXPECT_EQ(db->qorRefs(), 1U);
    EXPECT_EQ(db->roots(), 1U);
}

class Session : public testing::Test {
  protected:
    Vgw::OvsdbSessionStatus::Ptr session_ = Vgw::ovsdbSessionStatusFactory("session");
    Qor::Ptr<Recorder<Vgw::OvsdbSessionStatus>> recorder_ =
        Qor::make<Recorder<Vgw::OvsdbSessionStatus>>(session_);
};

TEST_F(Session, NewOneKnowsNothing) {
    EXPECT_EQ(session_->name(), "session");
    EXPECT_EQ(session_->sessionState(), Vgw::SessionState::stateUnknown);
    EXPECT_EQ(session_->numSuccessfulMsg(), 0U);
    EXPECT_EQ(session_->numFailedMsg(), 0U);
    for (auto const& text :
         {session_->lastMsgSent(), session_->lastMsgSentDetail(), session_->lastSuccessfulMsg(),
          session_->lastSuccessfulMsgDetail(), session_->lastFailedMsg(),
          session_->lastFailedMsgDetail(), session_->lastErrorCode()}) {
        EXPECT_EQ(text, "");
    }
    for (double const time : {session_->lastStateChange(), session_->timeOfLastMsg(),
                              session_->responseTimeForLastMsg(), session_->lastSuccessfulMsgTime(),
                              session_->lastFailedMsgTime()}) {
        EXPECT_EQ(time, 0.0);
    }
}

TEST_F(Session, EqualErrorCodeTellsNobody) {
    session_->lastErrorCodeIs("");
    EXPECT_EQ(recorder_->take(), AllTold());
    session_->lastErrorCodeIs("timed out");
    session_->lastErrorCodeIs("timed out");
    EXPECT_EQ(recorder_->take(), (AllTold{{272, ""}}));
}

TEST_F(Session, TimeThatIsNoNumberIsStoredAndToldEachTime) {
    double const nan = std::numeric_limits<double>::quiet_NaN();
    session_->timeOfLastMsgIs(nan);
    session_->timeOfLastMsgIs(nan);
    EXPECT_EQ(recorder_->take(), (AllTold{{262, ""}, {262, ""}}));
    EXPECT_NE(session_->timeOfLastMsg(), session_->timeOfLastMsg());
}

TEST_F(Session, NegativeZeroEqualsZero) {
    session_->lastStateChangeIs(-0.0);
    EXPECT_EQ(recorder_->take(), AllTold());
}

class OverridingSession : public Vgw::OvsdbSessionStatus {
  public:
    using OvsdbSessionStatus::OvsdbSessionStatus;
    void numFailedMsgIs(Qor::U32 number) override {
        OvsdbSessionStatus::numFailedMsgIs(number * 2);
    }
    void lastStateChangeIs(double const&) override {}
};

TEST(SessionSetters, AreVirtual) {
    auto const session = Qor::make<OverridingSession>("s");
    Vgw::OvsdbSessionStatus::Ptr const base = session;
    base->numFailedMsgIs(21);
    base->lastStateChangeIs(5.0);
    EXPECT_EQ(base->numFailedMsg(), 42U);
    EXPECT_EQ(base->lastStateChange(), 0.0);
}

}  // namespace
