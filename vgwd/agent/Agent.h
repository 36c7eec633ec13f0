#ifndef VGWD_AGENT_AGENT_H
#define VGWD_AGENT_AGENT_H

// The agent: the tree of its state, the OVSDB side that keeps it, and what the process does beside:
// signals, the one print of --once, dumps, the process id. docs/agent.md tells operators what each
// attribute of the tree does.
//
// What stands in the tree is all of its interface: whoever has root() configures and watches it.

#include <ovsdb/rpc/Tether.h>
#include <vgwd/agent/ConfigReactor.h>
#include <vgwd/agent/DatabaseSession.h>
#include <vgwd/agent/LogOutputs.h>
#include <vgwd/agent/Options.h>
#include <vgwd/agent/ServiceNotice.h>
#include <vgwd/agent/StateTree.h>
#include <vgwd/agent/TreeServer.h>
#include <vgwd/serve/FileLock.h>
#include <vgwd/watch/Watcher.h>

#include <asio/io_context.hpp>
#include <asio/signal_set.hpp>
#include <asio/steady_timer.hpp>

#include <optional>
#include <string>

namespace Vgwd {

class Agent final : private SessionListener {
  public:
    /// What goes wrong before start() has set the logs' levels is said as they are.
    Agent(asio::io_context& loop, Options options, LogOutputs& logs);
    ~Agent() override;

    /// start(), the event loop until a signal or, with --once, the end of its task, stop(); the
    /// exit code.
    int run();

    /// Begins to work in the event loop, by what the command line says. Raises std::runtime_error
    /// when that is impossible.
    void start();
    /// Ends all that it does, and waits for what it started.
    void stop();

    StateTree& tree() { return tree_; }
    Server const& server() const { return served_.server(); }

  private:
    void onStep() override;
    void onInStep() override;
    void onIncomplete(std::string const& gap) override;
    void onStanding(std::string const& words) override;
    void onFailed(std::string const& reason) override;
    void onListening() override;
    void onOff() override;

    void addWatcher();
    void prepareRunDirectory();
    void serve();
    void configure();
    void awaitSignal();
    void startTimeout();
    void writeDump();
    void handleReady();
    void reload();
    void writePidFile();
    void end(int exitCode);

    asio::io_context& loop_;
    Options options_;
    LogOutputs& logs_;
    Ovsdb::LogSink log_;
    asio::signal_set signals_;
    asio::steady_timer timeout_;
    Ovsdb::Tether tether_;
    StateTree tree_;
    FileLock lock_;
    DatabaseSession session_;
    TreeServer served_;
    ConfigReactor::Ptr reactor_;
    std::optional<Watcher> watcher_;
    ServiceNotice notice_;
    std::string standing_;  // as the service manager was told
    std::string lastReason_ = "no server has answered";
    bool madeRunDirectory_ = false;
    bool starting_ = false;  // our own server is to run and has not listened yet
    int exitCode_ = 0;
};

}  // namespace Vgwd

#endif
