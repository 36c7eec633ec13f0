#include <gtest/gtest.h>

#include <functional>

#include "Accessors.h"

namespace {

using Contract::AllTold;
using Contract::Recorder;
using Vgw::LogicalSwitch;
using Vgw::OvsdbDataModel;
using Vgw::OvsdbDataType;

// A notifiee that does something when it is told of the tunnel key.
class Acting : public LogicalSwitch::NotifieeConst {
  public:
    using Action = std::function<void()>;
    explicit Acting(LogicalSwitch::Ptr const& row, Action action = {})
        : action_(std::move(action)) {
        notifierIs(row);
    }
    void actionIs(Action action) { action_ = std::move(action); }
    void onTunnelKey() override {
        ++calls;
        if (action_) {
            action_();
        }
    }
    void onNotificationException(Qor::AttributeId id) override { exceptions.push_back(id); }

    int calls = 0;
    std::vector<Qor::AttributeId> exceptions;

  private:
    Action action_;
};

class Row : public testing::Test {
  protected:
    LogicalSwitch::Ptr row_ = Qor::make<LogicalSwitch>("ls");
    Qor::Ptr<Recorder<LogicalSwitch>> recorder_ = Qor::make<Recorder<LogicalSwitch>>(row_);
};

TEST(BareRow, StaysOfTheUnknownKind) {
    auto const row = Qor::make<OvsdbDataModel>("r");
    EXPECT_EQ(row->type(), OvsdbDataType::unknownDataType);
    EXPECT_EQ(row->name(), "r");
    EXPECT_EQ(row->invalidAttribs(), 0U);
}

TEST_F(Row, KindIsNotFixedAndReportedLikeAnyAttribute) {
    EXPECT_EQ(row_->type(), OvsdbDataType::logicalSwitch);
    row_->typeIs(OvsdbDataType::logicalSwitch);
    EXPECT_EQ(recorder_->take(), AllTold());
    row_->typeIs(OvsdbDataType::manager);
    EXPECT_EQ(recorder_->take(), (AllTold{{258, ""}}));
    EXPECT_EQ(row_->type(), OvsdbDataType::manager);
}

TEST_F(Row, SettingTheHeldValueRaisesNoHandler) {
    row_->descIs("x");
    recorder_->take();
    row_->descIs("x");
    row_->descIs(Qor::String8(std::string_view("xy", 1)));
    EXPECT_EQ(recorder_->take(), AllTold());
}

TEST_F(Row, HandlerSeesTheValueThatWasStored) {
    Qor::U32 seen = 0;
    auto const reader = Qor::make<Acting>(row_, [&] { seen = row_->tunnelKey(); });
    row_->tunnelKeyIs(7);
    EXPECT_EQ(seen, 7U);
}

TEST_F(Row, NotifieeThatRemovesItselfDoesNotDisturbTheLoop) {
    auto const first = Qor::make<Acting>(row_);
    auto const leaving = Qor::make<Acting>(row_);
    auto const last = Qor::make<Acting>(row_);
    leaving->actionIs([&] { leaving->notifierIs(nullptr); });
    row_->tunnelKeyIs(1);
    row_->tunnelKeyIs(2);
    EXPECT_EQ(first->calls, 2);
    EXPECT_EQ(leaving->calls, 1);
    EXPECT_EQ(last->calls, 2);
}

TEST_F(Row, NotifieeThatIsAddedInAHandlerIsNotCalledInThatLoop) {
    Qor::Ptr<Acting> added;
    auto const adder = Qor::make<Acting>(row_, [&] {
        if (!added) {
            added = Qor::make<Acting>(row_);
        }
    });
    row_->tunnelKeyIs(1);
    ASSERT_TRUE(added);
    EXPECT_EQ(added->calls, 0);
    row_->tunnelKeyIs(2);
    EXPECT_EQ(added->calls, 1);
}

TEST_F(Row, NotifieeThatAHandlerRemovesAndNothingElseHoldsIsNotCalled) {
    int calls = 0;
    Qor::Ptr<Acting> removed;
    auto const remover = Qor::make<Acting>(row_, [&] { removed = nullptr; });
    removed = Qor::make<Acting>(row_, [&] { ++calls; });
    row_->tunnelKeyIs(1);
    EXPECT_EQ(calls, 0);
    EXPECT_EQ(row_->notifierList().count(), 2U) << "the recorder and the remover";
}

TEST_F(Row, HandlerThatThrowsLeavesTheValueAndTheOthersAndTheCallerAlone) {
    auto const first = Qor::make<Acting>(row_);
    auto const thrower = Qor::make<Acting>(row_, [] { throw 17; });
    auto const last = Qor::make<Acting>(row_);
    EXPECT_NO_THROW(row_->tunnelKeyIs(1));
    EXPECT_EQ(row_->tunnelKey(), 1U);
    EXPECT_EQ(first->calls, 1);
    EXPECT_EQ(last->calls, 1);
    EXPECT_EQ(thrower->exceptions, (std::vector<Qor::AttributeId>{388}));
    EXPECT_TRUE(first->exceptions.empty());
}

TEST_F(Row, HandlerMaySetTheSameAttributeAgain) {
    auto const setter = Qor::make<Acting>(row_, [&] { row_->tunnelKeyIs(5); });
    row_->tunnelKeyIs(1);
    EXPECT_EQ(row_->tunnelKey(), 5U);
    EXPECT_EQ(setter->calls, 2) << "of 1 and of 5; setting 5 again is no change";
    EXPECT_EQ(recorder_->take(), (AllTold{{388, ""}, {388, ""}}));
}

TEST_F(Row, FalseUnderAnAbsentKeyMakesAMemberAndIsTold) {
    row_->invalidAttribIs("desc", false);
    EXPECT_EQ(row_->invalidAttribs(), 1U);
    EXPECT_FALSE(row_->invalidAttrib("desc"));
    EXPECT_EQ(recorder_->take(), (AllTold{{259, "'desc'"}}));
}

TEST_F(Row, FalseUnderAPresentKeyIsStoredAndTheMemberRemains) {
    row_->invalidAttribIs("desc", true);
    recorder_->take();
    row_->invalidAttribIs("desc", false);
    EXPECT_EQ(row_->invalidAttribs(), 1U);
    EXPECT_FALSE(row_->invalidAttrib("desc"));
    EXPECT_EQ(recorder_->take(), (AllTold{{259, "'desc'"}}));
}

TEST_F(Row, RemovalOfAnAbsentMarkIsFalseAndTellsNobody) {
    EXPECT_FALSE(row_->invalidAttribDel("desc"));
    EXPECT_EQ(recorder_->take(), AllTold());
}

TEST_F(Row, RemovalOfAllMarksTellsEach) {
    row_->invalidAttribDelAll();
    EXPECT_EQ(recorder_->take(), AllTold());
    row_->invalidAttribIs("a", true);
    row_->invalidAttribIs("b", false);
    row_->invalidAttribIs("c", true);
    recorder_->take();
    row_->invalidAttribDelAll();
    EXPECT_EQ(recorder_->take().size(), 3U);
    EXPECT_EQ(row_->invalidAttribs(), 0U);
}

TEST_F(Row, AttributeNamesGoUpToTheBase) {
    EXPECT_EQ(row_->attributeString(258), "type");
    EXPECT_EQ(row_->attributeString(259), "invalidAttrib");
    EXPECT_EQ(row_->attributeString(260), "clone");
    EXPECT_EQ(row_->attributeString(388), "tunnelKey");
    EXPECT_EQ(row_->attributeString(389), "unknown");
}

// The operations of the base that classes below it may override are reached as virtual ones.
class Overriding : public OvsdbDataModel {
  public:
    using OvsdbDataModel::OvsdbDataModel;
    void typeIs(OvsdbDataType type) override { note("type"), OvsdbDataModel::typeIs(type); }
    void invalidAttribIs(Qor::String8 key, bool value) override {
        note("set"), OvsdbDataModel::invalidAttribIs(key, value);
    }
    bool invalidAttribDel(Qor::String8 key) override {
        return note("del"), OvsdbDataModel::invalidAttribDel(key);
    }
    void invalidAttribNotify(Qor::String8 key, Qor::Ptr<QorInvalidAttrib> const& member) override {
        note("notify"), OvsdbDataModel::invalidAttribNotify(key, member);
    }
    std::vector<std::string> called;

  private:
    void note(char const* what) { called.emplace_back(what); }
};

TEST(BareRow, AccessorsOfTheBaseAreVirtual) {
    auto const row = Qor::make<Overriding>("r");
    OvsdbDataModel::Ptr const base = row;
    base->typeIs(OvsdbDataType::global);
    base->invalidAttribIs("a", true);
    base->invalidAttribDel("a");
    base->invalidAttribIs("b", true);
    base->invalidAttribDelAll();
    EXPECT_EQ(row->called, (std::vector<std::string>{"type", "set", "del", "set", "notify"}));
}

TEST_F(Row, EntityLivesAsLongAsItIsReferenced) {
    auto const db = Vgw::hwVtepOvsdbFactory("db");
    auto row = db->logicalSwitchIs("ls");
    EXPECT_EQ(row->qorRefs(), 2U);
    db->logicalSwitchDel("ls");
    EXPECT_EQ(row->qorRefs(), 1U);
    row->tunnelKeyIs(9);
    EXPECT_EQ(row->tunnelKey(), 9U);
}

}  // namespace
