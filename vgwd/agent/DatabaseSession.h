#ifndef VGWD_AGENT_DATABASE_SESSION_H
#define VGWD_AGENT_DATABASE_SESSION_H

// The OVSDB side of the agent: the client, the server of our own if there is to be one, the mirror
// that the client feeds, the session's books and the manager's row. It is enabled or not.
//
// A schema that lacks something which every version has keeps the mirror out of step: the rest is
// followed and can be written, what was held of the missing part is kept, and everything that tells
// how the mirror stands names it.
//
// While it is not enabled, there is no connection and no server of ours; the rows stay as they
// were, their entries in the tree stale. Enabled again, they are brought up to date like after any
// loss: whoever watches them hears of real differences alone.

#include <ovsdb/client/Client.h>
#include <ovsdb/mirror/Mirror.h>
#include <vgwd/agent/DatabaseBooks.h>
#include <vgwd/agent/EmbeddedServer.h>
#include <vgwd/agent/ManagerWriter.h>
#include <vgwd/agent/Options.h>
#include <vgwd/agent/SessionBooks.h>
#include <vgwd/agent/StateTree.h>
#include <vgwd/write/DatabaseWriter.h>

#include <asio/io_context.hpp>

#include <optional>
#include <string>

namespace Vgwd {

class SessionListener {
  public:
    virtual ~SessionListener() = default;
    /// Something in the tree may have changed.
    virtual void onStep() = 0;
    /// The mirror is in step, and the books say so.
    virtual void onInStep() = 0;
    /// It follows what the schema has, which is not all; `gap` names what is missing.
    virtual void onIncomplete(std::string const& gap) = 0;
    /// How the mirror stands, in words that begin with "in step" or "out of step".
    virtual void onStanding(std::string const& words) = 0;
    /// All servers were tried without success, or the server of our own could not be started.
    virtual void onFailed(std::string const& reason) = 0;
    /// The server of our own listens.
    virtual void onListening() = 0;
    /// The OVSDB side is off.
    virtual void onOff() = 0;
};

class DatabaseSession final : private Ovsdb::ClientListener, private WriteListener {
  public:
    DatabaseSession(asio::io_context& loop, Options const& options, StateTree& tree,
                    SessionListener& listener, Ovsdb::LogSink log);
    ~DatabaseSession() override;

    void enabledIs(bool enabled);
    /// Empty: no manager is configured.
    void managerTargetIs(std::string const& target) { manager_.targetIs(target); }
    /// Whether the database of the server of our own is kept when it ends.
    void persistIs(bool persist);
    /// A child of ours may have ended.
    void handleChild();
    /// Ends everything at once, and waits for the server of our own. Nothing is told any more.
    void stop();

    Ovsdb::Mirror const& mirror() const { return mirror_; }
    /// Takes what peers write.
    DatabaseWriter& writer() { return writer_; }
    /// Tells of a write that was undone, whoever undid it.
    void onUndone(std::string const& path, std::string const& peer,
                  std::string const& reason) override;

  private:
    void onPlan(Ovsdb::MonitorPlan const& plan) override;
    void onChanges(std::vector<Ovsdb::RowChange> const& changes) override;
    void onState(Ovsdb::ClientState state, std::string const& reason) override;
    void onRequest(Ovsdb::RequestKind kind, std::string const& detail) override;
    void onOutcome(Ovsdb::RequestKind kind, std::string const& detail,
                   Ovsdb::RpcError const* error) override;
    void onSilent(bool silent) override;
    void onRoundFailed(std::string const& reason) override;
    void onTaken() override { report_.taken(); }

    void addServer(asio::io_context& loop, Options const& options, Ovsdb::LogSink const& log);
    void begin();
    void end();
    void handleLeft();
    void handleOutOfStep(std::string const& reason);
    void handleCopied();
    void standingIs(Qor::Dir::EntryState state, std::string const& reason);
    Qor::Dir::EntryState lost() const;

    StateTree& tree_;
    SessionListener& listener_;
    std::optional<EmbeddedServer> server_;
    Ovsdb::Client client_;
    Ovsdb::Mirror mirror_;
    SessionBooks books_;
    DatabaseBooks report_;
    ManagerWriter manager_;
    DatabaseWriter writer_;
    Ovsdb::LogSink log_;
    std::string gap_;  // of the schema; empty: it has all
    bool enabled_ = false;
    bool running_ = false;  // the client was started
    bool leaving_ = false;  // it is ending
    bool synced_ = false;   // there are rows of a first copy
};

}  // namespace Vgwd

#endif
