#include <vgwd/agent/DatabaseSession.h>

#include <vgwd/agent/RunDirectory.h>

#include <utility>

namespace Vgwd {

using Ovsdb::ClientState;
using EntryState = Qor::Dir::EntryState;

namespace {

Ovsdb::ClientOptions clientOptions(Options const& options) {
    Ovsdb::ClientOptions client;
    client.remotes = options.remotes;
    client.tls = options.tls;
    if (client.remotes.empty())
        client.remotes.push_back(
            Ovsdb::parseRemote("unix:" + runFile(options.runDirectory, "db.sock")));
    return client;
}

}  // namespace

DatabaseSession::DatabaseSession(asio::io_context& loop, Options const& options, StateTree& tree,
                                 SessionListener& listener, Ovsdb::LogSink log)
    : tree_(tree),
      listener_(listener),
      client_(loop, clientOptions(options), static_cast<Ovsdb::ClientListener&>(*this), log),
      mirror_(client_.rows(), tree.database(), tree.macs()),
      books_(loop, tree.session(), tree.config()),
      report_(tree.report(), mirror_),
      manager_(loop, client_, tree.database(), log),
      writer_(loop, client_, mirror_, static_cast<WriteListener&>(*this)),
      log_(log) {
    if (options.remotes.empty()) addServer(loop, options, log);
}

DatabaseSession::~DatabaseSession() { stop(); }

void DatabaseSession::addServer(asio::io_context& loop, Options const& options,
                                Ovsdb::LogSink const& log) {
    EmbeddedServer::Handlers handlers;
    handlers.listening = [this] {
        listener_.onListening();
        begin();
    };
    handlers.failed = [this](std::string const& reason) { listener_.onFailed(reason); };
    server_.emplace(loop, options, std::move(handlers), log);
}

void DatabaseSession::enabledIs(bool enabled) {
    if (std::exchange(enabled_, enabled) == enabled) return;
    if (leaving_) return;  // what holds when it has ended decides
    if (!enabled) return end();
    books_.awaitCopy("starting");
    if (server_)
        server_->wantedIs(true);
    else
        begin();
}

void DatabaseSession::begin() {
    if (!enabled_ || std::exchange(running_, true)) return;
    client_.start();
}

void DatabaseSession::end() {
    leaving_ = true;
    manager_.inStepIs(false);
    writer_.inStepIs(false);
    client_.leave([this] { handleLeft(); });
}

void DatabaseSession::handleLeft() {
    running_ = leaving_ = false;
    standingIs(lost(), "switched off");
    books_.close();
    if (server_) server_->wantedIs(false);
    listener_.onStep();
    listener_.onOff();
    if (std::exchange(enabled_, false)) enabledIs(true);
}

void DatabaseSession::persistIs(bool persist) {
    if (server_) server_->persistIs(persist);
}

void DatabaseSession::handleChild() {
    if (server_) server_->handleChild();
}

void DatabaseSession::stop() {
    client_.stop();
    manager_.inStepIs(false);
    writer_.inStepIs(false);
    writer_.stop();
    if (server_) server_->stop();
}

void DatabaseSession::onPlan(Ovsdb::MonitorPlan const& plan) {
    gap_ = plan.gap();
    mirror_.planIs(plan);
    report_.planIs(plan);
}

void DatabaseSession::onChanges(std::vector<Ovsdb::RowChange> const& changes) {
    DatabaseWriter::Working const working(writer_);
    mirror_.apply(changes);
    report_.step(changes);
    listener_.onStep();
}

void DatabaseSession::onState(ClientState state, std::string const& reason) {
    if (state == ClientState::following) {
        handleCopied();
    } else if (!reason.empty()) {
        tree_.session()->lastErrorCodeIs(std::string_view(reason));
        handleOutOfStep(reason);
    }
    listener_.onStep();
}

void DatabaseSession::handleCopied() {
    // The schema may have changed, and no row with it.
    mirror_.apply({});
    report_.lookAgain();
    synced_ = true;
    standingIs(gap_.empty() ? EntryState::ready : EntryState::stale, gap_);
}

void DatabaseSession::handleOutOfStep(std::string const& reason) {
    manager_.inStepIs(false);
    writer_.inStepIs(false);
    standingIs(lost(), reason);
    books_.awaitCopy(reason);
}

EntryState DatabaseSession::lost() const {
    return synced_ ? EntryState::stale : EntryState::pending;
}

// Without a reason it is in step.
void DatabaseSession::standingIs(EntryState state, std::string const& reason) {
    std::string const remote = client_.remoteName();
    tree_.mirrorStateIs(state);
    if (reason.empty())
        report_.inStep(remote);
    else
        report_.outOfStep(remote, reason);
    listener_.onStanding(reason.empty() ? "in step with " + remote : "out of step: " + reason);
}

void DatabaseSession::onUndone(std::string const& path, std::string const& peer,
                               std::string const& reason) {
    log_(Ovsdb::LogLevel::warning, path + ": what " + peer + " wrote is undone: " + reason);
    report_.refused(path, peer, reason);
    listener_.onStep();
}

void DatabaseSession::onRequest(Ovsdb::RequestKind kind, std::string const& detail) {
    books_.request(kind, detail);
}

void DatabaseSession::onOutcome(Ovsdb::RequestKind kind, std::string const& detail,
                                Ovsdb::RpcError const* error) {
    bool const isCopy = kind == Ovsdb::RequestKind::monitor && error == nullptr;
    bool const isWhole = gap_.empty();
    if (isCopy && !isWhole)
        books_.incomplete(detail, gap_);
    else
        books_.outcome(kind, detail, error);
    listener_.onStep();
    if (!isCopy) return;
    manager_.inStepIs(true);
    writer_.inStepIs(true);
    if (isWhole)
        listener_.onInStep();
    else
        listener_.onIncomplete(gap_);
}

void DatabaseSession::onSilent(bool silent) {
    if (silent) {
        standingIs(EntryState::stale, "the server does not answer");
        books_.awaitCopy("the server does not answer");
    } else if (gap_.empty()) {
        standingIs(EntryState::ready, {});
        books_.resume();
    } else {
        standingIs(EntryState::stale, gap_);
    }
    listener_.onStep();
}

void DatabaseSession::onRoundFailed(std::string const& reason) { listener_.onFailed(reason); }

}  // namespace Vgwd
