#include "RpcSessionUnderTest.h"

#include <asio/ip/tcp.hpp>

namespace Ovsdb {
namespace {

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

TEST_F(RpcSessionTest, AReplyWithoutResultAndErrorEndsTheSessionAndTheRequestIsLost) {
    open();
    server_.scriptIs([](FakeServer& server, json const& message) {
        server.send(json{{"id", message["id"]}, {"error", nullptr}}.dump());
    });
    std::vector<RpcError::Kind> told;
    session_->request("a", json::array(),
                      [&](RpcReply const& reply) { told.push_back(reply.error->kind); });
    ASSERT_TRUE(closed());
    EXPECT_EQ(told, std::vector<RpcError::Kind>{RpcError::Kind::lost});
    EXPECT_EQ(listener_.reasons,
              std::vector<std::string>{"a reply has neither \"result\" nor an error"});
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

TEST_F(RpcSessionTest, AnAbandonedSessionTellsWhatIsPendingAndNotItsListener) {
    open();
    std::string lost;
    session_->request("a", json::array(),
                      [&](RpcReply const& reply) { lost = reply.error->text(); });
    session_->abandon("left");
    EXPECT_EQ(lost, "connection lost: left");
    EXPECT_TRUE(listener_.reasons.empty());
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
