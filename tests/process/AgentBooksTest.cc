// The session's books over a run, and the limits of waiting for a whole copy.

#include "AgentUnderTest.h"

#include <qor/core/Now.h>

#include <csignal>

namespace Vgwd {
namespace {

using EntryState = Qor::Dir::EntryState;
using std::chrono::milliseconds;

class BooksTest : public AgentTest {
  protected:
    void start() {
        server_.start();
        startAgent();
        ASSERT_TRUE(inStep());
    }
    std::string there() const { return "hardware_vtep, " + server_.remote(); }
    static std::string shortForm(std::string detail) {
        if (detail.size() <= 80) return detail;
        detail.resize(77);
        return detail.append("...");
    }
};

TEST_F(BooksTest, TheFirstMonitorIsWrittenDown) {
    Qor::Seconds const before = Qor::now();
    start();
    EXPECT_EQ(session().sessionState(), Vgw::stateConnected);
    EXPECT_EQ(text(session().lastMsgSent()), "Monitor request");
    EXPECT_EQ(text(session().lastMsgSentDetail()), shortForm("monitor_cond_since of " + there()));
    EXPECT_EQ(text(session().lastSuccessfulMsg()), "Monitor request");
    EXPECT_EQ(text(session().lastSuccessfulMsgDetail()), shortForm("0 rows of " + there()));
    EXPECT_EQ(session().numSuccessfulMsg(), 1U);
    EXPECT_EQ(session().numFailedMsg(), 0U);
    EXPECT_GE(session().timeOfLastMsg(), before);
    EXPECT_EQ(session().lastSuccessfulMsgTime(), session().timeOfLastMsg());
    EXPECT_GT(session().responseTimeForLastMsg(), 0.0);
    EXPECT_GE(session().lastStateChange(), session().timeOfLastMsg());
    EXPECT_EQ(text(session().lastErrorCode()), "");
}

TEST_F(BooksTest, ATransactionThatSucceedsAndOneThatFailsAreWrittenDown) {
    start();
    cli().managerIpIs(Kelp::IpAddr("192.0.2.1"));
    ASSERT_TRUE(becomes([&] { return session().numSuccessfulMsg() == 2; }));
    EXPECT_EQ(text(session().lastSuccessfulMsg()), "Transaction request");
    EXPECT_EQ(text(session().lastSuccessfulMsgDetail()), "Manager: set ssl:192.0.2.1:6632");
    double const succeeded = session().lastSuccessfulMsgTime();

    runFor(milliseconds(50));
    server_.vtepCtl("set-manager tcp:127.0.0.1:1");
    cli().managerIpIs(Kelp::IpAddr("192.0.2.2"));
    ASSERT_TRUE(becomes([&] { return session().numFailedMsg() == 1; }));
    EXPECT_EQ(text(session().lastFailedMsg()), "Transaction request");
    EXPECT_EQ(text(session().lastFailedMsgDetail()).substr(0, 10), "timed out:");
    EXPECT_EQ(session().lastFailedMsgDetail().length(), 80U);
    EXPECT_EQ(text(session().lastErrorCode()), "timed out");
    EXPECT_GT(session().lastFailedMsgTime(), succeeded);
    EXPECT_EQ(session().sessionState(), Vgw::stateConnected);
    ASSERT_TRUE(becomes([&] { return session().numSuccessfulMsg() == 3; }));
}

TEST_F(BooksTest, AServerThatIsBackWithinTheShortLimitIsNoDisconnection) {
    start();
    server_.stop();
    ASSERT_TRUE(becomes([&] { return entryState() == EntryState::stale; }));
    EXPECT_EQ(session().sessionState(), Vgw::stateConnected);
    EXPECT_NE(text(session().lastErrorCode()), "");
    server_.start();
    ASSERT_TRUE(becomes([&] { return session().numSuccessfulMsg() == 2; }));
    EXPECT_EQ(entryState(), EntryState::ready);
    EXPECT_EQ(session().sessionState(), Vgw::stateConnected);
    EXPECT_EQ(session().numFailedMsg(), 0U);
}

TEST_F(BooksTest, AServerThatStaysAwayIsADisconnectionAfterTheShortLimit) {
    start();
    config().restartSyncShortIs(1);
    Qor::Seconds const before = Qor::now();
    server_.stop();
    ASSERT_TRUE(becomes([&] { return entryState() == EntryState::stale; }));
    ASSERT_TRUE(becomes(Vgw::stateDisconnected));
    EXPECT_GT(session().lastStateChange() - before, 0.99);
    EXPECT_EQ(session().numFailedMsg(), 1U);
    EXPECT_EQ(text(session().lastFailedMsg()), "Monitor request");
    EXPECT_EQ(text(session().lastFailedMsgDetail()).substr(0, 13), "not in step: ");
    runFor(milliseconds(300));
    EXPECT_EQ(session().numFailedMsg(), 1U);  // it is told once
    server_.start();
    ASSERT_TRUE(becomes(Vgw::stateConnected));
    EXPECT_EQ(session().numSuccessfulMsg(), 2U);
}

TEST_F(BooksTest, AShortLimitOfZeroReportsEachLossAtOnce) {
    start();
    config().restartSyncShortIs(0);
    server_.stop();
    ASSERT_TRUE(becomes([&] { return entryState() == EntryState::stale; }));
    EXPECT_EQ(session().sessionState(), Vgw::stateDisconnected);
}

TEST_F(BooksTest, ALimitThatIsLoweredWhileItRunsIsHeeded) {
    start();
    config().restartSyncShortIs(1000);
    server_.stop();
    ASSERT_TRUE(becomes([&] { return entryState() == EntryState::stale; }));
    EXPECT_EQ(session().sessionState(), Vgw::stateConnected);
    config().restartSyncShortIs(0);
    EXPECT_EQ(session().sessionState(), Vgw::stateDisconnected);
}

TEST_F(BooksTest, TheFirstCopyIsAwaitedForTheOtherLimit) {
    startAgent();
    config().restartSyncShortIs(0);
    config().restartSyncLimitIs(2);
    runFor(milliseconds(500));
    EXPECT_EQ(session().sessionState(), Vgw::stateUnknown);
    EXPECT_EQ(entryState(), EntryState::pending);
    ASSERT_TRUE(becomes(Vgw::stateDisconnected));
    EXPECT_EQ(session().numFailedMsg(), 1U);
    server_.start();
    ASSERT_TRUE(becomes(Vgw::stateConnected));
}

TEST_F(BooksTest, AServerThatDoesNotAnswerMakesTheRowsStaleUntilItDoes) {
    start();
    server_.signal(SIGSTOP);
    ASSERT_TRUE(becomes([&] { return entryState() == EntryState::stale; }));
    server_.signal(SIGCONT);
    ASSERT_TRUE(becomes([&] { return entryState() == EntryState::ready; }));
    EXPECT_EQ(session().numSuccessfulMsg(), 1U);
    EXPECT_EQ(session().numFailedMsg(), 0U);
}

TEST_F(BooksTest, ASilenceThatOutlastsTheShortLimitIsADisconnectionUntilTheServerSpeaks) {
    start();
    config().restartSyncShortIs(1);
    server_.signal(SIGSTOP);
    ASSERT_TRUE(becomes(Vgw::stateDisconnected));
    server_.signal(SIGCONT);
    ASSERT_TRUE(becomes(Vgw::stateConnected));
    EXPECT_EQ(session().numSuccessfulMsg(), 1U);
}

}  // namespace
}  // namespace Vgwd
