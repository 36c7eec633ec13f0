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
// has brought none, the listener hears that the server is silent, when a byte comes, that it
// speaks, and when the echo is answered, and with it all that was sent before, that the silence is
// over.
// After `limit` the connection is given up; while a reply is outstanding it may take `patience`,
// since a server that puts together a first copy says nothing meanwhile. Bytes that come, whole
// message or not, count as life, and time in which this process did not run is not silence.
//
// Echoes alone are no answer: a request for which `patience` brings nothing else costs the
// connection. A reply that is still coming is something else, whatever it takes.
//
// While more than mostAnswers bytes of answers to echoes wait to be written, nothing is read, so
// that a server which asks and does not read costs no memory. It counts as silent meanwhile, and is
// given up when it has read nothing for `limit`. Requests do not count: a server that reads nothing
// of us before we have read what it sends would be waited for, and wait, for ever.
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
#include <optional>
#include <string>
#include <string_view>

namespace Ovsdb {

// The elements in a reply or a notification live until the handler returns.
struct RpcReply {
    std::optional<RpcError> error;
    simdjson::dom::element result;  ///< REQUIRES: !error
};

enum class Silence {
    begun,   ///< the server left an echo unanswered
    broken,  ///< a byte came; there may be more that it has yet to send
    over,    ///< all that it had to send before it answered has been handled
};

class RpcListener {
  public:
    virtual ~RpcListener() = default;
    virtual void onNotification(std::string_view method, simdjson::dom::element params) = 0;
    /// Begun and broken alternate until it is over.
    virtual void onSilence(Silence silence) = 0;
    /// The last call of a session, not made after close().
    virtual void onClosed(std::string const& reason) = 0;
};

struct RpcTimes {
    std::chrono::milliseconds probe{500};       ///< 0: no echoes of our own
    std::chrono::milliseconds patience{60000};  ///< how long a request may bring nothing
    std::chrono::milliseconds limit{10000};     ///< how long the server may be silent
};

class RpcSession : public std::enable_shared_from_this<RpcSession> {
  public:
    using ReplyHandler = std::function<void(RpcReply const&)>;

    static constexpr std::size_t mostAnswers = std::size_t{1} << 20;

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

    struct Request {
        ReplyHandler handler;
        std::string method;
        Clock::time_point sent;
    };
    struct Outgoing {
        std::string text;
        bool isAnswer;
    };

    void read();
    void readUnlessFull();
    void handleRead(std::error_code error, std::size_t size);
    void handleMessages();
    bool handleMessage(std::string_view text);
    bool handleReply(simdjson::dom::object message);
    bool handleCall(simdjson::dom::object message, std::string_view method);
    void send(std::string text, bool isAnswer = false);
    void write();
    void handleWritten(std::size_t size);
    void scheduleProbe();
    void handleProbe();
    void echo();
    void excuseDelay();
    Clock::time_point now() const { return Clock::now() - excused_; }
    std::string overdue() const;
    std::string overdueRequest() const;
    void noteSilence(std::chrono::nanoseconds silence);
    void fail(std::string const& reason);

    std::shared_ptr<Transport> transport_;
    RpcListener* listener_;  // null once the session is over
    RpcTimes times_;
    asio::steady_timer probe_;
    JsonFramer framer_;
    simdjson::dom::parser parser_;
    std::map<std::int64_t, Request> pending_;
    std::deque<Outgoing> outgoing_;
    std::size_t written_ = 0;  // of the first outgoing
    std::size_t answers_ = 0;  // bytes of answers among the outgoing
    std::int64_t nextId_ = 1;
    std::uint64_t received_ = 0;
    Clock::time_point lastByte_;
    Clock::time_point nextProbe_;  // when the timer should run out
    Clock::duration excused_{0};   // time in which this process did not run
    // By now(), which leaves that out.
    Clock::time_point lastHeard_;
    Clock::time_point lastAnswer_;   // a message came that is no echo
    Clock::time_point lastPart_;     // or a part of one that may be none
    Clock::time_point lastWritten_;  // the server read something
    bool echoing_ = false;           // an echo of ours is among the pending
    bool full_ = false;              // nothing is being read
    std::optional<Silence> silence_;
};

}  // namespace Ovsdb

#endif
