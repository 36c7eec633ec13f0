// An agent with a server of its own, and its run directory.

#include "AgentUnderTest.h"

#include <vgwd/agent/ChildProcess.h>

#include <csignal>
#include <filesystem>
#include <fstream>

namespace Vgwd {
namespace {

namespace fs = std::filesystem;
using std::chrono::milliseconds;

class OwnServerTest : public AgentTest {
  protected:
    OwnServerTest() { options_.remotes.clear(); }
    void start() {
        startAgent();
        ASSERT_TRUE(inStep());
    }
    std::string file(char const* name) const { return options_.runDirectory + "/" + name; }
    pid_t serverPid() const {
        pid_t pid = 0;
        std::ifstream(file("server.pid")) >> pid;
        return pid;
    }
    bool serverRuns() const { return serverPid() != 0 && ::kill(serverPid(), 0) == 0; }
    std::size_t switches() { return status().ovsdb()->logicalSwitchs(); }
    void addSwitch() {
        std::string const command = ovsPrefix() +
                                    "/usr/bin/vtep-ctl --timeout=10 --db=unix:" + file("db.sock") +
                                    " add-ls red";
        ASSERT_EQ(std::system(command.c_str()), 0);
        ASSERT_TRUE(becomes([&] { return switches() == 1; }));
    }
};

TEST_F(OwnServerTest, TheRunDirectoryIsItsOwnersAlone) {
    start();
    EXPECT_EQ(fs::status(options_.runDirectory).permissions(), fs::perms::owner_all);
}

TEST_F(OwnServerTest, ConfigTellsWhereThingsAre) {
    start();
    EXPECT_EQ(text(config().ovsdbRunDir()), options_.runDirectory);
    EXPECT_EQ(text(config().ovsdbLogDir()), options_.runDirectory);
    EXPECT_EQ(text(config().ovsdbDataDir()), options_.runDirectory);
    EXPECT_TRUE(fs::is_socket(text(config().ovsdbSocketFile())));
    EXPECT_EQ(text(config().ovsdbPidFile()), file("server.pid"));
    EXPECT_TRUE(serverRuns());
    EXPECT_EQ(text(config().ovsdbBackupDir()), "");
    EXPECT_EQ(text(config().ovsdbCertFile()), "");
    EXPECT_EQ(config().restartSyncLimit(), 100U);
    EXPECT_EQ(config().restartSyncShort(), 10U);
}

TEST_F(OwnServerTest, ItEndsWithItsOvsdbSideAndKeepsTheDatabase) {
    start();
    addSwitch();
    cli().enableOvsdbIs(false);
    ASSERT_TRUE(becomes([&] { return !serverRuns(); }));
    EXPECT_TRUE(fs::exists(file("vtep.db")));
    EXPECT_EQ(switches(), 1U);
    cli().enableOvsdbIs(true);
    ASSERT_TRUE(becomes(Vgw::stateConnected));
    EXPECT_EQ(switches(), 1U);
}

TEST_F(OwnServerTest, ADatabaseThatIsNotToPersistIsGoneAfterTheEnd) {
    start();
    addSwitch();
    cli().persistDatabaseIs(false);
    cli().enableAgentIs(false);
    ASSERT_TRUE(becomes([&] { return !fs::exists(file("vtep.db")); }));
    EXPECT_EQ(switches(), 1U);  // the rows stay until there is another copy
    cli().enableAgentIs(true);
    ASSERT_TRUE(becomes([&] { return switches() == 0; }));
    agent_.reset();
    EXPECT_FALSE(fs::exists(file("vtep.db")));
}

TEST_F(OwnServerTest, ADatabaseThatIsNotToPersistIsGoneAfterACrashToo) {
    start();
    addSwitch();
    cli().persistDatabaseIs(false);
    runFor(milliseconds(20));
    for (char const* const left : {"vtep.db", "vtep.db.transient"})
        fs::copy_file(file(left), directory_ + "/" + left);
    agent_.reset();
    for (char const* const left : {"vtep.db", "vtep.db.transient"})
        fs::rename(directory_ + "/" + left, file(left));
    start();
    EXPECT_EQ(switches(), 0U);
    addSwitch();
    agent_.reset();
    EXPECT_TRUE(fs::exists(file("vtep.db")));  // this agent was told nothing
}

TEST_F(OwnServerTest, AServerThatDiesIsStartedAgainAndKeepsWhatIsNotToPersist) {
    start();
    cli().persistDatabaseIs(false);
    addSwitch();
    pid_t const first = serverPid();
    ASSERT_EQ(::kill(first, SIGKILL), 0);
    ASSERT_TRUE(becomes([&] { return session().numSuccessfulMsg() == 2; }));
    EXPECT_NE(serverPid(), first);
    EXPECT_EQ(switches(), 1U);
}

TEST_F(OwnServerTest, SwitchingItOffAndOnQuicklyLeavesOneServerRunning) {
    start();
    for (int i = 0; i < 4; ++i) {
        cli().enableOvsdbIs(false);
        runFor(milliseconds(10 * i));
        cli().enableOvsdbIs(true);
        runFor(milliseconds(10 * i));
    }
    ASSERT_TRUE(becomes(Vgw::stateConnected));
    EXPECT_TRUE(serverRuns());
}

// Its signals were written to the pipe in which the agent hears of its own.
TEST_F(OwnServerTest, AServerThatIsEndedTheMomentItWasStartedDoesNotEndTheAgent) {
    start();
    for (int i = 0; i < 20; ++i) {
        pid_t const child = startProgram({"/bin/true"});
        ::kill(child, SIGTERM);
        static_cast<void>(awaitProgram(child));
    }
    runFor(milliseconds(50));
    EXPECT_TRUE(status().running());
    EXPECT_EQ(console_.str().find("SIGTERM"), std::string::npos);
}

TEST_F(OwnServerTest, AMissingProgramIsNamedAndEndsAnAgentThatStarts) {
    options_.serverProgram = "/nonexistent/ovsdb-server";
    agent_ = std::make_unique<Agent>(loop_, options_, *logs_);
    EXPECT_EQ(agent_->run(), 1);
    EXPECT_NE(console_.str().find("/nonexistent/ovsdb-server"), std::string::npos);
}

TEST_F(OwnServerTest, AMissingSchemaIsNamedAndEndsAnAgentThatStarts) {
    options_.schemaFile = "/nonexistent/vtep.ovsschema";
    agent_ = std::make_unique<Agent>(loop_, options_, *logs_);
    EXPECT_EQ(agent_->run(), 1);
    EXPECT_NE(console_.str().find("/nonexistent/vtep.ovsschema"), std::string::npos);
}

TEST_F(OwnServerTest, AServerThatCannotBeStartedLaterOnDoesNotEndTheAgent) {
    start();
    cli().enableOvsdbIs(false);
    ASSERT_TRUE(becomes([&] { return !serverRuns(); }));
    fs::rename(file("vtep.db"), file("aside"));
    fs::rename(options_.runDirectory, directory_ + "/moved");
    cli().enableOvsdbIs(true);
    ASSERT_TRUE(
        becomes([&] { return console_.str().find("it is started again") != std::string::npos; }));
    fs::rename(directory_ + "/moved", options_.runDirectory);
    EXPECT_TRUE(becomes(Vgw::stateConnected));
}

TEST_F(OwnServerTest, ARunDirectoryThatOthersMayWriteIsSaid) {
    fs::create_directory(options_.runDirectory);
    fs::permissions(options_.runDirectory, fs::perms::all);
    start();
    EXPECT_NE(console_.str().find("can be written by others"), std::string::npos);
}

}  // namespace
}  // namespace Vgwd
