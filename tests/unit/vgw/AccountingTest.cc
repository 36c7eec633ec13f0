#include "Stops.h"

#include <gtest/gtest.h>

#include <string>

#include <qor/core/Now.h>

#include "Accessors.h"
#include "TraceLog.h"

namespace {

using Contract::AllTold;
using Contract::Recorder;
using Vgw::OvsdbRequestType;
using Vgw::OvsdbSessionStatus;
using Vgw::SessionState;

constexpr auto transact = OvsdbRequestType::transactRequestType;
constexpr auto monitor = OvsdbRequestType::monitorRequestType;
constexpr auto cancel = OvsdbRequestType::cancelRequestType;
constexpr auto query = OvsdbRequestType::queryRequestType;
constexpr auto unknown = OvsdbRequestType::unknownOvsdbRequestType;

// A clock that goes on by one second a reading.
class Accounting : public testing::Test {
  protected:
    Accounting() {
        Qor::nowIs([this] { return now_ += 1; });
    }
    ~Accounting() override { Qor::nowIs({}); }

    std::vector<Qor::AttributeId> toldIds() {
        std::vector<Qor::AttributeId> ids;
        for (auto const& told : recorder_->take()) {
            ids.push_back(told.id);
        }
        return ids;
    }

    double now_ = 1000;
    OvsdbSessionStatus::Ptr session_ = Vgw::ovsdbSessionStatusFactory("s");
    Qor::Ptr<Recorder<OvsdbSessionStatus>> recorder_ =
        Qor::make<Recorder<OvsdbSessionStatus>>(session_);
};

using Ids = std::vector<Qor::AttributeId>;

TEST_F(Accounting, RequestNotesItsTextItsDetailAndTheTime) {
    Vgw::updateOvsdbRequest(session_, transact, "x");
    EXPECT_EQ(session_->lastMsgSent(), "Transaction request");
    EXPECT_EQ(session_->lastMsgSentDetail(), "x");
    EXPECT_EQ(session_->timeOfLastMsg(), 1001);
    EXPECT_EQ(session_->sessionState(), SessionState::stateUnknown);
    EXPECT_EQ(session_->lastStateChange(), 0.0);
    EXPECT_EQ(toldIds(), (Ids{260, 261, 262}));
}

TEST_F(Accounting, RequestIsNotTracedButForItsDisplayText) {
    TraceLog log;
    Vgw::updateOvsdbRequest(session_, monitor, "x");
    TraceLines const lines = log.take("VgwTypes", "toDisplayMsg");
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_EQ(lines[0].level, 5);
    EXPECT_EQ(lines[0].text,
              "static Qor::String Vgw::OvsdbSessionStatus::toDisplayMsg(Vgw::OvsdbRequestType)");
}

TEST_F(Accounting, LaterRequestOverwritesTheOneThatIsPending) {
    Vgw::updateOvsdbRequest(session_, transact, "first");
    Vgw::updateOvsdbRequest(session_, cancel, "second");
    EXPECT_EQ(session_->timeOfLastMsg(), 1002);
    Vgw::updateOvsdbRequestResult(session_, SessionState::stateConnected, transact, "first");
    EXPECT_EQ(session_->responseTimeForLastMsg(), 1) << "from the later one";
    EXPECT_EQ(session_->lastMsgSent(), "Cancel request");
}

TEST_F(Accounting, DetailOfEightyBytesIsStoredWhole) {
    std::string const detail(80, 'd');
    Vgw::updateOvsdbRequest(session_, transact, std::string_view(detail));
    EXPECT_EQ(session_->lastMsgSentDetail(), detail.c_str());
}

TEST_F(Accounting, LongerDetailIsStoredAsSeventySevenBytesAndThreeDots) {
    std::string const detail(81, 'd');
    Vgw::updateOvsdbRequest(session_, transact, std::string_view(detail));
    EXPECT_EQ(session_->lastMsgSentDetail(), (std::string(77, 'd') + "...").c_str());
    EXPECT_EQ(session_->lastMsgSentDetail().length(), 80U);
    Vgw::updateOvsdbRequestResult(session_, SessionState::stateConnected, transact,
                                  std::string_view(detail));
    EXPECT_EQ(session_->lastSuccessfulMsgDetail(), session_->lastMsgSentDetail());
    Vgw::updateOvsdbRequestResult(session_, SessionState::stateDisconnected, transact,
                                  std::string_view(detail));
    EXPECT_EQ(session_->lastFailedMsgDetail(), session_->lastMsgSentDetail());
}

TEST_F(Accounting, CutCountsBytesAndMaySplitACharacter) {
    std::string detail(76, 'd');
    detail += "\xc3\xa4";  // two bytes, of which one stays
    detail += "more";
    Vgw::updateOvsdbRequest(session_, transact, std::string_view(detail));
    EXPECT_EQ(session_->lastMsgSentDetail(), (std::string(76, 'd') + "\xc3...").c_str());
}

TEST_F(Accounting, EmptyDetailStoresTheEmptyString) {
    Vgw::updateOvsdbRequest(session_, transact, "something");
    Vgw::updateOvsdbRequest(session_, transact, "");
    EXPECT_EQ(session_->lastMsgSentDetail(), "");
}

TEST_F(Accounting, SuccessWritesItsAttributesInOrder) {
    Vgw::updateOvsdbRequest(session_, monitor, "x");
    recorder_->take();
    Vgw::updateOvsdbRequestResult(session_, SessionState::stateConnected, monitor, "y");
    EXPECT_EQ(toldIds(), (Ids{263, 266, 264, 265, 270, 258, 259}));
    EXPECT_EQ(session_->responseTimeForLastMsg(), 1) << "1002 less 1001";
    EXPECT_EQ(session_->numSuccessfulMsg(), 1U);
    EXPECT_EQ(session_->lastSuccessfulMsg(), "Monitor request");
    EXPECT_EQ(session_->lastSuccessfulMsgDetail(), "y");
    EXPECT_EQ(session_->lastSuccessfulMsgTime(), 1001) << "when the request went out";
    EXPECT_EQ(session_->sessionState(), SessionState::stateConnected);
    EXPECT_EQ(session_->lastStateChange(), 1003) << "a second reading of the clock";
    EXPECT_EQ(session_->timeOfLastMsg(), 1001);
}

TEST_F(Accounting, SyncedBackupDatabaseIsASuccessLikeAnyOther) {
    Vgw::updateOvsdbRequest(session_, monitor, "x");
    recorder_->take();
    Vgw::updateOvsdbRequestResult(session_, SessionState::stateBackupDbSynced, monitor, "y");
    EXPECT_EQ(toldIds(), (Ids{263, 266, 264, 265, 270, 258, 259}));
    EXPECT_EQ(session_->sessionState(), SessionState::stateBackupDbSynced);
    EXPECT_EQ(session_->numSuccessfulMsg(), 1U);
    EXPECT_EQ(session_->numFailedMsg(), 0U);
}

TEST_F(Accounting, FailureWritesItsAttributesAndMeasuresNothing) {
    Vgw::updateOvsdbRequest(session_, transact, "x");
    Vgw::updateOvsdbRequestResult(session_, SessionState::stateConnected, transact, "x");
    Vgw::updateOvsdbRequest(session_, cancel, "x");
    double const sent = session_->timeOfLastMsg();
    double const successTime = session_->lastSuccessfulMsgTime();
    recorder_->take();
    Vgw::updateOvsdbRequestResult(session_, SessionState::stateDisconnected, cancel, "z");
    EXPECT_EQ(toldIds(), (Ids{263, 269, 267, 268, 271, 258, 259}));
    EXPECT_EQ(session_->responseTimeForLastMsg(), 0.0);
    EXPECT_EQ(session_->numFailedMsg(), 1U);
    EXPECT_EQ(session_->lastFailedMsg(), "Cancel request");
    EXPECT_EQ(session_->lastFailedMsgDetail(), "z");
    EXPECT_EQ(session_->lastFailedMsgTime(), sent);
    EXPECT_EQ(session_->numSuccessfulMsg(), 1U);
    EXPECT_EQ(session_->lastSuccessfulMsg(), "Transaction request");
    EXPECT_EQ(session_->lastSuccessfulMsgTime(), successTime);
}

TEST_F(Accounting, SecondSuccessInTheSameStateMovesTheTimeAndTellsNoState) {
    Vgw::updateOvsdbRequestResult(session_, SessionState::stateConnected, transact, "x");
    double const first = session_->lastStateChange();
    recorder_->take();
    Vgw::updateOvsdbRequestResult(session_, SessionState::stateConnected, transact, "x");
    EXPECT_EQ(session_->numSuccessfulMsg(), 2U);
    EXPECT_GT(session_->lastStateChange(), first);
    for (auto const id : toldIds()) {
        EXPECT_NE(id, 258);
    }
}

TEST_F(Accounting, ResultWithoutARequestIsMeasuredFromZero) {
    Vgw::updateOvsdbRequestResult(session_, SessionState::stateConnected, transact, "x");
    EXPECT_EQ(session_->responseTimeForLastMsg(), 1001);
    EXPECT_EQ(session_->lastSuccessfulMsgTime(), 0.0);
}

TEST_F(Accounting, CountersWrap) {
    session_->numSuccessfulMsgIs(0xFFFFFFFF);
    session_->numFailedMsgIs(0xFFFFFFFF);
    Vgw::updateOvsdbRequestResult(session_, SessionState::stateConnected, transact, "x");
    Vgw::updateOvsdbRequestResult(session_, SessionState::stateDisconnected, transact, "x");
    EXPECT_EQ(session_->numSuccessfulMsg(), 0U);
    EXPECT_EQ(session_->numFailedMsg(), 0U);
}

TEST_F(Accounting, AnyAcceptedStateFollowsAnyOther) {
    SessionState const accepted[] = {SessionState::stateConnected,
                                     SessionState::stateBackupDbSynced,
                                     SessionState::stateDisconnected};
    for (auto const from : accepted) {
        for (auto const to : accepted) {
            session_->sessionStateIs(from);
            Vgw::updateOvsdbRequestResult(session_, to, transact, "x");
            EXPECT_EQ(session_->sessionState(), to);
        }
    }
    EXPECT_EQ(session_->numSuccessfulMsg(), 6U);
    EXPECT_EQ(session_->numFailedMsg(), 3U);
}

TEST_F(Accounting, ErrorCodeIsTheAgentsOwn) {
    session_->lastErrorCodeIs("agent");
    Vgw::updateOvsdbRequest(session_, transact, "x");
    Vgw::updateOvsdbRequestResult(session_, SessionState::stateDisconnected, transact, "x");
    Vgw::updateOvsdbRequestResult(session_, SessionState::stateConnected, transact, "x");
    EXPECT_EQ(session_->lastErrorCode(), "agent");
}

TEST_F(Accounting, HandlersExceptionsStopNothing) {
    recorder_->throwsIs(true);
    Vgw::updateOvsdbRequest(session_, transact, "x");
    EXPECT_NO_THROW(
        Vgw::updateOvsdbRequestResult(session_, SessionState::stateConnected, transact, "x"));
    EXPECT_EQ(session_->sessionState(), SessionState::stateConnected);
}

TEST_F(Accounting, ResultIsTracedWithTheNameOfTheState) {
    TraceLog log;
    Vgw::updateOvsdbRequestResult(session_, SessionState::stateBackupDbSynced, transact, "x");
    ASSERT_EQ(log.records.size(), 2U) << "the result and the display text";
    log.records.pop_back();
    TraceLines const lines = log.take("VgwTypes", "updateOvsdbRequestResult");
    EXPECT_EQ(lines[0].level, 5);
    EXPECT_EQ(lines[0].text,
              "void Vgw::updateOvsdbRequestResult(const Vgw::OvsdbSessionStatus::Ptr&, "
              "Vgw::SessionState, Vgw::OvsdbRequestType, const Qor::String&) stateBackupDbSynced");
}

TEST_F(Accounting, DisplayTextsOfTheThreeKinds) {
    EXPECT_EQ(OvsdbSessionStatus::toDisplayMsg(transact), "Transaction request");
    EXPECT_EQ(OvsdbSessionStatus::toDisplayMsg(cancel), "Cancel request");
    EXPECT_EQ(OvsdbSessionStatus::toDisplayMsg(monitor), "Monitor request");
}

// Writes to standard error what is told, so that a test sees how far a process got that stopped.
class Telltale : public OvsdbSessionStatus::NotifieeConst {
  public:
    explicit Telltale(OvsdbSessionStatus::Ptr const& session) { notifierIs(session); }
    void onSessionState() override { std::fputs("258\n", stderr); }
    void onLastStateChange() override { std::fputs("259\n", stderr); }
    void onLastMsgSent() override { std::fputs("260\n", stderr); }
    void onLastMsgSentDetail() override { std::fputs("261\n", stderr); }
    void onTimeOfLastMsg() override { std::fputs("262\n", stderr); }
    void onResponseTimeForLastMsg() override { std::fputs("263\n", stderr); }
    void onLastSuccessfulMsg() override { std::fputs("264\n", stderr); }
    void onLastSuccessfulMsgDetail() override { std::fputs("265\n", stderr); }
    void onNumSuccessfulMsg() override { std::fputs("266\n", stderr); }
    void onLastFailedMsg() override { std::fputs("267\n", stderr); }
    void onLastFailedMsgDetail() override { std::fputs("268\n", stderr); }
    void onNumFailedMsg() override { std::fputs("269\n", stderr); }
    void onLastSuccessfulMsgTime() override { std::fputs("270\n", stderr); }
    void onLastFailedMsgTime() override { std::fputs("271\n", stderr); }
};

#define DISPLAY_LINE(line)                                                                         \
    "VgwTypes:" #line                                                                              \
    ": static Qor::String "                                                                        \
    "Vgw::OvsdbSessionStatus::toDisplayMsg(Vgw::OvsdbRequestType): Assertion 'false && \"Unknown " \
    "soap message type\"' failed."

#define STATE_LINE(line)                                                                           \
    "VgwTypes:" #line                                                                              \
    ": void Vgw::updateOvsdbRequestResult(const Vgw::OvsdbSessionStatus::Ptr&, "                   \
    "Vgw::SessionState, Vgw::OvsdbRequestType, const Qor::String&): Assertion '0 && \"Unexpected " \
    "session state.\"' failed."

// Lets go of the status that is accounted for as soon as it hears of it.
class LettingGo : public OvsdbSessionStatus::NotifieeConst {
  public:
    explicit LettingGo(OvsdbSessionStatus::Ptr& session) : session_(&session) {
        isWeakReferenceIs(true);
        notifierIs(session);
    }
    void onLastMsgSent() override { *session_ = nullptr; }
    void onNumSuccessfulMsg() override { *session_ = nullptr; }
    void onNumFailedMsg() override { *session_ = nullptr; }
    void onTimeOfLastMsg() override { ++last; }
    void onLastStateChange() override { ++last; }
    int last = 0;

