// What the listener hears of requests, and how a connection is left.

#include "ClientUnderTest.h"

namespace Ovsdb {
namespace {

using Texts = std::vector<std::string>;

class ClientRequestsTest : public ClientTest {
  protected:
    std::string there() const { return "hardware_vtep, unix:" + server_.path(); }
    void transact() {
        client_->transact({{{"op", "comment"}, {"comment", "x"}}}, "a comment",
                          [this](RpcError const* error) {
                              told_.push_back(error == nullptr ? "well" : error->text());
                          });
    }
    bool told() {
        return runUntil(loop_, [&] { return !told_.empty(); });
    }

    Texts told_;
};

TEST_F(ClientRequestsTest, AMonitorIsOneRequestAndOneOutcome) {
    start();
    ASSERT_TRUE(inStep());
    EXPECT_EQ(listener_.requests, Texts{"M monitor_cond_since of " + there()});
    EXPECT_EQ(listener_.outcomes, Texts{"M 1 rows of " + there()});
}

TEST_F(ClientRequestsTest, AMethodThatTheServerLacksIsARequestThatFailed) {
    database_.unknown = {"monitor_cond_since"};
    start();
    ASSERT_TRUE(inStep());
    EXPECT_EQ(listener_.outcomes, (Texts{"M monitor_cond_since of " + there() + ": unknown method",
                                         "M 1 rows of " + there()}));
}

TEST_F(ClientRequestsTest, AMonitorWhoseReplyCannotBeReadHasFailedOnce) {
    bool once = true;
    server_.scriptIs([&](FakeServer& server, json const& message) {
        if (message["method"] == "monitor_cond_since" && std::exchange(once, false))
            return server.reply(message, {1, 2});
        database_(server, message);
    });
    start();
    ASSERT_TRUE(inStep());
    ASSERT_EQ(listener_.outcomes.size(), 2U);
    EXPECT_EQ(listener_.outcomes[0].substr(0, 3 + there().size()), "M " + there() + ":");
    EXPECT_NE(listener_.outcomes[0].find("unreadable reply"), std::string::npos);
}

TEST_F(ClientRequestsTest, AMonitorThatIsPendingWhenTheConnectionEndsIsLost) {
    bool once = true;
    server_.scriptIs([&](FakeServer& server, json const& message) {
        if (message["method"] == "monitor_cond_since" && std::exchange(once, false))
            return server.hangUp();
        database_(server, message);
    });
    start();
    ASSERT_TRUE(inStep());
    ASSERT_EQ(listener_.outcomes.size(), 2U);
    EXPECT_NE(listener_.outcomes[0].find("connection lost"), std::string::npos);
}

TEST_F(ClientRequestsTest, ATransactionThatGoesWellIsTold) {
    start();
    ASSERT_TRUE(inStep());
    transact();
    ASSERT_TRUE(told());
    EXPECT_EQ(told_, Texts{"well"});
    EXPECT_EQ(listener_.requests.back(), "T a comment");
    EXPECT_EQ(listener_.outcomes.back(), "T a comment");
    json const sent = server_.received().back();
    EXPECT_EQ(sent["params"][0], "hardware_vtep");
    EXPECT_EQ(sent["params"][1]["op"], "comment");
}

TEST_F(ClientRequestsTest, ATransactionWhoseOperationFailedIsToldWithItsError) {
    database_.transacted = {{{"error", "timed out"}, {"details", "\"where\" did not hold"}}};
    start();
    ASSERT_TRUE(inStep());
    transact();
    ASSERT_TRUE(told());
    EXPECT_EQ(told_, Texts{"timed out: \"where\" did not hold (operation 0)"});
    EXPECT_EQ(listener_.outcomes.back(), "T a comment: " + told_[0]);
}

TEST_F(ClientRequestsTest, ATransactionWhoseReplyCannotBeReadFailsAlone) {
    database_.transacted = "what";
    start();
    ASSERT_TRUE(inStep());
    transact();
    ASSERT_TRUE(told());
    EXPECT_EQ(told_[0].substr(0, 16), "unreadable reply");
    EXPECT_EQ(client_->state(), ClientState::following);
}

TEST_F(ClientRequestsTest, AnUnansweredTransactionCostsTheConnection) {
    options_.transactLimit = milliseconds(50);
    server_.scriptIs([&](FakeServer& server, json const& message) {
        if (message["method"] != "transact") database_(server, message);
    });
    start();
    ASSERT_TRUE(inStep());
    transact();
    ASSERT_TRUE(told());
    EXPECT_EQ(told_, Texts{"connection lost: no answer to a transaction for 50 ms"});
    ASSERT_TRUE(inStep());
    EXPECT_EQ(server_.connections(), 2);
    EXPECT_EQ(told_.size(), 1U);
}

TEST_F(ClientRequestsTest, AnAnsweredTransactionIsNotLimitedAfterwards) {
    options_.transactLimit = milliseconds(50);
    start();
    ASSERT_TRUE(inStep());
    transact();
    ASSERT_TRUE(told());
    EXPECT_FALSE(runUntil(
        loop_, [&] { return client_->state() != ClientState::following; }, milliseconds(200)));
}

TEST_F(ClientRequestsTest, LeavingTakesBackTheMonitorAndTellsWhenAllIsOver) {
    start();
    ASSERT_TRUE(inStep());
    json const id = monitorId();
    bool left = false;
    client_->leave([&] { left = true; });
    ASSERT_TRUE(runUntil(loop_, [&] { return left; }));
    EXPECT_EQ(server_.received().back()["method"], "monitor_cancel");
    EXPECT_EQ(server_.received().back()["params"], json::array({id}));
    EXPECT_EQ(listener_.requests.back(), "C monitor of " + there());
    EXPECT_EQ(listener_.outcomes.back(), "C monitor of " + there());
    EXPECT_EQ(client_->state(), ClientState::disconnected);
    EXPECT_EQ(client_->rows().size(), 1U);
    EXPECT_EQ(listener_.states.back(), ClientState::following);
}

TEST_F(ClientRequestsTest, LeavingDoesNotWaitForAServerThatIsSilentOrGone) {
    for (bool const hangsUp : {false, true}) {
        server_.scriptIs([&](FakeServer& server, json const& message) {
            if (message["method"] != "monitor_cancel") return database_(server, message);
            if (hangsUp) server.hangUp();
        });
        start();
        ASSERT_TRUE(inStep());
        bool left = false;
        client_->leave([&] { left = true; });
        ASSERT_TRUE(runUntil(
            loop_, [&] { return left; }, milliseconds(3000)));
        EXPECT_NE(listener_.outcomes.back().find("connection lost"), std::string::npos);
    }
}

TEST_F(ClientRequestsTest, AClientThatWasLeftCanBeStartedAgain) {
    start();
    ASSERT_TRUE(inStep());
    for (int i = 0; i < 3; ++i) {
        bool left = false;
        client_->leave([&] { left = true; });
        ASSERT_TRUE(runUntil(loop_, [&] { return left; }));
        client_->start();
        ASSERT_TRUE(inStep());
    }
    EXPECT_EQ(listener_.steps, Texts{"+1"});
}

TEST_F(ClientRequestsTest, AStoppedClientTriesNoMore) {
    start();
    ASSERT_TRUE(inStep());
    server_.vanish();
    ASSERT_TRUE(runUntil(loop_, [&] { return !listener_.rounds.empty(); }));
    client_->stop();
    server_.listen();
    EXPECT_FALSE(runUntil(
        loop_, [&] { return server_.connections() > 1; }, milliseconds(300)));
}

TEST_F(ClientRequestsTest, WhatIsTheSameTryAfterTryIsSaidOnce) {
    server_.vanish();
    start();
    ASSERT_TRUE(runUntil(loop_, [&] { return listener_.rounds.size() >= 4; }));
    EXPECT_EQ(std::count_if(warnings_.begin(), warnings_.end(),
                            [](std::string const& line) {
                                return line.find("No such file") != std::string::npos;
                            }),
              1);
}

// The server of these answers the connections of its choice.
class SilentLinkTest : public ClientRequestsTest {
  protected:
    SilentLinkTest() { options_.times.probe = milliseconds(50); }
    void fallSilent() {
        server_.keepsOldIs(true);
        server_.scriptIs([this](FakeServer& server, json const& message) {
            if (server.connections() >= answersFrom_) database_(server, message);
        });
    }
    int answersFrom_ = 2;
};

TEST_F(SilentLinkTest, ADeadLinkToALivingServerIsLeftAtOnce) {
    start();
    ASSERT_TRUE(inStep());
    fallSilent();
    ASSERT_TRUE(runUntil(loop_, [&] { return listener_.outcomes.size() == 2; }));
    EXPECT_EQ(listener_.silences, std::vector<bool>{true});
    EXPECT_TRUE(logged("silent, though the server answers on another connection"));
    EXPECT_EQ(client_->state(), ClientState::following);
}

TEST_F(SilentLinkTest, AServerThatSpeaksAgainIsInStepWhenWhatItHadToSayWasApplied) {
    start();
    ASSERT_TRUE(inStep());
    json asked;
    server_.scriptIs([&](FakeServer&, json const& message) { asked = message; });
    // No second opinion is to be had.
    server_.stopListening();
    ASSERT_TRUE(runUntil(loop_, [&] { return listener_.silences.size() == 1; }));
    server_.notify(
        "update3",
        {monitorId(), zero, {{"Logical_Switch", {{second, {{"insert", json::object()}}}}}}});
    ASSERT_TRUE(runUntil(loop_, [&] { return listener_.steps.size() == 2; }));
    EXPECT_EQ(listener_.silences, std::vector<bool>{true});
    EXPECT_FALSE(logged("speaks again"));
    server_.reply(asked, json::array());
    ASSERT_TRUE(runUntil(loop_, [&] { return listener_.silences.size() == 2; }));
    EXPECT_EQ(listener_.silences.back(), false);
    EXPECT_TRUE(logged("speaks again; the mirror is in step"));
    EXPECT_EQ(server_.connections(), 1);
}

TEST_F(SilentLinkTest, ABusyServerIsNotLeft) {
    start();
    ASSERT_TRUE(inStep());
    answersFrom_ = 100;
    fallSilent();
    ASSERT_TRUE(runUntil(loop_, [&] { return listener_.silences.size() == 1; }));
    ASSERT_FALSE(runUntil(
        loop_, [&] { return client_->state() != ClientState::following; }, milliseconds(400)));
    EXPECT_EQ(listener_.outcomes.size(), 1U);
}

}  // namespace
}  // namespace Ovsdb
