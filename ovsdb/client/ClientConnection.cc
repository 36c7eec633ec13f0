// The part of the client that is about having a connection at all.

#include <ovsdb/client/Client.h>

#include <nlohmann/json.hpp>

#include <utility>

namespace Ovsdb {
namespace {

constexpr std::chrono::milliseconds leaveLimit{1000};

}  // namespace

Client::Client(asio::io_context& loop, ClientOptions options, ClientListener& listener, LogSink log)
    : loop_(loop),
      options_(std::move(options)),
      listener_(listener),
      log_(std::move(log)),
      connector_(loop),
      retry_(loop),
      backoff_(options_.leastBackoff, options_.mostBackoff),
      opinion_(loop),
      said_(options_.remotes.size()),
      askIndex_(loop) {}

Client::~Client() { stop(); }

void Client::start() {
    life_.cut();
    connect();
}

void Client::stop() {
    life_.cut();
    left_ = nullptr;
    retry_.cancel();
    askIndex_.cancel();
    connector_.cancel();
    opinion_.cancel();
    if (session_ != nullptr) session_->close();
    session_.reset();
    backoff_.reset();
    failures_ = 0;
    silent_ = false;
    said_.assign(said_.size(), "");
    state_ = ClientState::disconnected;
}

void Client::leave(std::function<void()> left) {
    left_ = std::move(left);
    if (state_ != ClientState::following) return finishLeaving();
    std::string const detail = "monitor of " + there();
    listener_.onRequest(RequestKind::cancel, detail);
    session_->request("monitor_cancel", {monitorId_}, [this, detail](RpcReply const& reply) {
        listener_.onOutcome(RequestKind::cancel, detail, reply.error ? &*reply.error : nullptr);
        bool const lost = reply.error && reply.error->kind == RpcError::Kind::lost;
        if (!lost) finishLeaving();
    });
    retry_.expires_after(leaveLimit);
    retry_.async_wait(life_.tie([this](std::error_code error) {
        if (!error) abandon("the server did not answer when it was left");
    }));
}

void Client::finishLeaving() {
    std::function<void()> const left = left_;
    if (std::shared_ptr<RpcSession> const session = std::exchange(session_, nullptr))
        session->abandon("left on purpose");
    stop();
    left();
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
    asksIndex_ = false;
    session_ = std::make_shared<RpcSession>(loop_, std::move(transport),
                                            static_cast<RpcListener&>(*this), options_.times);
    session_->start();
    // A server that knows neither answers with an error, and that is all right.
    session_->request("set_db_change_aware", {true}, [](RpcReply const&) {});
    watchServer(true);
    askSchema();
}

// The rows may be out of step, or the server is busy: what it does on another connection tells.
// Once it speaks, there is nothing to ask.
void Client::onSilence(Silence silence) {
    opinion_.cancel();
    if (silence == Silence::broken) return;
    bool const silent = silence == Silence::begun;
    if (silent)
        opinion_.ask(options_.remotes[remote_], options_.tls, [this] {
            abandon("silent, though the server answers on another connection");
        });
    if (silent == silent_ || (silent && state_ != ClientState::following)) return;
    silent_ = silent;
    say(LogLevel::warning, silent ? "silent; the mirror may be out of step"
                                  : "speaks again; the mirror is " + standing());
    listener_.onSilent(silent);
}

void Client::onClosed(std::string const& reason) {
    session_.reset();
    lose(reason);
}

// This connection serves us no more, though it lives.
void Client::abandon(std::string const& reason) {
    std::shared_ptr<RpcSession> const session = std::exchange(session_, nullptr);
    if (session != nullptr) session->abandon(reason);
    lose(reason);
}

void Client::lose(std::string const& reason) {
    life_.cut();
    opinion_.cancel();
    if (left_) return finishLeaving();
    silent_ = false;
    std::string const loss = remoteName() + ": " + reason;
    bool const roundFailed = ++failures_ >= options_.remotes.size();
    sayLoss(reason, roundFailed);
    remote_ = (remote_ + 1) % options_.remotes.size();
    auto const retry =
        life_.tie([&] { retryIn(roundFailed ? backoff_.next() : Backoff::Duration(0)); });
    stateIs(ClientState::disconnected, loss);
    if (roundFailed) {
        failures_ = 0;
        listener_.onRoundFailed(loss);
    }
    // The listener may have stopped us.
    retry();
}

// What is the same try after try is said once.
void Client::sayLoss(std::string const& reason, bool roundFailed) {
    bool const known = said_[remote_] == reason && state_ != ClientState::following;
    said_[remote_] = reason;
    std::string text = reason;
    if (state_ == ClientState::following) text += "; the mirror is kept, but out of step";
    if (roundFailed)
        text +=
            "; tried again, at least every " + std::to_string(options_.mostBackoff.count()) + " ms";
    say(known ? LogLevel::debug : LogLevel::warning, text);
}

void Client::retryIn(Backoff::Duration wait) {
    retry_.expires_after(wait);
    retry_.async_wait(life_.tie([this](std::error_code error) {
        if (!error) connect();
    }));
}

void Client::stateIs(ClientState state, std::string const& reason) {
    if (state == state_) return;
    state_ = state;
    listener_.onState(state, reason);
}

}  // namespace Ovsdb
