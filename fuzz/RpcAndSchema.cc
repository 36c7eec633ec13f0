// A server whose bytes come from a fuzzer, at the other end of a JSON-RPC session that has requests
// pending: each is answered once or lost once, the session ends with one reason at most, and what
// it hears does not depend on where the stream was cut. Each result is read as a schema and as the
// outcome of a transact too: it is one, or refused by name.
//
// The first byte says how the stream is cut, the second who closes what, and when.
#include <fuzz/FuzzInput.h>
#include <ovsdb/rpc/ProtocolError.h>
#include <ovsdb/rpc/RpcSession.h>
#include <ovsdb/schema/MonitorPlan.h>
#include <ovsdb/schema/Schema.h>

#include <asio/error.hpp>
#include <asio/io_context.hpp>
#include <asio/post.hpp>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <string>
#include <vector>

namespace {

using nlohmann::json;
using Ovsdb::RpcReply;
using Ovsdb::RpcSession;

constexpr int requests = 4;

// Gives the stream piece by piece and takes all that is written, in the event loop's own time.
class Script : public Ovsdb::Transport {
  public:
    Script(asio::io_context& loop, std::string_view stream, std::size_t piece)
        : loop_(loop), stream_(stream), piece_(piece) {}

    void readSome(std::span<char> room, Handler handler) override {
        std::size_t const count = std::min({piece_, stream_.size(), room.size()});
        std::copy_n(stream_.data(), count, room.data());
        stream_.remove_prefix(count);
        then(std::move(handler), count);
    }
    void write(std::string_view bytes, Handler handler) override {
        must(!isClosed_);
        written += bytes;
        asio::post(loop_, [this, handler = std::move(handler), count = bytes.size()] {
            isClosed_ ? handler(asio::error::operation_aborted, 0) : handler({}, count);
        });
    }
    void close() override { isClosed_ = true; }

    std::string written;

  private:
    void then(Handler handler, std::size_t count) {
        asio::post(loop_, [this, handler = std::move(handler), count] {
            if (isClosed_) return handler(asio::error::operation_aborted, 0);
            count == 0 ? handler(asio::error::eof, 0) : handler({}, count);
        });
    }

    asio::io_context& loop_;
    std::string_view stream_;
    std::size_t const piece_;
    bool isClosed_ = false;
};

void readAsSchema(simdjson::dom::element element) {
    try {
        static_cast<void>(Ovsdb::MonitorPlan(Ovsdb::readSchema(element)));
    } catch (Ovsdb::ProtocolError const&) {
    }
}

void readAsTransact(simdjson::dom::element element) {
    try {
        auto const failed = Ovsdb::transactError(element, 2);
        if (failed) must(!failed->text().empty() || failed->error.empty());
    } catch (Ovsdb::ProtocolError const&) {
    }
}

// All that a session's owner is told, in order.
class Owner : public Ovsdb::RpcListener {
  public:
    explicit Owner(std::uint8_t ways) : ways_(ways) {}

    void onNotification(std::string_view method, simdjson::dom::element params) override {
        must(!isClosed_);
        told.push_back("call " + std::string(method) + " " + std::string(simdjson::minify(params)));
        if ((ways_ & 1) != 0 && method == "throw") throw std::runtime_error("a handler's trouble");
        if ((ways_ & 2) != 0 && method == "close") end();
    }
    void onSilence(Ovsdb::Silence) override { must(false); }
    void onClosed(std::string const& reason) override {
        must(!isClosed_ && !reason.empty());
        isClosed_ = true;
        told.push_back("closed " + reason);
    }
    void onReply(std::size_t number, RpcReply const& reply) {
        must(answers.at(number)++ == 0);
        std::string const what = reply.error ? "error " + reply.error->text()
                                             : std::string(simdjson::minify(reply.result));
        told.push_back("reply " + std::to_string(number) + " " + what);
        if (reply.error) return;
        readAsSchema(reply.result);
        readAsTransact(reply.result);
        if ((ways_ & 4) != 0) end();
    }

    std::shared_ptr<RpcSession> session;
    std::vector<std::string> told;
    std::array<int, requests> answers{};
    bool isEnded = false;  // by its owner, whom nobody told

  private:
    void end() {
        isEnded = true;
        session->close();
    }
    std::uint8_t const ways_;
    bool isClosed_ = false;
};

// What it was told, and what it sent.
std::vector<std::string> play(std::string_view stream, std::size_t piece, std::uint8_t ways) {
    asio::io_context loop(1);
    auto const script = std::make_shared<Script>(loop, stream, piece);
    Owner owner(ways);
    Ovsdb::RpcTimes const silent{std::chrono::milliseconds(0), {}, {}};
    owner.session = std::make_shared<RpcSession>(loop, script, owner, silent);
    owner.session->start();
    for (std::size_t number = 0; number < requests; ++number) {
        owner.session->request("get", json::array(), [&owner, number](RpcReply const& reply) {
            owner.onReply(number, reply);
        });
    }
    loop.run();
    must(owner.session->outstanding() == 0);
    for (int const times : owner.answers) must(owner.isEnded || times == 1);
    owner.told.push_back(script->written);
    return owner.told;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    if (size < 2) return 0;
    std::string_view const stream = textOf(data + 2, size - 2);
    std::size_t const piece = 1U + data[0] % 64;
    auto const cut = play(stream, piece, data[1]);
    auto const whole = play(stream, stream.size() + 1, data[1]);
    // What was not sent before the end depends on when that came.
    must(std::equal(cut.begin(), cut.end() - 1, whole.begin(), whole.end() - 1));
    return 0;
}
