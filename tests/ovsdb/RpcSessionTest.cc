#include "EventLoop.h"
#include "FakeServer.h"

#include <ovsdb/rpc/Connector.h>
#include <ovsdb/rpc/RpcSession.h>

#include <asio/ip/tcp.hpp>

#include <gtest/gtest.h>

#include <thread>

namespace Ovsdb {
namespace {

using nlohmann::json;
using std::chrono::milliseconds;

class Listener : public RpcListener {
  public:
    void onNotification(std::string_view method, simdjson::dom::element params) override {
        notifications.emplace_back(std::string(method) + " " +
                                   std::string(simdjson::minify(params)));
        if (method == "throw") throw std::runtime_error("a handler's own trouble");
    }
    void onSilent(bool silent) override { silences.push_back(silent); }
    void onClosed(std::string const& reason) override { reasons.push_back(reason); }

    std::vector<std::string> notifications;
    std::vector<std::string> reasons;
    std::vector<bool> silences;
};

class RpcSessionTest : public testing::Test {
  protected:
    ~RpcSessionTest() override {
        if (session_ != nullptr) session_->close();
        loop_.restart();
        loop_.poll();
    }

    void open(RpcTimes times = {milliseconds(0), milliseconds(0)}) {
        bool done = false;
        connector_.connect(parseRemote("unix:" + server_.path()), {}, milliseconds(1000),
                           [&](std::shared_ptr<Transport> transport, std::string const& error) {
                               ASSERT_NE(transport, nullptr) << error;
                               session_ = std::make_shared<RpcSession>(loop_, std::move(transport),
                                                                       listener_, times);
                               session_->start();
                               done = true;
                           });
        ASSERT_TRUE(runUntil(loop_, [&] { return done && server_.connections() == 1; }));
    }

    bool closed() {
        return runUntil(loop_, [&] { return !listener_.reasons.empty(); });
    }

