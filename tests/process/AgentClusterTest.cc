// An agent beside a real cluster of two servers.

#include "AgentUnderTest.h"

#include <vgwd/agent/ChildProcess.h>

#include <asio/ip/tcp.hpp>

#include <csignal>
#include <cstdlib>
#include <filesystem>

namespace Vgwd {
namespace {

class ClusterTest : public AgentTest {
  protected:
    ~ClusterTest() override {
        for (pid_t const member : members_) {
            ::kill(member, SIGKILL);
            awaitProgram(member);
        }
    }

    std::string file(int member, char const* ending) const {
        return directory_ + "/member" + std::to_string(member) + ending;
    }
    std::string freeAddress() {
        asio::ip::tcp::acceptor const acceptor(loop_, {asio::ip::make_address("127.0.0.1"), 0});
        return "tcp:127.0.0.1:" + std::to_string(acceptor.local_endpoint().port());
    }
    void tool(std::vector<std::string> words) {
        words.insert(words.begin(), ovsPrefix() + "/usr/bin/ovsdb-tool");
        ASSERT_EQ(awaitProgram(startProgram(words)), 0);
    }
    void serve(int member) {
        members_.push_back(startProgram(
            {ovsPrefix() + "/usr/sbin/ovsdb-server", "--no-chdir", "-vconsole:off", "-vsyslog:off",
             "--log-file=" + file(member, ".log"), "--unixctl=" + file(member, ".ctl"),
             "--remote=punix:" + file(member, ".sock"), file(member, ".db")}));
    }
    void startCluster() {
        std::string const first = freeAddress();
        tool({"create-cluster", file(1, ".db"), options_.schemaFile, first});
        serve(1);
        tool({"join-cluster", file(2, ".db"), "hardware_vtep", freeAddress(), first});
        serve(2);
    }
    void tell(int member, std::string const& words) const {
        std::string const command = ovsPrefix() + "/usr/bin/ovs-appctl -t " + file(member, ".ctl") +
                                    " " + words + " >/dev/null";
        EXPECT_EQ(std::system(command.c_str()), 0);
    }

    std::vector<pid_t> members_;
};

TEST_F(ClusterTest, AFollowerServesUntilItLeadsAndBeyond) {
    startCluster();
    options_.remotes = Ovsdb::parseRemotes("unix:" + file(2, ".sock"));
    startAgent();
    ASSERT_TRUE(becomes(Vgw::stateConnected));
    tell(1, "cluster/leave hardware_vtep");
    runFor(std::chrono::milliseconds(500));
    EXPECT_TRUE(inStep());
    EXPECT_EQ(session().sessionState(), Vgw::stateConnected);
}

TEST_F(ClusterTest, AManagerIsSetThroughAFollower) {
    startCluster();
    options_.remotes = Ovsdb::parseRemotes("unix:" + file(2, ".sock"));
    startAgent();
    ASSERT_TRUE(becomes(Vgw::stateConnected));
    cli().managerIpIs(Kelp::IpAddr("192.0.2.1"));
    ASSERT_TRUE(becomes([&] { return status().ovsdb()->managers() == 1; }));
    ASSERT_TRUE(becomes([&] { return session().numSuccessfulMsg() == 2; }));
    EXPECT_EQ(session().sessionState(), Vgw::stateConnected);
}

}  // namespace
}  // namespace Vgwd
