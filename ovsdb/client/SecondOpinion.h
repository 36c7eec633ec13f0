#ifndef OVSDB_CLIENT_SECOND_OPINION_H
#define OVSDB_CLIENT_SECOND_OPINION_H

// Tells a dead link from a busy server, when a connection has gone silent: asks the same remote for
// an echo on a connection of its own, again and again until cancelled. A server that serves one
// request after the other answers no one while it is busy; one that answers here while the old
// connection stays silent is out of that connection's reach. The handler runs once, a moment after
// the answer, so that what comes on the old connection meanwhile is read first.

#include <ovsdb/client/Log.h>
#include <ovsdb/rpc/Connector.h>
#include <ovsdb/rpc/RpcSession.h>
#include <ovsdb/rpc/Tether.h>

#include <asio/io_context.hpp>
#include <asio/steady_timer.hpp>

#include <chrono>
#include <functional>
#include <memory>

namespace Ovsdb {

class SecondOpinion final : private RpcListener {
  public:
    explicit SecondOpinion(asio::io_context& loop) : loop_(loop), connector_(loop), timer_(loop) {}
    SecondOpinion(SecondOpinion const&) = delete;
    SecondOpinion& operator=(SecondOpinion const&) = delete;
    ~SecondOpinion() override { cancel(); }

    /// REQUIRES: none is being asked for.
    void ask(Remote const& remote, TlsFiles const& tls, std::function<void()> answered);
    /// The handler runs no more.
    void cancel();

  private:
    void onNotification(std::string_view, simdjson::dom::element) override {}
    void onSilence(Silence) override {}
    void onClosed(std::string const&) override { again(); }

    void connect();
    void echo(std::shared_ptr<Transport> transport);
    void again();
    void after(std::chrono::milliseconds wait, void (SecondOpinion::*step)());
    void tell();

    asio::io_context& loop_;
    Connector connector_;
    asio::steady_timer timer_;
    Remote remote_;
    TlsFiles tls_;
    std::function<void()> answered_;
    std::shared_ptr<RpcSession> session_;
    Tether turn_;  // of asking; what was begun in an earlier one counts no more
};

}  // namespace Ovsdb

#endif
