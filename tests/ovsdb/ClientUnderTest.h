#ifndef TESTS_OVSDB_CLIENT_UNDER_TEST_H
#define TESTS_OVSDB_CLIENT_UNDER_TEST_H

// A client beside a server that answers as a database does, and what its listener heard.

#include "EventLoop.h"
#include "FakeServer.h"
#include "FullSchema.h"

#include <ovsdb/client/Client.h>

#include <gtest/gtest.h>

namespace Ovsdb {

using nlohmann::json;
using std::chrono::milliseconds;

inline constexpr char const* first = "00000000-0000-4000-8000-000000000001";
inline constexpr char const* second = "00000000-0000-4000-8000-000000000002";
inline constexpr char const* zero = "00000000-0000-0000-0000-000000000000";

class RecordingListener : public ClientListener {
  public:
    void onPlan(MonitorPlan const&) override { ++plans; }
    void onChanges(std::vector<RowChange> const& changes) override {
        std::string text;
        for (RowChange const& change : changes)
            text += (change.after == nullptr ? "-"
                     : change.before         ? "~"
                                             : "+") +
                    change.uuid.text().substr(35);
        steps.push_back(text);
    }
    void onState(ClientState state, std::string const&) override { states.push_back(state); }
    void onRequest(RequestKind kind, std::string const& detail) override {
        requests.push_back(name(kind) + detail);
    }
    void onOutcome(RequestKind kind, std::string const& detail, RpcError const* error) override {
        outcomes.push_back(name(kind) + detail + (error != nullptr ? ": " + error->text() : ""));
    }
    void onSilent(bool silent) override { silences.push_back(silent); }
    void onRoundFailed(std::string const& reason) override { rounds.push_back(reason); }

    static std::string name(RequestKind kind) {
        return kind == RequestKind::transact ? "T " : kind == RequestKind::cancel ? "C " : "M ";
    }

    int plans = 0;
    std::vector<std::string> steps;
    std::vector<ClientState> states;
    std::vector<std::string> rounds;
    std::vector<std::string> requests;
    std::vector<std::string> outcomes;
    std::vector<bool> silences;
};

// Answers as a database server does; a test replaces what it wants otherwise.
class Database {
  public:
    void operator()(FakeServer& server, json const& message) {
        std::string const method = message.value("method", "");
        if (method == "echo" || method == "set_db_change_aware")
            return server.reply(message, json::object());
        if (method == "get_schema") return server.reply(message, schema);
        if (method == "monitor_cond" && message["params"][0] == "_Server")
            return server.reply(message, serverRows);
        if (unknown.contains(method)) return server.refuse(message, "unknown method");
        if (method == "transact")
            return server.reply(message, message["params"][0] == "_Server" ? selected : transacted);
        if (method == "monitor_cancel") return server.reply(message, json::object());
        monitor = message;
        if (method == "monitor_cond_since")
            return server.reply(message, {found, transaction, rows});
        if (method == "monitor_cond") return server.reply(message, rows);
        if (method == "monitor") return server.reply(message, wholeRows);
    }

    json schema = fullSchema();
    json serverRows = {{"Database", json::object()}};
    std::set<std::string> unknown;
    bool found = false;
    std::string transaction = zero;
    json rows = {{"Logical_Switch", {{first, {{"initial", {{"name", "red"}}}}}}}};
    json wholeRows = {{"Logical_Switch", {{first, {{"new", {{"name", "red"}}}}}}}};
    json transacted = json::array({json::object()});
    json selected = json::array({{{"rows", json::array()}}});
    json monitor;
};

class ClientTest : public testing::Test {
  protected:
    ClientTest() {
        server_.scriptIs(std::ref(database_));
        options_.remotes = parseRemotes("unix:" + server_.path());
        options_.leastBackoff = milliseconds(20);
        options_.mostBackoff = milliseconds(80);
    }
    ~ClientTest() override {
        if (client_) client_->stop();
        loop_.restart();
        loop_.poll();
    }

    void start() {
        client_.emplace(loop_, options_, listener_,
                        [this](LogLevel level, std::string const& text) {
                            log_.push_back(text);
                            if (level == LogLevel::warning) warnings_.push_back(text);
                        });
        client_->start();
    }
    bool inStep() {
        return runUntil(loop_, [&] { return client_->state() == ClientState::following; });
    }
    bool logged(std::string const& part) const {
        return std::any_of(log_.begin(), log_.end(), [&](std::string const& line) {
            return line.find(part) != std::string::npos;
        });
    }
    json monitorId() const { return database_.monitor["params"][1]; }

    asio::io_context loop_;
    Database database_;
    FakeServer server_{loop_};
    ClientOptions options_;
    RecordingListener listener_;
    std::vector<std::string> log_;
    std::vector<std::string> warnings_;
    std::optional<Client> client_;
};

}  // namespace Ovsdb

#endif