    asio::io_context loop_;
    FakeServer server_{loop_};
    Connector connector_{loop_};
    Listener listener_;
    std::shared_ptr<RpcSession> session_;
};

TEST_F(RpcSessionTest, RepliesAreMatchedByIdInAnyOrder) {
    open();
    std::vector<std::string> order;
    std::vector<json> asked;
    server_.scriptIs([&](FakeServer& server, json const& message) {
        asked.push_back(message);
        if (asked.size() < 2) return;
        server.reply(asked[1], "second");
        server.reply(asked[0], "first");
    });
    session_->request("a", json::array(), [&](RpcReply const& reply) {
        order.emplace_back(std::string(reply.result.get_string().value()));
    });
    session_->request("b", json::array(), [&](RpcReply const& reply) {
        order.emplace_back(std::string(reply.result.get_string().value()));
    });
    ASSERT_TRUE(runUntil(loop_, [&] { return order.size() == 2; }));
    EXPECT_EQ(order, (std::vector<std::string>{"second", "first"}));
    EXPECT_NE(asked[0]["id"], asked[1]["id"]);
}

TEST_F(RpcSessionTest, AnEchoInTheMiddleOfAStreamIsAnsweredAtOnce) {
    open();
    server_.send(
        R"({"id":null,"method":"update","params":[1]}{"id":"echo","method":"echo","params":[]}{"id":null,"met)");
    ASSERT_TRUE(runUntil(loop_, [&] { return !server_.received().empty(); }));
    EXPECT_EQ(server_.received()[0],
              (json{{"id", "echo"}, {"result", json::array()}, {"error", nullptr}}));
    EXPECT_EQ(listener_.notifications.size(), 1U);
    server_.send(R"(hod":"update","params":[2]})");
    ASSERT_TRUE(runUntil(loop_, [&] { return listener_.notifications.size() == 2; }));
    EXPECT_EQ(listener_.notifications[1], "update [2]");
}

TEST_F(RpcSessionTest, TheEchoComesBackWithItsOwnIdAndParameters) {
    open();
    server_.send(R"({"id":[1,"x"],"method":"echo","params":["a",{"b":2}]})");
    ASSERT_TRUE(runUntil(loop_, [&] { return !server_.received().empty(); }));
    EXPECT_EQ(server_.received()[0],
              json::parse(R"({"id":[1,"x"],"result":["a",{"b":2}],"error":null})"));
}

TEST_F(RpcSessionTest, ErrorsOfBothShapesReachTheRequest) {
    open();
    server_.scriptIs([&](FakeServer& server, json const& message) {
        if (message["method"] == "old")
            return server.send(json{{"id", message["id"]}, {"error", "unknown method"}}.dump());
        server.refuse(message, {{"error", "unknown database"}, {"details", "none such"}});
    });
    std::vector<std::string> errors;
    auto const note = [&](RpcReply const& reply) {
        errors.push_back(reply.error ? reply.error->text() : "none");
    };
    session_->request("old", json::array(), note);
    session_->request("new", json::array(), note);
    ASSERT_TRUE(runUntil(loop_, [&] { return errors.size() == 2; }));
    EXPECT_EQ(errors, (std::vector<std::string>{"unknown method", "unknown database: none such"}));
    EXPECT_EQ(session_->outstanding(), 0U);
}

TEST_F(RpcSessionTest, PendingRequestsAreToldOfTheLossOnceEach) {
    open();
    server_.scriptIs([&](FakeServer& server, json const& message) {
        if (message["method"] == "b") server.hangUp();
    });
    std::vector<RpcError::Kind> told;
    auto const note = [&](RpcReply const& reply) { told.push_back(reply.error->kind); };
    session_->request("a", json::array(), note);
    session_->request("b", json::array(), note);
    ASSERT_TRUE(closed());
    EXPECT_EQ(told, (std::vector<RpcError::Kind>{RpcError::Kind::lost, RpcError::Kind::lost}));
    EXPECT_EQ(listener_.reasons, std::vector<std::string>{"the server closed the connection"});
    loop_.restart();
    loop_.poll();
    EXPECT_EQ(listener_.reasons.size(), 1U);
}

TEST_F(RpcSessionTest, GarbageEndsTheSessionWithItsOffset) {
    open();
    server_.send("{\"id\":null,\"method\":\"update\",\"params\":[]}SSH-2.0");
    ASSERT_TRUE(closed());
    EXPECT_EQ(listener_.reasons[0],
              "not JSON: 'S' at offset 41, where an object or array was expected");
    EXPECT_EQ(listener_.notifications.size(), 1U);
}

TEST_F(RpcSessionTest, AFramedValueThatIsNoJsonEndsTheSession) {
    open();
    server_.send("{\"id\":1,,}");
    ASSERT_TRUE(closed());
    EXPECT_EQ(listener_.reasons[0].substr(0, 9), "not JSON:");
}

TEST_F(RpcSessionTest, AMessageThatIsNeitherCallNorReplyEndsTheSession) {
    open();
    server_.send("{\"id\":1}");
    ASSERT_TRUE(closed());
    EXPECT_EQ(
        listener_.reasons[0],
        "a message is neither a call nor a reply: it has no \"method\", \"result\" or \"error\"");
}

TEST_F(RpcSessionTest, AnArrayIsNoMessage) {
    open();
    server_.send("[1]");
    ASSERT_TRUE(closed());
    EXPECT_EQ(listener_.reasons[0], "a JSON-RPC message is no array");
}

TEST_F(RpcSessionTest, ACallWithoutParametersEndsTheSession) {
    open();
    server_.send("{\"id\":\"echo\",\"method\":\"echo\"}");
    ASSERT_TRUE(closed());
    EXPECT_EQ(listener_.reasons[0], "a JSON-RPC call without \"params\": echo");
}

TEST_F(RpcSessionTest, AHandlersExceptionEndsTheSessionAndNothingElse) {
    open();
    server_.notify("throw", json::array());
    ASSERT_TRUE(closed());
    EXPECT_EQ(listener_.reasons[0], "a handler's own trouble");
}

TEST_F(RpcSessionTest, RepliesThatNobodyAskedForAreDropped) {
    open();
    server_.send(
        R"({"id":99,"result":1,"error":null}{"id":"x","result":1,"error":null}{"id":null,"method":"m","params":[]})");
    ASSERT_TRUE(runUntil(loop_, [&] { return !listener_.notifications.empty(); }));
    EXPECT_TRUE(listener_.reasons.empty());
}

TEST_F(RpcSessionTest, CallsOtherThanEchoGetNoReply) {
    open();
    server_.send(
        R"({"id":7,"method":"transact","params":[]}{"id":"echo","method":"echo","params":[]})");
    ASSERT_TRUE(runUntil(loop_, [&] { return !server_.received().empty(); }));
    EXPECT_EQ(server_.received()[0]["id"], "echo");
}

TEST_F(RpcSessionTest, ASilentServerIsAskedAndThenGivenUp) {
    open({milliseconds(100), milliseconds(10000), milliseconds(300)});
    ASSERT_TRUE(closed());
    ASSERT_EQ(server_.received().size(), 1U);
    EXPECT_EQ(server_.received()[0]["method"], "echo");
    EXPECT_EQ(listener_.reasons[0].substr(0, 13), "no answer for");
}

TEST_F(RpcSessionTest, ASilentServerIsToldOnceAndSoIsItsFirstByte) {
    open({milliseconds(50), milliseconds(10000)});
    ASSERT_TRUE(runUntil(loop_, [&] { return !listener_.silences.empty(); }));
    ASSERT_FALSE(runUntil(
        loop_, [&] { return listener_.silences.size() > 1; }, milliseconds(300)));
    server_.send("{");
    ASSERT_TRUE(runUntil(loop_, [&] { return listener_.silences.size() == 2; }));
    EXPECT_EQ(listener_.silences, (std::vector<bool>{true, false}));
    EXPECT_TRUE(listener_.reasons.empty());
}

TEST_F(RpcSessionTest, TimeInWhichThisProcessDidNotRunIsNoSilence) {
    server_.scriptIs(
        [](FakeServer& server, json const& message) { server.reply(message, message["params"]); });
    open({milliseconds(100), milliseconds(200), milliseconds(200)});
    for (int i = 0; i < 3; ++i) {
        std::this_thread::sleep_for(milliseconds(500));
        ASSERT_FALSE(runUntil(
            loop_, [&] { return !listener_.reasons.empty(); }, milliseconds(50)));
    }
    EXPECT_TRUE(listener_.silences.empty());
}

TEST_F(RpcSessionTest, AnAbandonedSessionTellsWhatIsPendingAndNotItsListener) {
    open();
    std::string lost;
    session_->request("a", json::array(),
                      [&](RpcReply const& reply) { lost = reply.error->text(); });
    session_->abandon("left");
    EXPECT_EQ(lost, "connection lost: left");
    EXPECT_TRUE(listener_.reasons.empty());
}

TEST_F(RpcSessionTest, AServerThatAnswersEchoesIsKept) {
    server_.scriptIs(
        [](FakeServer& server, json const& message) { server.reply(message, message["params"]); });
    open({milliseconds(50), milliseconds(10000)});
    ASSERT_TRUE(runUntil(loop_, [&] { return server_.received().size() >= 4; }));
    EXPECT_TRUE(listener_.reasons.empty());
}

TEST_F(RpcSessionTest, ALongSilenceBeforeAReplyIsNoLoss) {
    open({milliseconds(50), milliseconds(10000), milliseconds(100)});
    json asked;
    server_.scriptIs([&](FakeServer&, json const& message) {
        if (message["method"] == "monitor") asked = message;
    });
    bool answered = false;
    session_->request("monitor", json::array(),
                      [&](RpcReply const& reply) { answered = !reply.error; });
    // Eight intervals of silence, echoes unanswered too: the server is busy with the copy.
    ASSERT_FALSE(runUntil(
        loop_, [&] { return !listener_.reasons.empty(); }, milliseconds(400)));
    server_.reply(asked, json::object());
    ASSERT_TRUE(runUntil(loop_, [&] { return answered; }));
}

TEST_F(RpcSessionTest, PatienceWithAReplyEnds) {
    open({milliseconds(50), milliseconds(300), milliseconds(100)});
    bool lost = false;
    session_->request("monitor", json::array(),
                      [&](RpcReply const& reply) { lost = reply.error.has_value(); });
    ASSERT_TRUE(closed());
    EXPECT_TRUE(lost);
}

TEST_F(RpcSessionTest, BytesOfAnUnfinishedValueCountAsLife) {
    open({milliseconds(100), milliseconds(200), milliseconds(200)});
    server_.send("{\"id\":null,\"method\":\"update\",\"params\":[");
    for (int i = 0; i < 10; ++i) {
        ASSERT_FALSE(runUntil(
            loop_, [&] { return !listener_.reasons.empty(); }, milliseconds(50)));
        server_.send("1,");
    }
    server_.send("1]}");
    ASSERT_TRUE(runUntil(loop_, [&] { return listener_.notifications.size() == 1; }));
}

TEST_F(RpcSessionTest, TheOwnerMayCloseInsideAHandler) {
    open();
    server_.scriptIs([](FakeServer& server, json const& message) { server.reply(message, 1); });
    bool ran = false;
    session_->request("a", json::array(), [&](RpcReply const&) {
        session_->close();
        session_.reset();
        ran = true;
    });
    ASSERT_TRUE(runUntil(loop_, [&] { return ran; }));
    EXPECT_TRUE(listener_.reasons.empty());
}

TEST(Connector, WhoIsNotThereIsToldInWords) {
    asio::io_context loop;
    Connector connector(loop);
    std::string said;
    connector.connect(parseRemote("unix:/nonexistent/db.sock"), {}, milliseconds(1000),
                      [&](std::shared_ptr<Transport> transport, std::string const& error) {
                          EXPECT_EQ(transport, nullptr);
                          said = error;
                      });
    ASSERT_TRUE(runUntil(loop, [&] { return !said.empty(); }));
    EXPECT_EQ(said, "No such file or directory");
}

TEST(Connector, ACancelledAttemptRunsNoHandler) {
    asio::io_context loop;
    Connector connector(loop);
    bool ran = false;
    connector.connect(parseRemote("tcp:127.0.0.1:1"), {}, milliseconds(1000),
                      [&](std::shared_ptr<Transport> const&, std::string const&) { ran = true; });
    connector.cancel();
    EXPECT_FALSE(runUntil(
        loop, [&] { return ran; }, milliseconds(100)));
}

TEST(Connector, ACertificateThatCannotBeReadIsNamed) {
    asio::io_context loop;
    asio::ip::tcp::acceptor acceptor(loop, {asio::ip::make_address("127.0.0.1"), 0});
    Connector connector(loop);
    std::string said;
    TlsFiles const none{"/nonexistent/key.pem", "/nonexistent/cert.pem", "/nonexistent/ca.pem"};
    connector.connect(
        parseRemote("ssl:127.0.0.1:" + std::to_string(acceptor.local_endpoint().port())), none,
        milliseconds(1000),
        [&](std::shared_ptr<Transport> const&, std::string const& error) { said = error; });
    ASSERT_TRUE(runUntil(loop, [&] { return !said.empty(); }));
    EXPECT_EQ(said.substr(0, 22), "/nonexistent/cert.pem:");
}

}  // namespace
}  // namespace Ovsdb
