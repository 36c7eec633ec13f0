#ifndef TESTS_PROCESS_AGENT_UNDER_TEST_H
#define TESTS_PROCESS_AGENT_UNDER_TEST_H

// An agent in the test's own process beside a real ovsdb-server, which vtep-ctl, the field's own
// client, reads and writes. The test drives the agent by the entities of its tree, as whoever
// mounts them would. The agent's event loop runs only while the test waits for something.

#include <vgwd/agent/Agent.h>

#include <asio/io_context.hpp>

#include <gtest/gtest.h>

#include <sys/types.h>
#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <sstream>
#include <string>

namespace Vgwd {

/// A standalone ovsdb-server on the packaged hardware_vtep schema.
class RealServer {
  public:
    explicit RealServer(std::string directory);
    ~RealServer() { stop(); }
    RealServer(RealServer const&) = delete;
    RealServer& operator=(RealServer const&) = delete;

    /// Returns once it listens.
    void start();
    /// Ends it as a crash would.
    void stop();
    void signal(int number) const;
    std::string remote() const { return "unix:" + directory_ + "/db.sock"; }
    /// What vtep-ctl prints, without the last end of line. Fails the test when it fails.
    std::string vtepCtl(std::string const& words) const;

  private:
    std::string directory_;
    pid_t process_ = 0;
};

class AgentTest : public testing::Test {
  protected:
    AgentTest();
    ~AgentTest() override;

    /// The agent on that server (without one: on a server of its own), started.
    void startAgent();
    /// Until it holds, within ten seconds.
    bool becomes(std::function<bool()> const& holds);
    bool becomes(Vgw::SessionState state) {
        return becomes([&] { return session().sessionState() == state; });
    }
    bool inStep() {
        return becomes([&] { return entryState() == Qor::Dir::EntryState::ready; }) &&
               becomes([&] { return session().sessionState() != Vgw::stateUnknown; });
    }
    /// Lets the agent run for so long.
    void runFor(std::chrono::milliseconds time);

    Vgw::CliConfig& cli() { return *agent_->tree().cliConfig(); }
    Vgw::Config& config() { return *agent_->tree().config(); }
    Vgw::Status& status() { return *agent_->tree().status(); }
    Vgw::OvsdbSessionStatus& session() { return *agent_->tree().session(); }
    Qor::Dir::EntryState entryState() { return agent_->tree().root()->entryState("status"); }
    std::string text(Qor::String8 const& value) { return std::string(value.view()); }

    std::string directory_;
    RealServer server_;
    Options options_;
    asio::io_context loop_{1};
    std::ostringstream console_;
    std::ostringstream syslog_;
    std::string logFile_;
    std::optional<LogOutputs> logs_;
    std::unique_ptr<Agent> agent_;  // of the heap, so that its use after its end is seen
};

/// The folder below which the OVSDB tools are, as tools/ovs.sh prints it.
std::string const& ovsPrefix();

}  // namespace Vgwd

#endif