  private:
    OvsdbSessionStatus::Ptr* session_;
};

TEST(AccountingOfAStatus, GoesOnToItsEndWhenAHandlerLetsGoOfTheStatus) {
    for (auto const state : {SessionState::stateConnected, SessionState::stateDisconnected}) {
        auto session = Vgw::ovsdbSessionStatusFactory("s");
        auto const hearer = Qor::make<LettingGo>(session);
        Vgw::updateOvsdbRequest(session, transact, "x");
        EXPECT_FALSE(session);
        EXPECT_EQ(hearer->last, 1) << "the last step was told";
        session = Vgw::ovsdbSessionStatusFactory("s");
        hearer->notifierIs(session);
        Vgw::updateOvsdbRequestResult(session, state, transact, "x");
        EXPECT_FALSE(session);
        EXPECT_EQ(hearer->last, 2);
    }
}

class AccountingDeathTest : public Accounting {};

TEST_F(AccountingDeathTest, KindWithoutDisplayTextStops) {
    EXPECT_STOPS(OvsdbSessionStatus::toDisplayMsg(unknown), DISPLAY_LINE(83));
    EXPECT_STOPS(OvsdbSessionStatus::toDisplayMsg(query), DISPLAY_LINE(103));
    EXPECT_STOPS(OvsdbSessionStatus::toDisplayMsg(static_cast<OvsdbRequestType>(5)),
                 DISPLAY_LINE(103));
    EXPECT_STOPS(OvsdbSessionStatus::toDisplayMsg(static_cast<OvsdbRequestType>(0xFFFFFFFF)),
                 DISPLAY_LINE(103));
}

TEST_F(AccountingDeathTest, RequestWithoutDisplayTextStopsBeforeAnythingIsWritten) {
    auto const telltale = Qor::make<Telltale>(session_);
    EXPECT_STOPS(Vgw::updateOvsdbRequest(session_, query, "x"), DISPLAY_LINE(103));
    EXPECT_STOPS(Vgw::updateOvsdbRequest(session_, unknown, "x"), DISPLAY_LINE(83));
}

TEST_F(AccountingDeathTest, ResultWithoutDisplayTextStopsBehindTheTimeAndTheCounter) {
    session_->responseTimeForLastMsgIs(7);
    auto const telltale = Qor::make<Telltale>(session_);
    EXPECT_STOPS(Vgw::updateOvsdbRequestResult(session_, SessionState::stateConnected, query, "x"),
                 "263\n266\n" DISPLAY_LINE(103));
    EXPECT_STOPS(
        Vgw::updateOvsdbRequestResult(session_, SessionState::stateDisconnected, query, "x"),
        "263\n269\n" DISPLAY_LINE(103));
}

TEST_F(AccountingDeathTest, UnknownStateStopsAtOnceWhateverTheKind) {
    session_->responseTimeForLastMsgIs(7);  // so that either outcome would be told
    session_->timeOfLastMsgIs(1);
    auto const telltale = Qor::make<Telltale>(session_);
    for (auto const type : {transact, query, unknown}) {
        EXPECT_STOPS(Vgw::updateOvsdbRequestResult(session_, SessionState::stateUnknown, type, "x"),
                     STATE_LINE(42));
    }
}

TEST_F(AccountingDeathTest, StateOutsideTheTableStopsAtOnce) {
    session_->responseTimeForLastMsgIs(7);
    session_->timeOfLastMsgIs(1);
    auto const telltale = Qor::make<Telltale>(session_);
    for (auto const number : {4U, 0xFFFFFFFFU}) {
        EXPECT_STOPS(Vgw::updateOvsdbRequestResult(session_, static_cast<SessionState>(number),
                                                   transact, "x"),
                     STATE_LINE(68));
    }
}

}  // namespace
