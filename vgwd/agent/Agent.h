#ifndef VGWD_AGENT_AGENT_H
#define VGWD_AGENT_AGENT_H

// The agent: a database client, the mirror that it feeds, and the tree in which the mirror stands:
//
//     /vgw/status           Vgw::Status, with ovsdb (the mirror) and ovsdbSessionStatus below it
//     /vgw/ucastMacsLocal   and mcastMacsLocal, ucastMacsRemote, mcastMacsRemote: directories of
//                           MAC rows
//
// While the mirror is not in step with the database, these entries of the tree are stale and the
// session's state is stateDisconnected; the rows stay. The session's books are kept for the
// monitor, the one request that the agent makes.

#include <ovsdb/client/Client.h>
#include <ovsdb/mirror/Mirror.h>
#include <qor/tree/Dir.h>
#include <vgw/agent/Status.h>
#include <vgwd/agent/EmbeddedServer.h>
#include <vgwd/agent/Options.h>
#include <vgwd/watch/Watcher.h>

#include <asio/io_context.hpp>
#include <asio/signal_set.hpp>
#include <asio/steady_timer.hpp>

#include <memory>
#include <optional>
#include <string>

namespace Vgwd {

class Agent final : private Ovsdb::ClientListener {
  public:
    Agent(asio::io_context& loop, Options options, Ovsdb::LogSink log);
    ~Agent() override;

    /// Runs until a signal or, with --once, the end of its task; the exit code.
    int run();

  private:
    void onPlan(Ovsdb::MonitorPlan const& plan) override;
    void onChanges(std::vector<Ovsdb::RowChange> const& changes) override;
    void onState(Ovsdb::ClientState state, std::string const& reason) override;
    void onRoundFailed(std::string const& reason) override;

    Ovsdb::MacDirectories makeDirectories() const;
    Ovsdb::ClientOptions clientOptions();
    void awaitSignal();
    void startTimeout();
    void writePidFile() const;
    void writeDump() const;
    void printOnce();
    void end(int exitCode);
    void entriesAre(Qor::Dir::EntryState state);
    void accountLoss(std::string const& reason);

    asio::io_context& loop_;
    Options options_;
    Ovsdb::LogSink log_;
    asio::signal_set signals_;
    asio::steady_timer timeout_;
    std::optional<EmbeddedServer> server_;

    Qor::Dir::Ptr root_;
    Vgw::Status::Ptr status_;
    Vgw::OvsdbSessionStatus::Ptr session_;
    std::optional<Ovsdb::Client> client_;
    std::optional<Ovsdb::Mirror> mirror_;
    std::optional<Watcher> watcher_;
    std::string lastReason_;
    bool synced_ = false;      // a first copy was applied
    bool monitoring_ = false;  // a monitor was asked for and not told as lost
    int exitCode_ = 0;
};

}  // namespace Vgwd

#endif
