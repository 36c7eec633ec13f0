#ifndef OVSDB_CLIENT_CLIENT_H
#define OVSDB_CLIENT_CLIENT_H

// Keeps a copy of one database's mirrored rows in step with a server, for as long as it runs.
//
//     disconnected -> connecting -> copying -> inStep -> (any loss) -> disconnected
//
// The remotes are tried in turn; after a round without success the client waits (Backoff). On a
// connection it becomes change-aware, looks at _Server, reads the schema, and monitors with the
// best method that the server has (monitor_cond_since, monitor_cond, monitor), naming the columns.
// A whole copy that comes after a loss is compared with what is kept: the listener hears of
// differences only, and the rows are never gone meanwhile. A cluster's server may instead send what
// happened since the last transaction seen. When the server takes back the monitor (the schema was
// changed, the database removed), schema and monitor are asked for again on the same connection.
//
// The listener is called on the event loop's thread. Each onChanges() is one message of the server,
// applied as a whole. Not thread-safe; outlives neither loop nor listener.

#include <ovsdb/client/Backoff.h>
#include <ovsdb/client/Log.h>
#include <ovsdb/client/ServerDatabases.h>
#include <ovsdb/rpc/Connector.h>
#include <ovsdb/rpc/RpcSession.h>
#include <ovsdb/schema/MonitorPlan.h>
#include <ovsdb/store/RowStore.h>
#include <ovsdb/store/UpdateReader.h>

#include <asio/io_context.hpp>
#include <asio/steady_timer.hpp>

#include <chrono>
#include <memory>
#include <string>
#include <vector>

namespace Ovsdb {

enum class ClientState { disconnected, connecting, copying, inStep };

class ClientListener {
  public:
    virtual ~ClientListener() = default;
    /// Before the rows: what the server's schema has of the mirrored tables.
    virtual void onPlan(MonitorPlan const& plan) = 0;
    /// The store already holds the new rows; the changes live until this returns.
    virtual void onChanges(std::vector<RowChange> const& changes) = 0;
    /// `reason` tells why, on the way to disconnected or back to copying.
    virtual void onState(ClientState state, std::string const& reason) = 0;
    /// All remotes were tried once without success.
    virtual void onRoundFailed(std::string const& reason) = 0;
};

struct ClientOptions {
    std::vector<Remote> remotes;
    TlsFiles tls;
    std::string database = "hardware_vtep";
    RpcTimes times;
    std::chrono::milliseconds connectLimit{5000};
    std::chrono::milliseconds leastBackoff{1000};
    std::chrono::milliseconds mostBackoff{8000};
};

class Client final : private RpcListener {
  public:
    Client(asio::io_context& loop, ClientOptions options, ClientListener& listener, LogSink log);
    ~Client() override;

    void start();
    /// Ends the connection for good; the rows stay, and the listener hears nothing more.
    void stop();

    ClientState state() const { return state_; }
    RowStore const& rows() const { return store_; }
    /// As "unix:/run/db.sock".
    std::string remoteName() const { return options_.remotes[remote_].text(); }

  private:
    void onNotification(std::string_view method, simdjson::dom::element params) override;
    void onClosed(std::string const& reason) override;

    void connect();
    void handleConnected(std::shared_ptr<Transport> transport, std::string const& error);
    void lose(std::string const& reason);
    void abandon(std::string const& reason);
    void stateIs(ClientState state, std::string const& reason);

    void watchServer(bool conditional);
    void handleServerUpdate(simdjson::dom::element tableUpdates);
    bool memberIsUsable();
    void askSchema();
    void handleSchema(RpcReply const& reply);
    void startMonitor();
    void handleMonitor(RpcReply const& reply);
    void applyCopy(simdjson::dom::element result);
    void apply(simdjson::dom::element tableUpdates, UpdateForm form, bool whole);
    void handleUpdate(std::string_view method, simdjson::dom::array params);
    void handleCanceled(std::string const& id);
    void noteTransaction(simdjson::dom::element id);
    void say(LogLevel level, std::string const& text) const {
        log_(level, remoteName() + ": " + text);
    }

    asio::io_context& loop_;
    ClientOptions options_;
    ClientListener& listener_;
    LogSink log_;
    Connector connector_;
    asio::steady_timer retry_;
    Backoff backoff_;
    std::shared_ptr<RpcSession> session_;
    ClientState state_ = ClientState::disconnected;
    std::size_t remote_ = 0;
    std::size_t failures_ = 0;  // remotes tried since the last success or wait

    ServerDatabases server_;
    std::string clusterId_;
    std::int64_t clusterIndex_ = 0;  // the furthest a member's log was seen at

    MonitorPlan plan_;
    RowStore store_;
    std::size_t method_ = 0;       // of the monitor methods, on this connection
    std::int64_t monitors_ = 0;    // started on this connection
    std::string monitorId_;        // of the running monitor; updates of another one are dropped
    std::string lastTransaction_;  // empty: no server can carry on from what is kept
};

}  // namespace Ovsdb

#endif
