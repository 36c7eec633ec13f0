#ifndef TESTS_OVSDB_RPC_SESSION_UNDER_TEST_H
#define TESTS_OVSDB_RPC_SESSION_UNDER_TEST_H

// A session beside a server that does what the test says, and what its listener heard.

#include "EventLoop.h"
#include "FakeServer.h"

#include <ovsdb/rpc/Connector.h>
#include <ovsdb/rpc/RpcSession.h>

#include <gtest/gtest.h>

namespace Ovsdb {

using nlohmann::json;
using std::chrono::milliseconds;

class RecordingRpcListener : public RpcListener {
  public:
    void onNotification(std::string_view method, simdjson::dom::element params) override {
        notifications.emplace_back(std::string(method) + " " +
                                   std::string(simdjson::minify(params)));
        if (method == "throw") throw std::runtime_error("a handler's own trouble");
    }
    void onSilence(Silence silence) override { silences.push_back(silence); }
    void onClosed(std::string const& reason) override { reasons.push_back(reason); }

    std::vector<std::string> notifications;
    std::vector<std::string> reasons;
    std::vector<Silence> silences;
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
    RecordingRpcListener listener_;
    std::shared_ptr<RpcSession> session_;
};

}  // namespace Ovsdb

#endif
