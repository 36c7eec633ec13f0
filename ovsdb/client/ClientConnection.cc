// The part of the client that is about having a connection at all.

#include <ovsdb/client/Client.h>

#include <nlohmann/json.hpp>

namespace Ovsdb {

Client::Client(asio::io_context& loop, ClientOptions options, ClientListener& listener, LogSink log)
    : loop_(loop),
      options_(std::move(options)),
      listener_(listener),
      log_(std::move(log)),
      connector_(loop),
      retry_(loop),
      backoff_(options_.leastBackoff, options_.mostBackoff) {}

Client::~Client() { stop(); }

void Client::start() { connect(); }

void Client::stop() {
    retry_.cancel();
    connector_.cancel();
    if (session_ != nullptr) session_->close();
    session_.reset();
    state_ = ClientState::disconnected;
}

void Client::connect() {
    stateIs(ClientState::connecting, "");
    connector_.connect(options_.remotes[remote_], options_.tls, options_.connectLimit,
                       [this](std::shared_ptr<Transport> transport, std::string const& error) {
                           handleConnected(std::move(transport), error);
                       });
}

void Client::handleConnected(std::shared_ptr<Transport> transport, std::string const& error) {
    if (transport == nullptr) return lose(error);
    say(LogLevel::debug, "connected");
    server_.clear();
    method_ = 0;
    monitors_ = 0;
    monitorId_.clear();
    session_ = std::make_shared<RpcSession>(loop_, std::move(transport),
                                            static_cast<RpcListener&>(*this), options_.times);
    session_->start();
    // A server that knows neither answers with an error, and that is all right.
    session_->request("set_db_change_aware", {true}, [](RpcReply const&) {});
    watchServer(true);
    askSchema();
}

void Client::onClosed(std::string const& reason) {
    session_.reset();
    lose(reason);
}

// This connection serves us no more, though it lives.
void Client::abandon(std::string const& reason) {
    if (session_ != nullptr) session_->close();
    session_.reset();
    lose(reason);
}

void Client::lose(std::string const& reason) {
    std::string const whom = remoteName();
    bool const wasInStep = state_ == ClientState::inStep;
    remote_ = (remote_ + 1) % options_.remotes.size();
    bool const roundFailed = ++failures_ >= options_.remotes.size();
    auto const wait = roundFailed ? backoff_.next() : Backoff::Duration(0);
    std::string text = whom + ": " + reason;
    if (wasInStep) text += "; the mirror is kept, but out of step";
    if (roundFailed) text += "; next try in " + std::to_string(wait.count()) + " ms";
    log_(LogLevel::warning, text);
    stateIs(ClientState::disconnected, whom + ": " + reason);
    if (roundFailed) {
        failures_ = 0;
        listener_.onRoundFailed(whom + ": " + reason);
    }
    retry_.expires_after(wait);
    retry_.async_wait([this](std::error_code error) {
        if (!error) connect();
    });
}

void Client::stateIs(ClientState state, std::string const& reason) {
    if (state == state_) return;
    state_ = state;
    listener_.onState(state, reason);
}

}  // namespace Ovsdb
