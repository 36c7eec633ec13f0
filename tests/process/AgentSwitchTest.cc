// What else CliConfig switches: the agent, its OVSDB side, the list type, the logs.

#include "AgentUnderTest.h"

#include <csignal>
#include <filesystem>
#include <fstream>

namespace Vgwd {
namespace {

using EntryState = Qor::Dir::EntryState;
using std::chrono::milliseconds;

class SwitchTest : public AgentTest {
  protected:
    SwitchTest() {
        server_.start();
        server_.vtepCtl("add-ls red");
    }
    void start() {
        startAgent();
        ASSERT_TRUE(inStep());
    }
    std::size_t switches() { return status().ovsdb()->logicalSwitchs(); }
    std::string fileText() const {
        std::ifstream file(logFile_);
        return {std::istreambuf_iterator<char>(file), {}};
    }
};

TEST_F(SwitchTest, TheTreeHoldsTheStatusAndBothConfigurations) {
    start();
    Qor::Dir& root = *agent_->tree().root();
    EXPECT_EQ(text(root.entry("status")->uriPath()), "/vgw/status");
    EXPECT_EQ(root.entry("cliConfig"), Qor::Ptr<Qor::Entity>(&cli()));
    EXPECT_EQ(root.entry("config"), Qor::Ptr<Qor::Entity>(&config()));
    EXPECT_EQ(text(status().ovsdbSessionStatus()->uriPath()), "/vgw/status/ovsdbSessionStatus");
    EXPECT_EQ(text(status().ovsdb()->uriPath()), "/vgw/status/ovsdb");
}

TEST_F(SwitchTest, AnAgentThatIsStartedIsEnabledAndRuns) {
    start();
    EXPECT_TRUE(cli().enableAgent());
    EXPECT_TRUE(status().running());
}

// Where in the event loop it stands, when the agent ends, is tried step by step.
TEST_F(SwitchTest, ASignalThatIsOnItsWayWhenTheAgentEndsIsNotHeardAnyMore) {
    options_.dumpFile = directory_ + "/dump";
    bool isHeard = false;
    for (int steps = 0; !isHeard && steps < 100; ++steps) {
        start();
        // The one before is heard by this agent.
        std::filesystem::remove(options_.dumpFile);
        std::raise(SIGUSR1);
        loop_.restart();
        for (int i = 0; i < steps; ++i) loop_.run_one_for(milliseconds(5));
        isHeard = std::filesystem::exists(options_.dumpFile);
        agent_.reset();
        loop_.restart();
        loop_.poll();
        EXPECT_EQ(std::filesystem::exists(options_.dumpFile), isHeard) << "after step " << steps;
    }
    EXPECT_TRUE(isHeard);
}

TEST_F(SwitchTest, ADisabledAgentDoesNothingUntilItIsEnabled) {
    options_.disabled = true;
    startAgent();
    runFor(milliseconds(200));
    EXPECT_FALSE(status().running());
    EXPECT_EQ(session().sessionState(), Vgw::stateUnknown);
    cli().enableAgentIs(true);
    ASSERT_TRUE(inStep());
    EXPECT_TRUE(status().running());
    EXPECT_EQ(switches(), 1U);
}

TEST_F(SwitchTest, WithoutItsOvsdbSideTheRowsStayAndAreStale) {
    start();
    cli().enableOvsdbIs(false);
    ASSERT_TRUE(becomes(Vgw::stateDisconnected));
    EXPECT_EQ(entryState(), EntryState::stale);
    EXPECT_EQ(switches(), 1U);
    EXPECT_TRUE(status().running());
    server_.vtepCtl("add-ls blue");
    runFor(milliseconds(200));
    EXPECT_EQ(switches(), 1U);
    cli().enableOvsdbIs(true);
    ASSERT_TRUE(becomes([&] { return switches() == 2; }));
    EXPECT_TRUE(becomes(Vgw::stateConnected));
    EXPECT_EQ(entryState(), EntryState::ready);
}

TEST_F(SwitchTest, TakingBackTheMonitorIsWrittenDownAsACancelThatSucceeded) {
    start();
    cli().enableOvsdbIs(false);
    ASSERT_TRUE(becomes(Vgw::stateDisconnected));
    EXPECT_EQ(text(session().lastSuccessfulMsg()), "Cancel request");
    EXPECT_EQ(session().numSuccessfulMsg(), 2U);
    EXPECT_EQ(session().numFailedMsg(), 0U);
}

TEST_F(SwitchTest, ADisabledAgentIsNotRunningAndHasNoConnection) {
    start();
    cli().enableAgentIs(false);
    ASSERT_TRUE(becomes(Vgw::stateDisconnected));
    EXPECT_FALSE(status().running());
    EXPECT_EQ(entryState(), EntryState::stale);
}

TEST_F(SwitchTest, SwitchingOffAndOnAgainInOneTurnChangesNothing) {
    start();
    cli().enableOvsdbIs(false);
    cli().enableOvsdbIs(true);
    runFor(milliseconds(200));
    EXPECT_EQ(session().numSuccessfulMsg(), 1U);
}

TEST_F(SwitchTest, SwitchingOnWhileItStillLeavesBringsItBack) {
    start();
    for (int i = 0; i < 5; ++i) {
        cli().enableOvsdbIs(false);
        runFor(milliseconds(1));
        cli().enableOvsdbIs(true);
        runFor(milliseconds(i));
    }
    ASSERT_TRUE(becomes(Vgw::stateConnected));
    EXPECT_TRUE(becomes([&] { return entryState() == EntryState::ready; }));
}

TEST_F(SwitchTest, TheListTypeIsReportedAtOnce) {
    start();
    cli().vtepListTypeIs(Vgw::sendToAll);
    EXPECT_EQ(status().vtepListType(), Vgw::sendToAll);
}

TEST_F(SwitchTest, ResetTurnsTheAgentAndItsLogsOff) {
    start();
    cli().reset();
    ASSERT_TRUE(becomes(Vgw::stateDisconnected));
    EXPECT_FALSE(status().running());
    std::string const said = console_.str();
    logs_->log(Ovsdb::LogLevel::error, "after the reset");
    EXPECT_EQ(console_.str(), said);
}

TEST_F(SwitchTest, LogLevelsChangeWhileItRuns) {
    start();
    EXPECT_NE(console_.str().find("in step by"), std::string::npos);
    EXPECT_EQ(console_.str().find("connected"), std::string::npos);
    EXPECT_EQ(syslog_.str() + fileText(), "");
    cli().logConsoleIs(Vgw::OvsdbLogLevel::disabled);
    cli().logSyslogIs(Vgw::OvsdbLogLevel::warning);
    cli().logFileIs(Vgw::OvsdbLogLevel::debug);
    std::string const said = console_.str();
    server_.stop();
    ASSERT_TRUE(becomes([&] { return entryState() == EntryState::stale; }));
    server_.start();
    ASSERT_TRUE(becomes([&] { return entryState() == EntryState::ready; }));
    EXPECT_EQ(console_.str(), said);
    EXPECT_NE(syslog_.str().find("out of step"), std::string::npos);
    EXPECT_EQ(syslog_.str().find("in step by"), std::string::npos);
    EXPECT_NE(fileText().find("debug"), std::string::npos);
    EXPECT_NE(fileText().find("in step by"), std::string::npos);
}

TEST_F(SwitchTest, ALogFileThatWasMovedAwayIsOpenedAnewWhenItIsSwitchedOffAndOn) {
    start();
    cli().logFileIs(Vgw::OvsdbLogLevel::information);
    logs_->log(Ovsdb::LogLevel::info, "first");
    std::filesystem::rename(logFile_, logFile_ + ".1");
    cli().logFileIs(Vgw::OvsdbLogLevel::disabled);
    cli().logFileIs(Vgw::OvsdbLogLevel::information);
    logs_->log(Ovsdb::LogLevel::info, "second");
    EXPECT_EQ(fileText().find("first"), std::string::npos);
    EXPECT_NE(fileText().find("second"), std::string::npos);
}

TEST_F(SwitchTest, ALogFileThatCannotBeOpenedIsSaidOnTheConsole) {
    start();
    logFile_ = directory_ + "/server";
    cli().logFileIs(Vgw::OvsdbLogLevel::information);
    EXPECT_NE(console_.str().find("the log file can't be opened"), std::string::npos);
}

}  // namespace
}  // namespace Vgwd
