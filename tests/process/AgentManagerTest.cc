// The configured manager becomes the database's manager: managerIp and managerPort of CliConfig.

#include "AgentUnderTest.h"

namespace Vgwd {
namespace {

constexpr char const* target = "ssl:192.0.2.1:6632";

class ManagerTest : public AgentTest {
  protected:
    ManagerTest() { server_.start(); }
    std::string manager() const { return server_.vtepCtl("get-manager"); }
    bool managerBecomes(std::string const& wanted) {
        return becomes([&] { return manager() == wanted; });
    }
    void start() {
        startAgent();
        ASSERT_TRUE(inStep());
    }
};

TEST_F(ManagerTest, SettingManagerIpSetsTheDatabasesManager) {
    start();
    cli().managerIpIs(Kelp::IpAddr("192.0.2.1"));
    EXPECT_TRUE(managerBecomes(target));
    EXPECT_EQ(server_.vtepCtl("get Global . managers").size(), 38U);
}

TEST_F(ManagerTest, ClearingManagerIpRemovesIt) {
    start();
    cli().managerIpIs(Kelp::IpAddr("192.0.2.1"));
    ASSERT_TRUE(managerBecomes(target));
    cli().managerIpIs(Kelp::IpAddr());
    EXPECT_TRUE(managerBecomes(""));
    EXPECT_EQ(server_.vtepCtl("--columns=target list Manager"), "");
}

TEST_F(ManagerTest, AnAddressAndAPortThatAreSetTogetherAreOneTransaction) {
    start();
    cli().managerIpIs(Kelp::IpAddr("192.0.2.2"));
    cli().managerPortIs(6640);
    EXPECT_TRUE(managerBecomes("ssl:192.0.2.2:6640"));
    cli().managerPortIs(6641);
    EXPECT_TRUE(managerBecomes("ssl:192.0.2.2:6641"));
    // The monitor, and one for each of these.
    EXPECT_TRUE(becomes([&] { return session().numSuccessfulMsg() == 3; }));
    runFor(std::chrono::milliseconds(100));
    EXPECT_EQ(session().numSuccessfulMsg(), 3U);
}

TEST_F(ManagerTest, TheConfiguredManagerIsTheOnlyOne) {
    server_.vtepCtl("set-manager tcp:127.0.0.1:1 tcp:127.0.0.1:2");
    start();
    cli().managerIpIs(Kelp::IpAddr("192.0.2.1"));
    EXPECT_TRUE(managerBecomes(target));
}

TEST_F(ManagerTest, ARowThatHasTheTargetAlreadyIsKeptAsItIs) {
    server_.vtepCtl(std::string("set-manager ") + target + " tcp:127.0.0.1:2");
    std::string const row = server_.vtepCtl(std::string("get Manager ") + target + " _uuid");
    server_.vtepCtl(std::string("set Manager ") + target + " max_backoff=5000");
    start();
    cli().managerIpIs(Kelp::IpAddr("192.0.2.1"));
    EXPECT_TRUE(managerBecomes(target));
    EXPECT_EQ(server_.vtepCtl(std::string("get Manager ") + target + " _uuid max_backoff"),
              row + "\n5000");
}

TEST_F(ManagerTest, AManagerThatIsThereAlreadyIsNotWrittenAgain) {
    server_.vtepCtl(std::string("set-manager ") + target);
    start();
    cli().managerIpIs(Kelp::IpAddr("192.0.2.1"));
    runFor(std::chrono::milliseconds(200));
    EXPECT_EQ(session().numSuccessfulMsg(), 1U);
    cli().managerIpIs(Kelp::IpAddr());
    EXPECT_TRUE(managerBecomes(""));
}

TEST_F(ManagerTest, WithoutAConfiguredManagerTheDatabasesStay) {
    server_.vtepCtl("set-manager tcp:127.0.0.1:1");
    start();
    cli().managerPortIs(1);
    runFor(std::chrono::milliseconds(200));
    EXPECT_EQ(manager(), "tcp:127.0.0.1:1");
    EXPECT_EQ(session().numSuccessfulMsg(), 1U);
}

TEST_F(ManagerTest, ClearingLeavesManagersAloneThatOthersHaveSet) {
    start();
    cli().managerIpIs(Kelp::IpAddr("192.0.2.1"));
    ASSERT_TRUE(managerBecomes(target));
    server_.vtepCtl(std::string("set-manager ") + target + " tcp:127.0.0.1:1");
    runFor(std::chrono::milliseconds(200));
    cli().managerIpIs(Kelp::IpAddr());
    EXPECT_TRUE(managerBecomes("tcp:127.0.0.1:1"));
}

TEST_F(ManagerTest, ADatabaseThatComesBackWithoutTheManagerIsGivenItAgain) {
    start();
    cli().managerIpIs(Kelp::IpAddr("192.0.2.1"));
    ASSERT_TRUE(managerBecomes(target));
    server_.stop();
    ASSERT_TRUE(becomes([&] { return entryState() == Qor::Dir::EntryState::stale; }));
    server_.start();
    server_.vtepCtl("del-manager");
    EXPECT_TRUE(managerBecomes(target));
}

TEST_F(ManagerTest, AManagerThatIsClearedWhileCutOffIsRemovedAfterwards) {
    start();
    cli().managerIpIs(Kelp::IpAddr("192.0.2.1"));
    ASSERT_TRUE(managerBecomes(target));
    server_.stop();
    ASSERT_TRUE(becomes([&] { return entryState() == Qor::Dir::EntryState::stale; }));
    cli().managerIpIs(Kelp::IpAddr());
    runFor(std::chrono::milliseconds(50));
    server_.start();
    EXPECT_TRUE(managerBecomes(""));
}

TEST_F(ManagerTest, AnotherWritersChangeAtTheSameTimeFailsTheTransactionWhichIsRepeated) {
    start();
    // The agent has not seen this when it sends its transaction.
    server_.vtepCtl("set-manager tcp:127.0.0.1:1");
    cli().managerIpIs(Kelp::IpAddr("192.0.2.1"));
    ASSERT_TRUE(becomes([&] { return session().numFailedMsg() == 1; }));
    EXPECT_EQ(text(session().lastErrorCode()), "timed out");
    EXPECT_TRUE(managerBecomes(target));
}

}  // namespace
}  // namespace Vgwd
