#include <ovsdb/client/Client.h>

#include <ovsdb/rpc/ProtocolError.h>

#include <nlohmann/json.hpp>

#include <array>
#include <utility>

namespace Ovsdb {
namespace {

using nlohmann::json;
using simdjson::SUCCESS;

constexpr std::string_view serverMonitor = "server";
constexpr std::string_view zeroTransaction = "00000000-0000-0000-0000-000000000000";

struct Method {
    char const* name;
    UpdateForm form;
    bool since;
};

// The best first.
constexpr std::array<Method, 3> methods{Method{"monitor_cond_since", UpdateForm::differences, true},
                                        Method{"monitor_cond", UpdateForm::differences, false},
                                        Method{"monitor", UpdateForm::whole, false}};

std::optional<RpcError> failureOf(RpcReply const& transact, std::size_t operations) {
    if (transact.error) return transact.error;
    try {
        return transactError(transact.result, operations);
    } catch (ProtocolError const& e) {
        return RpcError{RpcError::Kind::refused, "unreadable reply", e.what(), 0};
    }
}

}  // namespace

void Client::watchServer(bool conditional) {
    // The log's index is asked for once: as a change it would come with every transaction.
    json const requests{{"Database",
                         {{{"columns", {"name", "model", "connected", "leader", "cid"}}},
                          {{"columns", {"index"}}, {"select", {{"modify", false}}}}}}};
    session_->request(conditional ? "monitor_cond" : "monitor",
                      {"_Server", serverMonitor, requests},
                      [this, conditional](RpcReply const& reply) {
                          if (!reply.error) return server_.apply(reply.result);
                          if (conditional && reply.error->kind != RpcError::Kind::lost)
                              watchServer(false);
                      });
}

void Client::handleServerUpdate(simdjson::dom::element tableUpdates) {
    server_.apply(tableUpdates);
    memberIsUsable();
}

// False: the connection was given up.
bool Client::memberIsUsable() {
    ServerDatabase const* const database = server_.find(options_.database);
    if (database == nullptr || !database->clustered()) return true;
    if (!database->connected) {
        abandon("the server is not connected to its cluster");
        return false;
    }
    if (state_ != ClientState::connecting) return true;
    std::int64_t const reached = database->index.value_or(0);
    std::int64_t const seen = progress_.seen(database->clusterId);
    if (reached < seen) {
        abandon("the server is behind the cluster: its log is at " + std::to_string(reached) +
                ", " + std::to_string(seen) + " was seen");
        return false;
    }
    progress_.memberIs(*database);
    return true;
}

// At most once a pause, and while something goes on alone: who loses the connection meanwhile has
// the transactions that were counted.
void Client::askIndexSoon() {
    if (std::exchange(asksIndex_, true)) return;
    askIndex_.expires_after(options_.indexPause);
    askIndex_.async_wait(life_.tie([this](std::error_code error) {
        if (!error) askIndex();
    }));
}

void Client::askIndex() {
    json const select{{"op", "select"},
                      {"table", "Database"},
                      {"where", {{"name", "==", options_.database}}},
                      {"columns", {"index"}}};
    session_->request("transact", {"_Server", select},
                      [this](RpcReply const& reply) { handleIndex(reply); });
}

void Client::handleIndex(RpcReply const& reply) {
    asksIndex_ = false;
    if (reply.error) return;
    std::int64_t index = 0;
    if (reply.result.at_pointer("/0/rows/0/index").get(index) != SUCCESS) return;
    say(LogLevel::debug, "the cluster's log is at " + std::to_string(index));
    progress_.reached(index);
}

void Client::askSchema() {
    session_->request("get_schema", {options_.database},
                      [this](RpcReply const& reply) { handleSchema(reply); });
}

void Client::handleSchema(RpcReply const& reply) {
    if (reply.error) {
        if (reply.error->kind == RpcError::Kind::lost) return;
        return abandon("database " + options_.database + " is not served: " + reply.error->text());
    }
    if (!memberIsUsable()) return;
    MonitorPlan plan(readSchema(reply.result));
    if (!plan.sameColumns(plan_)) lastTransaction_.clear();
    plan_ = std::move(plan);
    say(LogLevel::info, "database " + options_.database + ", schema version " + plan_.version());
    for (std::string const& complaint : plan_.complaints())
        say(LogLevel::warning, complaint + "; the rest is mirrored");
    listener_.onPlan(plan_);
    startMonitor();
}

void Client::startMonitor() {
    Method const& method = methods.at(method_);
    monitorId_ = "mirror-" + std::to_string(++monitors_);
    json params{options_.database, monitorId_, plan_.requests()};
    if (method.since)
        params.push_back(lastTransaction_.empty() ? std::string(zeroTransaction)
                                                  : lastTransaction_);
    stateIs(ClientState::copying, "");
    listener_.onRequest(RequestKind::monitor, method.name + (" of " + there()));
    session_->request(method.name, params, [this](RpcReply const& reply) { handleMonitor(reply); });
}

void Client::handleMonitor(RpcReply const& reply) {
    if (reply.error) return handleMonitorError(*reply.error);
    try {
        applyCopy(reply.result);
    } catch (std::exception const& e) {
        // What can't be applied once can't be the next time: a whole copy is asked for then.
        lastTransaction_.clear();
        RpcError const unreadable{RpcError::Kind::refused, "unreadable reply", e.what(), 0};
        listener_.onOutcome(RequestKind::monitor, there(), &unreadable);
        throw;
    }
    handleCopied();
}

void Client::handleMonitorError(RpcError const& error) {
    Method const& method = methods.at(method_);
    listener_.onOutcome(RequestKind::monitor, method.name + (" of " + there()), &error);
    if (error.kind == RpcError::Kind::lost) return;
    if (error.error == "unknown method" && method_ + 1 < methods.size()) {
        ++method_;
        return startMonitor();
    }
    abandon(std::string(method.name) + " failed: " + error.text());
}

void Client::applyCopy(simdjson::dom::element result) {
    Method const& method = methods.at(method_);
    if (!method.since) return apply(result, method.form, true);
    simdjson::dom::array parts;
    bool found = false;
    if (result.get(parts) != SUCCESS || parts.size() != 3 || parts.at(0).get(found) != SUCCESS)
        throw ProtocolError("the reply to monitor_cond_since is not [found, last-txn-id, updates]");
    apply(parts.at(2).value(), method.form, !found);
    noteTransaction(parts.at(1).value());
}

void Client::handleCopied() {
    failures_ = 0;
    backoff_.reset();
    said_.assign(said_.size(), "");
    std::string const rows = std::to_string(store_.size()) + " rows";
    std::string const by = " by " + std::string(methods.at(method_).name) + ", " + rows + ", " +
                           std::to_string(session_->sinceLastByte().count()) +
                           " ms after the last byte";
    if (plan_.gap().empty())
        say(LogLevel::info, "in step" + by);
    else
        say(LogLevel::warning, standing() + "; the rest is followed" + by);
    stateIs(ClientState::following, "");
    listener_.onOutcome(RequestKind::monitor, rows + " of " + there(), nullptr);
}

std::string Client::standing() const {
    return plan_.gap().empty() ? "in step" : "out of step: " + plan_.gap();
}

void Client::transact(nlohmann::json const& operations, std::string const& summary,
                      TransactHandler handler) {
    json params = json::array({options_.database});
    for (json const& operation : operations) params.push_back(operation);
    auto const timer = std::make_shared<asio::steady_timer>(loop_, options_.transactLimit);
    limitTransact(timer);
    listener_.onRequest(RequestKind::transact, summary);
    session_->request("transact", params,
                      [this, timer, summary, handler = std::move(handler),
                       count = operations.size()](RpcReply const& reply) {
                          std::optional<RpcError> const error = failureOf(reply, count);
                          RpcError const* const failed = error ? &*error : nullptr;
                          listener_.onOutcome(RequestKind::transact, summary, failed);
                          handler(failed);
                      });
}

// The reply's handler owns the timer: once it ran, or is gone, there is nothing left to limit.
void Client::limitTransact(std::shared_ptr<asio::steady_timer> const& timer) {
    timer->async_wait(life_.tie([this, waiting = std::weak_ptr(timer)](std::error_code error) {
        if (!error && !waiting.expired())
            abandon("no answer to a transaction for " +
                    std::to_string(options_.transactLimit.count()) + " ms");
    }));
}

void Client::apply(simdjson::dom::element tableUpdates, UpdateForm form, bool whole) {
    RowStore::Staging staging(store_);
    UpdateReader(plan_, staging).read(tableUpdates, form);
    std::vector<RowChange> const changes = staging.commit(whole, plan_.gapTables());
    if (!changes.empty()) listener_.onChanges(changes);
}

void Client::onNotification(std::string_view method, simdjson::dom::element params) {
    simdjson::dom::array parts;
    std::string_view id;
    if (params.get(parts) != SUCCESS || parts.at(0).get(id) != SUCCESS) return;
    if (method == "monitor_canceled") return handleCanceled(std::string(id));
    if (id == serverMonitor && parts.size() == 2) return handleServerUpdate(parts.at(1).value());
    if (id != monitorId_ || state_ != ClientState::following) return;
    try {
        handleUpdate(method, parts);
    } catch (...) {
        // What is kept may not be what the server believes: the next copy is a whole one.
        lastTransaction_.clear();
        throw;
    }
}

void Client::handleUpdate(std::string_view method, simdjson::dom::array params) {
    if (method == "update3" && params.size() == 3) {
        apply(params.at(2).value(), UpdateForm::differences, false);
        if (!noteTransaction(params.at(1).value())) return;
        progress_.transactionIs();
        askIndexSoon();
    } else if (method == "update2" && params.size() == 2) {
        apply(params.at(1).value(), UpdateForm::differences, false);
    } else if (method == "update" && params.size() == 2) {
        apply(params.at(1).value(), UpdateForm::whole, false);
    } else {
        throw ProtocolError("a notification " + std::string(method) + " with " +
                            std::to_string(params.size()) + " parameters");
    }
}

void Client::handleCanceled(std::string const& id) {
    if (id != monitorId_ || left_) return;
    monitorId_.clear();
    say(LogLevel::warning,
        "the server took back the monitor: the schema changed or the database went");
    stateIs(ClientState::copying, "the server took back the monitor");
    askSchema();
}

// Whether it is another one than the last. A standalone server's transactions have no id: zero
// means that nothing can be carried on.
bool Client::noteTransaction(simdjson::dom::element id) {
    std::string_view text;
    if (id.get(text) != SUCCESS || text == zeroTransaction) text = {};
    bool const isAnother = !text.empty() && text != lastTransaction_;
    lastTransaction_ = text;
    return isAnother;
}

}  // namespace Ovsdb
