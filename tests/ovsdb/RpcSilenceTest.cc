// A server that says nothing, nothing but echoes, or does not read.

#include "RpcSessionUnderTest.h"

#include <asio/post.hpp>

#include <thread>

namespace Ovsdb {
namespace {

TEST_F(RpcSessionTest, ASilentServerIsAskedAndThenGivenUp) {
    open({milliseconds(100), milliseconds(10000), milliseconds(300)});
    ASSERT_TRUE(closed());
    ASSERT_EQ(server_.received().size(), 1U);
    EXPECT_EQ(server_.received()[0]["method"], "echo");
    EXPECT_EQ(listener_.reasons[0].substr(0, 13), "no answer for");
}

TEST_F(RpcSessionTest, ASilenceIsOverWhenTheEchoIsAnsweredAndNotWithTheFirstByte) {
    json asked;
    server_.scriptIs([&](FakeServer&, json const& message) { asked = message; });
    open({milliseconds(50), milliseconds(10000)});
    ASSERT_TRUE(runUntil(loop_, [&] { return !listener_.silences.empty(); }));
    ASSERT_FALSE(runUntil(
        loop_, [&] { return listener_.silences.size() > 1; }, milliseconds(300)));
    server_.send(R"({"id":null,"method":"update","params":[1]}{"id":null,"met)");
    ASSERT_TRUE(runUntil(loop_, [&] { return listener_.silences.size() == 2; }));
    server_.send(R"(hod":"update","params":[2]})");
    ASSERT_TRUE(runUntil(loop_, [&] { return listener_.notifications.size() == 2; }));
    EXPECT_EQ(listener_.silences, (std::vector<Silence>{Silence::begun, Silence::broken}));
    server_.reply(asked, json::array());
    ASSERT_TRUE(runUntil(loop_, [&] { return listener_.silences.size() > 2; }));
    EXPECT_EQ(listener_.silences.back(), Silence::over);
    EXPECT_TRUE(listener_.reasons.empty());
}

TEST_F(RpcSessionTest, AServerThatFallsSilentAgainIsToldAgain) {
    open({milliseconds(50), milliseconds(10000)});
    ASSERT_TRUE(runUntil(loop_, [&] { return listener_.silences.size() == 1; }));
    server_.send("{");
    ASSERT_TRUE(runUntil(loop_, [&] { return listener_.silences.size() == 3; }));
    EXPECT_EQ(listener_.silences,
              (std::vector<Silence>{Silence::begun, Silence::broken, Silence::begun}));
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

TEST_F(RpcSessionTest, AServerThatAnswersEchoesIsKept) {
    server_.scriptIs(
        [](FakeServer& server, json const& message) { server.reply(message, message["params"]); });
    open({milliseconds(50), milliseconds(10000)});
    ASSERT_TRUE(runUntil(loop_, [&] { return server_.received().size() >= 4; }));
    EXPECT_TRUE(listener_.reasons.empty());
}

// A server that keeps a request until the test answers it.
class RpcKeptRequestTest : public RpcSessionTest {
  protected:
    void openAndAsk(RpcTimes times) {
        open(times);
        server_.scriptIs([&](FakeServer&, json const& message) {
            if (message["method"] == "monitor") asked_ = message;
        });
        session_->request("monitor", json::array(),
                          [&](RpcReply const& reply) { answered_ = !reply.error; });
    }

    json asked_;
    bool answered_ = false;
};

TEST_F(RpcKeptRequestTest, ALongSilenceBeforeAReplyIsNoLoss) {
    openAndAsk({milliseconds(50), milliseconds(10000), milliseconds(100)});
    // Eight intervals of silence, echoes unanswered too: the server is busy with the copy.
    ASSERT_FALSE(runUntil(
        loop_, [&] { return !listener_.reasons.empty(); }, milliseconds(400)));
    server_.reply(asked_, json::object());
    ASSERT_TRUE(runUntil(loop_, [&] { return answered_; }));
}

TEST_F(RpcSessionTest, PatienceWithAReplyEnds) {
    open({milliseconds(50), milliseconds(300), milliseconds(100)});
    bool lost = false;
    session_->request("monitor", json::array(),
                      [&](RpcReply const& reply) { lost = reply.error.has_value(); });
    ASSERT_TRUE(closed());
    EXPECT_TRUE(lost);
}

TEST_F(RpcSessionTest, AServerThatAnswersNothingButEchoesIsLeft) {
    server_.scriptIs([](FakeServer& server, json const& message) {
        if (message["method"] == "echo") server.reply(message, message["params"]);
    });
    open({milliseconds(50), milliseconds(300)});
    std::string lost;
    session_->request("get_schema", json::array(),
                      [&](RpcReply const& reply) { lost = reply.error->text(); });
    ASSERT_FALSE(runUntil(
        loop_, [&] { return !listener_.reasons.empty(); }, milliseconds(200)));
    ASSERT_TRUE(runUntil(
        loop_, [&] { return !listener_.reasons.empty(); }, milliseconds(3000)));
    EXPECT_EQ(listener_.reasons[0], "no answer to get_schema for 300 ms");
    EXPECT_EQ(lost, "connection lost: no answer to get_schema for 300 ms");
}

TEST_F(RpcSessionTest, EchoesThatComeInPiecesAreNoAnswerEither) {
    open({milliseconds(50), milliseconds(300)});
    session_->request("monitor", json::array(), [](RpcReply const&) {});
    std::string const echo = R"({"id":"echo","method":"echo","params":[]})";
    std::size_t sent = 0;
    ASSERT_TRUE(runUntil(
        loop_,
        [&] {
            server_.send(echo.substr(sent++ % echo.size(), 1));
            return !listener_.reasons.empty();
        },
        milliseconds(5000)));
    EXPECT_EQ(listener_.reasons[0], "no answer to monitor for 300 ms");
}

TEST_F(RpcKeptRequestTest, AReplyThatComesByteAfterByteIsAwaitedForAsLongAsItTakes) {
    openAndAsk({milliseconds(50), milliseconds(200), milliseconds(200)});
    ASSERT_TRUE(runUntil(loop_, [&] { return !asked_.is_null(); }));
    server_.send(R"({"error":null,"id":)" + asked_["id"].dump() + R"(,"result":[)");
    for (int i = 0; i < 20; ++i) {
        ASSERT_FALSE(runUntil(
            loop_, [&] { return !listener_.reasons.empty(); }, milliseconds(50)));
        server_.send("1,");
    }
    server_.send("1]}");
    ASSERT_TRUE(runUntil(loop_, [&] { return answered_; }));
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

// A connection whose other end reads and sends when the test says so.
class HeldTransport final : public Transport {
  public:
    explicit HeldTransport(asio::io_context& loop) : loop_(loop) {}

    void readSome(std::span<char> room, Handler handler) override {
        room_ = room;
        reader_ = std::move(handler);
    }
    void write(std::string_view bytes, Handler handler) override {
        size_ = bytes.size();
        writer_ = std::move(handler);
    }
    void close() override { reader_ = writer_ = nullptr; }

    bool isRead() const { return reader_ != nullptr; }
    void give(std::string_view bytes) {
        std::copy(bytes.begin(), bytes.end(), room_.begin());
        asio::post(loop_, [handler = std::exchange(reader_, nullptr), size = bytes.size()] {
            handler({}, size);
        });
    }
    void take() {
        if (!writer_) return;
        taken += size_;
        asio::post(loop_, [handler = std::exchange(writer_, nullptr), size = size_] {
            handler({}, size);
        });
    }

    std::size_t taken = 0;

  private:
    asio::io_context& loop_;
    std::span<char> room_;
    std::size_t size_ = 0;
    Handler reader_;
    Handler writer_;
};

class UnreadAnswersTest : public testing::Test {
  protected:
    ~UnreadAnswersTest() override { session_->close(); }

    void open(RpcTimes times) {
        session_ = std::make_shared<RpcSession>(loop_, transport_, listener_, times);
        session_->start();
    }
    // Asks for as long as it is listened to, and reads a little after each time that it asks, or
    // nothing; how many bytes it asked.
    std::size_t askUntilUnheard(bool reads = false) {
        std::string asked;
        while (asked.size() < 200'000) asked += R"({"id":1,"method":"echo","params":["abc"]})";
        std::size_t sent = 0;
        while (transport_->isRead() && sent < 64 * RpcSession::mostAnswers) {
            transport_->give(asked);
            sent += asked.size();
            loop_.restart();
            loop_.poll();
            if (reads) transport_->take();
        }
        return sent;
    }
    void runFor(milliseconds time) {
        runUntil(
            loop_, [] { return false; }, time);
    }

    asio::io_context loop_;
    std::shared_ptr<HeldTransport> transport_ = std::make_shared<HeldTransport>(loop_);
    RecordingRpcListener listener_;
    std::shared_ptr<RpcSession> session_;
};

TEST_F(UnreadAnswersTest, AServerThatAsksAndDoesNotReadIsNotHeardAnyMore) {
    open({milliseconds(0), milliseconds(0)});
    EXPECT_LT(askUntilUnheard(), 2 * RpcSession::mostAnswers);
    EXPECT_FALSE(transport_->isRead());
    // It reads again, and is heard again, before all that waits has gone.
    for (int i = 0; i < 40'000 && !transport_->isRead(); ++i) {
        transport_->take();
        loop_.restart();
        loop_.poll();
    }
    EXPECT_TRUE(transport_->isRead());
    EXPECT_LT(transport_->taken, RpcSession::mostAnswers);
    EXPECT_LT(askUntilUnheard(), RpcSession::mostAnswers);
}

// What it says is not heard, so nobody knows whether it is in step.
TEST_F(UnreadAnswersTest, WhoReadsALittleIsSilentAndNotGivenUp) {
    open({milliseconds(20), milliseconds(10000), milliseconds(1000)});
    askUntilUnheard(true);
    for (int i = 0; i < 12; ++i) {
        transport_->take();
        runFor(milliseconds(100));
    }
    EXPECT_FALSE(transport_->isRead());
    EXPECT_EQ(listener_.silences, std::vector<Silence>{Silence::begun});
    EXPECT_TRUE(listener_.reasons.empty());
}

TEST_F(UnreadAnswersTest, WhoReadsNothingIsGivenUp) {
    auto const begun = std::chrono::steady_clock::now();
    open({milliseconds(20), milliseconds(10000), milliseconds(200)});
    askUntilUnheard();
    session_->request("get_schema", json::array(), [](RpcReply const&) {});
    ASSERT_TRUE(runUntil(loop_, [&] { return !listener_.reasons.empty(); }));
    EXPECT_GE(std::chrono::steady_clock::now() - begun, milliseconds(200));
    EXPECT_EQ(listener_.reasons,
              std::vector<std::string>{"nothing of what is sent was read for 200 ms"});
}

TEST_F(UnreadAnswersTest, RequestsThatWaitDoNotKeepUsFromReading) {
    open({milliseconds(0), milliseconds(0)});
    session_->request("transact", std::string(4 * RpcSession::mostAnswers, 'x'),
                      [](RpcReply const&) {});
    transport_->give(R"({"id":null,"method":"update","params":[]})");
    runFor(milliseconds(20));
    EXPECT_TRUE(transport_->isRead());
}

}  // namespace
}  // namespace Ovsdb
