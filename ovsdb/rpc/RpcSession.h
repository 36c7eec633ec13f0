#ifndef OVSDB_RPC_RPC_SESSION_H
#define OVSDB_RPC_RPC_SESSION_H

// JSON-RPC 1.0 as OVSDB speaks it (RFC 7047 section 4) on one connection: requests and their
// replies, notifications both ways, echoes both ways. A session is used on its event loop's thread
// only.
//
// Replies are matched by id, and ids are never used twice on a connection. A request that is
// pending when the connection ends is told so once (RpcError::Kind::lost), before the listener
// hears that the session closed. The server's echoes are answered before anything behind them is
// looked at. Our own echo is sent after `probe` without a byte from the server; when twice `probe`
// has brought none, the listener hears that the server is silent, and when a byte comes, that it is
// not.
// After `limit` the connection is given up; while a reply is outstanding it may take `patience`,
// since a server that puts together a first copy says nothing meanwhile. Bytes that come, whole
// message or not, count as life, and time in which this process did not run is not silence.
//
// No exception leaves the session: what the peer sends wrong, and what a handler throws, closes it
// with that reason.

#include <ovsdb/rpc/JsonFramer.h>
#include <ovsdb/rpc/RpcError.h>
#include <ovsdb/rpc/Transport.h>

#include <simdjson.h>
#include <asio/io_context.hpp>
#include <asio/steady_timer.hpp>
#include <nlohmann/json_fwd.hpp>

#include <chrono>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>

namespace Ovsdb {

// The elements in a reply or a notification live until the handler returns.
struct RpcReply {
    std::optional<RpcError> error;
    simdjson::dom::element result;  ///< REQUIRES: !error
};

class RpcListener {
  public:
    virtual ~RpcListener() = default;
    virtual void onNotification(std::string_view method, simdjson::dom::element params) = 0;
    /// The server left an echo unanswered, or spoke again after that.
    virtual void onSilent(bool silent) = 0;
    /// The last call of a session, not made after close().
    virtual void onClosed(std::string const& reason) = 0;
};

struct RpcTimes {
    std::chrono::milliseconds probe{500};       ///< 0: no echoes of our own
    std::chrono::milliseconds patience{60000};  ///< as limit, while a reply is outstanding
    std::chrono::milliseconds limit{10000};     ///< how long the server may be silent
};

class RpcSession : public std::enable_shared_from_this<RpcSession> {
  public:
    using ReplyHandler = std::function<void(RpcReply const&)>;

    RpcSession(asio::io_context& loop, std::shared_ptr<Transport> transport, RpcListener& listener,
               RpcTimes times);

    void start();
    /// Sends a request; gives its id. The handler runs exactly once, unless close() comes first.
    std::int64_t request(std::string_view method, nlohmann::json const& params,
                         ReplyHandler handler);
    void notify(std::string_view method, nlohmann::json const& params);
    /// Ends the session; neither listener nor handlers hear of it.
    void close();
    /// The same, but the handlers of what is pending hear that it is lost, and why.
    void abandon(std::string const& reason);

    std::uint64_t bytesReceived() const { return received_; }
    std::size_t outstanding() const { return pending_.size(); }
    /// Since the last byte of what is being handled came.
    std::chrono::milliseconds sinceLastByte() const;

  private:
    using Clock = std::chrono::steady_clock;

    void read();
    void handleRead(std::error_code error, std::size_t size);
    void handleMessages();
    void handleMessage(std::string_view text);
    void handleReply(simdjson::dom::object message);
    void handleCall(simdjson::dom::object message, std::string_view method);
    void send(std::string text);
    void write();
    void scheduleProbe();
    void handleProbe();
    bool isPastLimit(std::chrono::milliseconds silence) const;
    void heard();
    void fail(std::string const& reason);

    std::shared_ptr<Transport> transport_;
    RpcListener* listener_;  // null once the session is over
    RpcTimes times_;
    asio::steady_timer probe_;
    JsonFramer framer_;
    simdjson::dom::parser parser_;
    std::map<std::int64_t, ReplyHandler> pending_;
    std::deque<std::string> outgoing_;
    std::int64_t nextId_ = 1;
    std::uint64_t received_ = 0;
    Clock::time_point lastHeard_;
    Clock::time_point lastByte_;
    Clock::time_point nextProbe_;  // when the timer should run out
    bool echoing_ = false;         // an echo of ours is among the pending
    bool silent_ = false;          // the listener was told so
};

}  // namespace Ovsdb

#endif
