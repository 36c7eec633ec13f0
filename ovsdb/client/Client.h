#ifndef OVSDB_CLIENT_CLIENT_H
#define OVSDB_CLIENT_CLIENT_H

// Keeps a copy of one database's mirrored rows in step with a server, from start() to stop().
//
//     disconnected -> connecting -> copying -> following -> (any loss) -> disconnected
//
// The remotes are tried in turn; after a round without success the client waits (Backoff). On a
// connection it becomes change-aware, looks at _Server, reads the schema, and monitors with the
// best method that the server has (monitor_cond_since, monitor_cond, monitor), naming the columns.
// A whole copy that comes after a loss is compared with what is kept: the listener hears of
// differences only, and the rows are never gone meanwhile. A cluster's server may instead send what
// happened since the last transaction seen. When the server takes back the monitor (the schema was
// changed, the database removed), schema and monitor are asked for again on the same connection. A
// connection that goes silent is told so after a second, and left when the server turns out to
// answer on another one (SecondOpinion).
//
// A cluster's member that is behind what was seen of its log is skipped (ClusterProgress).
//
// While following it also takes transactions. One that is not answered in time costs the
// connection: a cluster's member without its majority would keep it for ever, and another one may
// not.
//
// The listener is called on the event loop's thread. Each onChanges() is one message of the server,
// applied as a whole. Not thread-safe; outlives neither loop nor listener.

#include <ovsdb/client/Backoff.h>
#include <ovsdb/client/ClientListener.h>
#include <ovsdb/client/ClusterProgress.h>
#include <ovsdb/client/Log.h>
#include <ovsdb/client/SecondOpinion.h>
#include <ovsdb/client/ServerDatabases.h>
#include <ovsdb/rpc/Connector.h>
#include <ovsdb/rpc/RpcSession.h>
#include <ovsdb/rpc/Tether.h>
#include <ovsdb/schema/MonitorPlan.h>
#include <ovsdb/store/RowStore.h>
#include <ovsdb/store/UpdateReader.h>

#include <asio/io_context.hpp>
#include <asio/steady_timer.hpp>

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace Ovsdb {

struct ClientOptions {
    std::vector<Remote> remotes;
    TlsFiles tls;
    std::string database = "hardware_vtep";
    RpcTimes times;
    std::chrono::milliseconds connectLimit{3000};
    std::chrono::milliseconds leastBackoff{100};
    std::chrono::milliseconds mostBackoff{1000};
    std::chrono::milliseconds transactLimit{10000};
    std::chrono::milliseconds indexPause{1000};  ///< before a cluster's log is asked for its index
};

class Client final : private RpcListener {
  public:
    Client(asio::io_context& loop, ClientOptions options, ClientListener& listener, LogSink log);
    ~Client() override;

    /// What became of a transaction: null, or why it failed.
    using TransactHandler = std::function<void(RpcError const*)>;

    /// REQUIRES: stopped, as a new client is.
    void start();
    /// Ends the connection at once; the rows stay, and the listener hears nothing more.
    void stop();
    /// The same, but takes back the monitor first, and tells when all is over: soon, whether the
    /// server answers or not.
    void leave(std::function<void()> left);
    /// Whether what is lost now is lost because of that.
    bool isLeaving() const { return static_cast<bool>(left_); }
    /// Sends operations as one transaction; `summary` is their detail in the books. The handler
    /// runs once, unless stop() comes first. REQUIRES: following.
    void transact(nlohmann::json const& operations, std::string const& summary,
                  TransactHandler handler);

    ClientState state() const { return state_; }
    RowStore const& rows() const { return store_; }
    /// As "unix:/run/db.sock".
    std::string remoteName() const { return options_.remotes[remote_].text(); }

  private:
    void onNotification(std::string_view method, simdjson::dom::element params) override;
    void onSilence(Silence silence) override;
    void onClosed(std::string const& reason) override;

    void connect();
    void handleConnected(std::shared_ptr<Transport> transport, std::string const& error);
    void lose(std::string const& reason);
    void sayLoss(std::string const& reason, bool roundFailed);
    void retryIn(Backoff::Duration wait);
    void abandon(std::string const& reason);
    void stateIs(ClientState state, std::string const& reason);

    void watchServer(bool conditional);
    void handleServerUpdate(simdjson::dom::element tableUpdates);
    bool memberIsUsable();
    void askSchema();
    void handleSchema(RpcReply const& reply);
    void startMonitor();
    void handleMonitor(RpcReply const& reply);
    void handleMonitorError(RpcError const& error);
    void applyCopy(simdjson::dom::element result);
    void handleCopied();
    std::string standing() const;
    void limitTransact(std::shared_ptr<asio::steady_timer> const& timer);
    void finishLeaving();
    std::string there() const { return options_.database + ", " + remoteName(); }
    void apply(simdjson::dom::element tableUpdates, UpdateForm form, bool whole);
    void handleUpdate(std::string_view method, simdjson::dom::array params);
    void handleCanceled(std::string const& id);
    bool noteTransaction(simdjson::dom::element id);
    void askIndexSoon();
    void askIndex();
    void handleIndex(RpcReply const& reply);
    void say(LogLevel level, std::string const& text) const {
        log_(level, remoteName() + ": " + text);
    }

    asio::io_context& loop_;
    ClientOptions options_;
    ClientListener& listener_;
    LogSink log_;
    Connector connector_;
    asio::steady_timer retry_;  // or, while leaving, how long the server may take
    Backoff backoff_;
    SecondOpinion opinion_;
    std::shared_ptr<RpcSession> session_;
    ClientState state_ = ClientState::disconnected;
    Tether life_;                    // cut at each start and end of a connection
    std::function<void()> left_;     // set while leaving
    std::vector<std::string> said_;  // of each remote: what was said of it since the last success
    std::size_t remote_ = 0;
    std::size_t failures_ = 0;  // remotes tried since the last success or wait

    ServerDatabases server_;
    bool silent_ = false;  // the listener was told so
    ClusterProgress progress_;
    asio::steady_timer askIndex_;
    bool asksIndex_ = false;  // the timer runs, or the answer is awaited

    MonitorPlan plan_;
    RowStore store_;
    std::size_t method_ = 0;       // of the monitor methods, on this connection
    std::int64_t monitors_ = 0;    // started on this connection
    std::string monitorId_;        // of the running monitor; updates of another one are dropped
    std::string lastTransaction_;  // empty: no server can carry on from what is kept
};

}  // namespace Ovsdb

#endif
