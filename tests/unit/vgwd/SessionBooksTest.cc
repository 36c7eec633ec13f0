#include <vgwd/agent/SessionBooks.h>

#include <gtest/gtest.h>

#include <vector>

namespace Vgwd {
namespace {

using Ovsdb::RequestKind;
using Ovsdb::RpcError;

class SessionBooksTest : public testing::Test {
  protected:
    void sync() { books_.outcome(RequestKind::monitor, "rows", nullptr); }

    asio::io_context loop_{1};
    Vgw::OvsdbSessionStatus::Ptr session_ = Vgw::ovsdbSessionStatusFactory("session");
    Vgw::Config::Ptr config_ = Vgw::configFactory("config");
    SessionBooks books_{loop_, session_, config_};
    RpcError const timedOut_{RpcError::Kind::operation, "timed out", "no", 1};
};

TEST_F(SessionBooksTest, EachKindOfRequestHasItsText) {
    for (auto const& [kind, text] : {std::pair{RequestKind::transact, "Transaction request"},
                                     std::pair{RequestKind::monitor, "Monitor request"},
                                     std::pair{RequestKind::cancel, "Cancel request"}}) {
        books_.request(kind, "detail");
        EXPECT_EQ(session_->lastMsgSent(), text);
        books_.outcome(kind, "well", nullptr);
        EXPECT_EQ(session_->lastSuccessfulMsg(), text);
        books_.outcome(kind, "badly", &timedOut_);
        EXPECT_EQ(session_->lastFailedMsg(), text);
    }
    EXPECT_EQ(session_->numSuccessfulMsg(), 3U);
    EXPECT_EQ(session_->numFailedMsg(), 3U);
}

TEST_F(SessionBooksTest, AFailedRequestNamesTheErrorFirstAndLeavesTheState) {
    sync();
    books_.outcome(RequestKind::transact, "Manager: set x", &timedOut_);
    EXPECT_EQ(session_->lastFailedMsgDetail(), "timed out: no (operation 1); Manager: set x");
    EXPECT_EQ(session_->lastErrorCode(), "timed out");
    EXPECT_EQ(session_->sessionState(), Vgw::stateConnected);
}

TEST_F(SessionBooksTest, ACopyOfAPartIsReportedAtOnceAndNoTransactionMakesItWhole) {
    sync();
    books_.incomplete("2 rows", "table Manager is missing from the schema");
    EXPECT_EQ(session_->sessionState(), Vgw::stateDisconnected);
    EXPECT_EQ(session_->lastErrorCode(), "table Manager is missing from the schema");
    EXPECT_EQ(session_->numFailedMsg(), 1U);
    books_.outcome(RequestKind::transact, "a write", nullptr);
    EXPECT_EQ(session_->sessionState(), Vgw::stateDisconnected);
    EXPECT_EQ(session_->lastSuccessfulMsgDetail(), "a write");
    sync();
    EXPECT_EQ(session_->sessionState(), Vgw::stateConnected);
}

TEST_F(SessionBooksTest, TheFirstCopyIsReportedAsASyncedBackupOnce) {
    struct States : Vgw::OvsdbSessionStatus::NotifieeConst {
        void onSessionState() override { heard.push_back(notifier()->sessionState()); }
        std::vector<Vgw::SessionState> heard;
    };
    auto const states = Qor::make<States>();
    states->notifierIs(session_);
    sync();
    EXPECT_EQ(states->heard, (std::vector{Vgw::stateBackupDbSynced, Vgw::stateConnected}));
    EXPECT_EQ(session_->numSuccessfulMsg(), 1U);
    config_->restartSyncShortIs(0);
    books_.awaitCopy("lost");
    sync();
    EXPECT_EQ(states->heard, (std::vector{Vgw::stateBackupDbSynced, Vgw::stateConnected,
                                          Vgw::stateDisconnected, Vgw::stateConnected}));
}

TEST_F(SessionBooksTest, TheLimitBeforeTheFirstCopyIsAnotherThanAfterIt) {
    config_->restartSyncShortIs(0);
    books_.awaitCopy("starting");
    EXPECT_EQ(session_->sessionState(), Vgw::stateUnknown);
    sync();
    books_.awaitCopy("lost");
    EXPECT_EQ(session_->sessionState(), Vgw::stateDisconnected);
    EXPECT_EQ(session_->lastFailedMsgDetail(), "not in step: lost");
}

TEST_F(SessionBooksTest, WhatTakesTooLongIsReportedOnceWithTheNewestReason) {
    sync();
    books_.awaitCopy("first");
    books_.awaitCopy("second");
    config_->restartSyncShortIs(0);
    config_->restartSyncLimitIs(0);
    books_.awaitCopy("third");
    EXPECT_EQ(session_->numFailedMsg(), 1U);
    EXPECT_EQ(session_->lastFailedMsgDetail(), "not in step: second");
}

TEST_F(SessionBooksTest, AnEndOnPurposeIsNoFailure) {
    sync();
    books_.awaitCopy("lost");
    books_.close();
    config_->restartSyncShortIs(0);
    EXPECT_EQ(session_->sessionState(), Vgw::stateDisconnected);
    EXPECT_EQ(session_->numFailedMsg(), 0U);
}

TEST_F(SessionBooksTest, LimitsThatChangeAfterTheBooksAreGoneReachNobody) {
    { SessionBooks const other(loop_, session_, config_); }
    config_->restartSyncShortIs(0);
    EXPECT_EQ(session_->sessionState(), Vgw::stateUnknown);
}

}  // namespace
}  // namespace Vgwd
