#include "ClientUnderTest.h"

namespace Ovsdb {
namespace {

TEST_F(ClientTest, TheBestMethodIsUsedWithNamedColumns) {
    start();
    ASSERT_TRUE(inStep());
    EXPECT_EQ(database_.monitor["method"], "monitor_cond_since");
    EXPECT_EQ(database_.monitor["params"][2]["Manager"], (json{{{"columns", {"target"}}}}));
    EXPECT_EQ(database_.monitor["params"][3], zero);
    EXPECT_EQ(listener_.steps, std::vector<std::string>{"+1"});
    EXPECT_EQ(listener_.states,
              (std::vector<ClientState>{ClientState::connecting, ClientState::copying,
                                        ClientState::following}));
}

TEST_F(ClientTest, AnOldServerIsMonitoredByTheOldestMethod) {
    database_.unknown = {"monitor_cond_since", "monitor_cond"};
    start();
    ASSERT_TRUE(inStep());
    EXPECT_EQ(database_.monitor["method"], "monitor");
    server_.notify("update",
                   {monitorId(), {{"Logical_Switch", {{second, {{"new", {{"name", "blue"}}}}}}}}});
    ASSERT_TRUE(runUntil(loop_, [&] { return listener_.steps.size() == 2; }));
    EXPECT_EQ(listener_.steps[1], "+2");
}

TEST_F(ClientTest, UpdatesOfUnknownMonitorsAreDropped) {
    start();
    ASSERT_TRUE(inStep());
    server_.notify("update3",
                   {"another", zero, {{"Logical_Switch", {{first, {{"delete", nullptr}}}}}}});
    server_.notify(
        "update3",
        {monitorId(), zero, {{"Logical_Switch", {{second, {{"insert", json::object()}}}}}}});
    ASSERT_TRUE(runUntil(loop_, [&] { return listener_.steps.size() == 2; }));
    EXPECT_EQ(listener_.steps[1], "+2");
}

TEST_F(ClientTest, AfterALossTheCopyIsComparedAndNothingIsToldTwice) {
    start();
    ASSERT_TRUE(inStep());
    server_.hangUp();
    ASSERT_TRUE(runUntil(loop_, [&] { return server_.connections() == 2; }));
    ASSERT_TRUE(inStep());
    EXPECT_EQ(listener_.steps, std::vector<std::string>{"+1"});
    EXPECT_EQ(client_->rows().size(), 1U);
    EXPECT_TRUE(logged("out of step"));
}

TEST_F(ClientTest, RowsThatACopyDoesNotNameAreGone) {
    start();
    ASSERT_TRUE(inStep());
    database_.rows = {{"Logical_Switch", {{second, {{"initial", {{"name", "blue"}}}}}}}};
    server_.hangUp();
    ASSERT_TRUE(runUntil(loop_, [&] { return listener_.steps.size() == 2; }));
    EXPECT_EQ(listener_.steps[1], "+2-1");
}

TEST_F(ClientTest, AKnownTransactionIsCarriedOnFrom) {
    database_.transaction = "72734239-c0d7-4066-8095-adae591df7d5";
    start();
    ASSERT_TRUE(inStep());
    database_.found = true;
    database_.rows = {{"Logical_Switch", {{second, {{"insert", json::object()}}}}}};
    server_.hangUp();
    ASSERT_TRUE(runUntil(loop_, [&] { return listener_.steps.size() == 2; }));
    EXPECT_EQ(database_.monitor["params"][3], database_.transaction);
    EXPECT_EQ(listener_.steps[1], "+2");
    EXPECT_EQ(client_->rows().size(), 2U);
}

TEST_F(ClientTest, ACarryingOnThatCannotBeAppliedIsFollowedByAWholeCopy) {
    database_.transaction = "72734239-c0d7-4066-8095-adae591df7d5";
    start();
    ASSERT_TRUE(inStep());
    std::string const unknown = "00000000-0000-4000-8000-0000000000ff";
    std::vector<json> askedFrom;
    auto const whole = database_.rows;
    server_.scriptIs([&](FakeServer& server, json const& message) {
        if (message["method"] == "monitor_cond_since") {
            askedFrom.push_back(message["params"][3]);
            database_.found = askedFrom.size() == 1;
            database_.rows = whole;
            if (database_.found)
                database_.rows = {{"Logical_Switch", {{unknown, {{"modify", {{"name", "x"}}}}}}}};
        }
        database_(server, message);
    });
    server_.hangUp();
    ASSERT_TRUE(runUntil(loop_, [&] {
        return askedFrom.size() >= 2 && client_->state() == ClientState::following;
    }));
    EXPECT_EQ(askedFrom[0], database_.transaction);
    EXPECT_EQ(askedFrom[1], zero);
}

TEST_F(ClientTest, ZeroTransactionsAreNeverCarriedOnFrom) {
    start();
    ASSERT_TRUE(inStep());
    server_.notify(
        "update3",
        {monitorId(), zero, {{"Logical_Switch", {{second, {{"insert", json::object()}}}}}}});
    server_.hangUp();
    ASSERT_TRUE(runUntil(loop_, [&] { return server_.connections() == 2; }));
    ASSERT_TRUE(inStep());
    EXPECT_EQ(database_.monitor["params"][3], zero);
}

TEST_F(ClientTest, AModifyOfAnUnknownRowBringsAWholeNewCopy) {
    database_.transaction = "72734239-c0d7-4066-8095-adae591df7d5";
    start();
    ASSERT_TRUE(inStep());
    server_.notify("update3", {monitorId(),
                               database_.transaction,
                               {{"Logical_Switch", {{second, {{"modify", {{"name", "x"}}}}}}}}});
    ASSERT_TRUE(runUntil(loop_, [&] { return server_.connections() == 2; }));
    ASSERT_TRUE(inStep());
    EXPECT_EQ(database_.monitor["params"][3], zero);
    EXPECT_TRUE(logged("modified, but never seen"));
}

TEST_F(ClientTest, AMonitorThatIsTakenBackIsAskedForAgainUnderANewId) {
    start();
    ASSERT_TRUE(inStep());
    json const old = monitorId();
    server_.notify("monitor_canceled", json::array({old}));
    ASSERT_TRUE(runUntil(loop_, [&] { return listener_.plans == 2; }));
    ASSERT_TRUE(inStep());
    EXPECT_NE(monitorId(), old);
    EXPECT_EQ(server_.connections(), 1);
    EXPECT_EQ(listener_.steps, std::vector<std::string>{"+1"});
}

TEST_F(ClientTest, AVanishedDatabaseIsToldAndTheRowsAreKept) {
    start();
    ASSERT_TRUE(inStep());
    json const id = monitorId();
    server_.scriptIs([&](FakeServer& server, json const& message) {
        if (message["method"] == "get_schema")
            return server.refuse(message, {{"error", "unknown database"}, {"details", "gone"}});
        database_(server, message);
    });
    server_.notify("monitor_canceled", json::array({id}));
    ASSERT_TRUE(runUntil(loop_, [&] { return !listener_.rounds.empty(); }));
    EXPECT_TRUE(logged("database hardware_vtep is not served: unknown database: gone"));
    EXPECT_EQ(client_->rows().size(), 1U);
    EXPECT_EQ(listener_.steps.size(), 1U);
}

TEST_F(ClientTest, AMissingColumnIsNamedAndTheRestIsMirrored) {
    database_.schema["tables"]["Logical_Switch"]["columns"].erase("tunnel_key");
    start();
    ASSERT_TRUE(inStep());
    EXPECT_TRUE(logged(
        "column Logical_Switch.tunnel_key is missing from the schema; the rest is mirrored"));
    EXPECT_TRUE(
        logged("out of step: column Logical_Switch.tunnel_key is missing from the schema; "
               "the rest is followed by monitor_cond_since, 1 rows"));
    EXPECT_FALSE(logged("in step by"));
    EXPECT_EQ(listener_.steps, std::vector<std::string>{"+1"});
}

TEST_F(ClientTest, ASchemaThatIsChangedUnderARunningClientKeepsRowsAndIsTakenBack) {
    for (bool const isAware : {true, false}) {
        start();
        ASSERT_TRUE(inStep());
        auto const change = [&](json const& schema, json const& rows) {
            int const plans = listener_.plans;
            json const id = monitorId();
            database_.schema = schema;
            database_.rows = rows;
            if (isAware)
                server_.notify("monitor_canceled", json::array({id}));
            else
                server_.hangUp();
            ASSERT_TRUE(runUntil(loop_, [&] { return listener_.plans > plans; }));
            ASSERT_TRUE(inStep());
        };
        json const rows = database_.rows;
        json less = fullSchema();
        less["tables"].erase("Logical_Switch");
        std::size_t const steps = listener_.steps.size();
        log_.clear();
        change(less, json::object());
        EXPECT_TRUE(logged("out of step: table Logical_Switch is missing from the schema"));
        EXPECT_FALSE(logged("in step by"));
        EXPECT_EQ(listener_.steps.size(), steps);
        change(fullSchema(), json::object());
        EXPECT_TRUE(logged("in step by"));
        EXPECT_EQ(listener_.steps.back(), "-1");
        change(fullSchema(), rows);
        client_->stop();
    }
}

TEST_F(ClientTest, GarbageIsNamedAndTriedAgain) {
    bool once = true;
    server_.scriptIs([&](FakeServer& server, json const& message) {
        if (std::exchange(once, false)) return server.send("220 mail.example ESMTP\r\n");
        database_(server, message);
    });
    start();
    ASSERT_TRUE(inStep());
    EXPECT_TRUE(logged("unix:" + server_.path() + ": not JSON: '2' at offset 0"));
}

TEST_F(ClientTest, AVanishedServerIsFoundAgain) {
    start();
    ASSERT_TRUE(inStep());
    server_.vanish();
    ASSERT_TRUE(runUntil(loop_, [&] { return listener_.rounds.size() >= 3; }));
    EXPECT_TRUE(logged("No such file or directory"));
    server_.listen();
    ASSERT_TRUE(inStep());
    EXPECT_EQ(listener_.steps, std::vector<std::string>{"+1"});
}

TEST_F(ClientTest, AServerThatOnlyEchoesIsLeftForTheNextOne) {
    options_.times = {milliseconds(50), milliseconds(200), milliseconds(10000)};
    FakeServer idle(loop_, [](FakeServer& server, json const& message) {
        if (message.value("method", "") == "echo") server.reply(message, message["params"]);
    });
    options_.remotes = parseRemotes("unix:" + idle.path() + ",unix:" + server_.path());
    start();
    ASSERT_TRUE(inStep());
    EXPECT_TRUE(logged("no answer to set_db_change_aware for 200 ms"));
}

TEST_F(ClientTest, RemotesAreTriedInTurnWithoutWaiting) {
    options_.remotes =
        parseRemotes("unix:/nonexistent/a,unix:/nonexistent/b,unix:" + server_.path());
    options_.leastBackoff = options_.mostBackoff = std::chrono::hours(1);
    start();
    ASSERT_TRUE(inStep());
    EXPECT_TRUE(listener_.rounds.empty());
    EXPECT_EQ(client_->remoteName(), "unix:" + server_.path());
}

TEST_F(ClientTest, AFailedMonitorIsToldAndTriedAgain) {
    bool once = true;
    server_.scriptIs([&](FakeServer& server, json const& message) {
        if (message["method"] == "monitor_cond_since" && std::exchange(once, false))
            return server.refuse(message, {{"error", "syntax error"}, {"details", "no"}});
        database_(server, message);
    });
    start();
    ASSERT_TRUE(inStep());
    EXPECT_TRUE(logged("monitor_cond_since failed: syntax error: no"));
}

TEST_F(ClientTest, AReplyOfAnotherShapeIsNoCopy) {
    server_.scriptIs([&](FakeServer& server, json const& message) {
        if (message["method"] == "monitor_cond_since") return server.reply(message, {1, 2});
        database_(server, message);
    });
    start();
    ASSERT_TRUE(runUntil(loop_, [&] { return !listener_.rounds.empty(); }));
    EXPECT_TRUE(logged("the reply to monitor_cond_since is not [found, last-txn-id, updates]"));
}

TEST(Backoff, DoublesUpToItsCapAndBeginsAnew) {
    Backoff backoff(milliseconds(1000), milliseconds(8000));
    std::vector<long> waits;
    for (int i = 0; i < 6; ++i) waits.push_back(backoff.next().count());
    EXPECT_EQ(waits, (std::vector<long>{1000, 2000, 4000, 8000, 8000, 8000}));
    backoff.reset();
    EXPECT_EQ(backoff.next(), milliseconds(1000));
}

}  // namespace
}  // namespace Ovsdb
