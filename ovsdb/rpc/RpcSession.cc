#include <ovsdb/rpc/RpcSession.h>

#include <ovsdb/rpc/ProtocolError.h>

#include <asio/error.hpp>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <utility>

namespace Ovsdb {
namespace {

static_assert(JsonFramer::padding >= simdjson::SIMDJSON_PADDING);

constexpr std::size_t readSize = std::size_t{256} << 10;
// A parser that served a great message is given up: its tape is as large as the message.
constexpr std::size_t keptParser = std::size_t{1} << 20;

std::string describe(std::error_code error) {
    return error == asio::error::eof ? "the server closed the connection" : error.message();
}

}  // namespace

RpcSession::RpcSession(asio::io_context& loop, std::shared_ptr<Transport> transport,
                       RpcListener& listener, RpcTimes times)
    : transport_(std::move(transport)), listener_(&listener), times_(times), probe_(loop) {}

void RpcSession::start() {
    lastHeard_ = Clock::now();
    scheduleProbe();
    read();
}

void RpcSession::close() {
    listener_ = nullptr;
    pending_.clear();
    probe_.cancel();
    transport_->close();
}

std::chrono::milliseconds RpcSession::sinceLastByte() const {
    return std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - lastByte_);
}

void RpcSession::abandon(std::string const& reason) {
    if (listener_ == nullptr) return;
    std::map<std::int64_t, ReplyHandler> const pending = std::move(pending_);
    close();
    RpcReply lost;
    lost.error = RpcError{RpcError::Kind::lost, "connection lost", reason, 0};
    for (auto const& [id, handler] : pending) handler(lost);
}

void RpcSession::fail(std::string const& reason) {
    if (listener_ == nullptr) return;
    RpcListener* const listener = listener_;
    abandon(reason);
    listener->onClosed(reason);
}

std::int64_t RpcSession::request(std::string_view method, nlohmann::json const& params,
                                 ReplyHandler handler) {
    std::int64_t const id = nextId_++;
    pending_.emplace(id, std::move(handler));
    send(nlohmann::json{{"id", id}, {"method", method}, {"params", params}}.dump());
    return id;
}

void RpcSession::notify(std::string_view method, nlohmann::json const& params) {
    send(nlohmann::json{{"id", nullptr}, {"method", method}, {"params", params}}.dump());
}

void RpcSession::send(std::string text) {
    if (listener_ == nullptr) return;
    outgoing_.push_back(std::move(text));
    if (outgoing_.size() == 1) write();
}

void RpcSession::write() {
    transport_->write(outgoing_.front(),
                      [self = shared_from_this()](std::error_code error, std::size_t) {
                          if (self->listener_ == nullptr) return;
                          if (error) return self->fail(describe(error));
                          self->outgoing_.pop_front();
                          if (!self->outgoing_.empty()) self->write();
                      });
}

void RpcSession::read() {
    transport_->readSome(framer_.prepare(readSize),
                         [self = shared_from_this()](std::error_code error, std::size_t size) {
                             self->handleRead(error, size);
                         });
}

void RpcSession::handleRead(std::error_code error, std::size_t size) {
    if (listener_ == nullptr) return;
    if (error) return fail(describe(error));
    received_ += size;
    lastHeard_ = lastByte_ = Clock::now();
    framer_.commit(size);
    try {
        heard();
        handleMessages();
        if (listener_ != nullptr) read();
    } catch (std::exception const& e) {
        fail(e.what());
    }
}

void RpcSession::handleMessages() {
    while (listener_ != nullptr) {
        std::optional<std::string_view> const text = framer_.next();
        if (!text) return;
        handleMessage(*text);
        // Applying took time in which the server may have spoken: what waits in the socket is heard
        // first.
        lastHeard_ = Clock::now();
    }
}

void RpcSession::handleMessage(std::string_view text) {
    simdjson::dom::element document;
    simdjson::error_code const error = parser_.parse(text.data(), text.size(), false).get(document);
    if (error != simdjson::SUCCESS)
        throw ProtocolError(std::string("not JSON: ") + simdjson::error_message(error));
    simdjson::dom::object message;
    if (document.get(message) != simdjson::SUCCESS)
        throw ProtocolError("a JSON-RPC message is no array");
    std::string_view method;
    if (message["method"].get(method) == simdjson::SUCCESS)
        handleCall(message, method);
    else
        handleReply(message);
    if (text.size() > keptParser) parser_ = simdjson::dom::parser();
}

void RpcSession::handleCall(simdjson::dom::object message, std::string_view method) {
    simdjson::dom::element params;
    if (message["params"].get(params) != simdjson::SUCCESS)
        throw ProtocolError("a JSON-RPC call without \"params\": " + std::string(method));
    simdjson::dom::element id;
    bool const wantsReply = message["id"].get(id) == simdjson::SUCCESS && !id.is_null();
    if (!wantsReply) {
        listener_->onNotification(method, params);
    } else if (method == "echo") {
        send("{\"id\":" + std::string(simdjson::minify(id)) +
             ",\"result\":" + std::string(simdjson::minify(params)) + ",\"error\":null}");
    }
}

void RpcSession::handleReply(simdjson::dom::object message) {
    std::int64_t id = 0;
    simdjson::dom::element error;
    simdjson::dom::element result;
    bool const hasError = message["error"].get(error) == simdjson::SUCCESS;
    bool const hasResult = message["result"].get(result) == simdjson::SUCCESS;
    if (!hasError && !hasResult)
        throw ProtocolError(
            "a message is neither a call nor a reply: it has no \"method\", \"result\" or "
            "\"error\"");
    if (message["id"].get(id) != simdjson::SUCCESS) return;
    auto const found = pending_.find(id);
    if (found == pending_.end()) return;
    ReplyHandler const handler = std::move(found->second);
    pending_.erase(found);
    RpcReply reply;
    if (hasError) reply.error = replyError(error);
    if (!reply.error && !hasResult)
        throw ProtocolError("a reply has neither \"result\" nor an error");
    reply.result = result;
    handler(reply);
}

void RpcSession::heard() {
    if (std::exchange(silent_, false)) listener_->onSilent(false);
}

// Looked at twice an interval: an answer that does not come is noticed within half of one.
void RpcSession::scheduleProbe() {
    if (times_.probe.count() == 0) return;
    nextProbe_ = Clock::now() + std::max(times_.probe / 2, std::chrono::milliseconds(1));
    probe_.expires_at(nextProbe_);
    probe_.async_wait([self = shared_from_this()](std::error_code error) {
        if (error || self->listener_ == nullptr) return;
        self->handleProbe();
    });
}

void RpcSession::handleProbe() {
    // Late: this process did not run for a while, and what came meanwhile is yet to be read.
    auto const late = Clock::now() - nextProbe_;
    if (late > times_.probe / 2) lastHeard_ += late;
    auto const silence =
        std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - lastHeard_);
    if (isPastLimit(silence))
        return fail("no answer for " + std::to_string(silence.count()) + " ms");
    if (silence >= times_.probe && !echoing_) {
        echoing_ = true;
        request("echo", nlohmann::json::array(), [this](RpcReply const&) { echoing_ = false; });
    }
    scheduleProbe();
    if (silence < 2 * times_.probe || std::exchange(silent_, true)) return;
    try {
        listener_->onSilent(true);
    } catch (std::exception const& e) {
        fail(e.what());
    }
}

bool RpcSession::isPastLimit(std::chrono::milliseconds silence) const {
    bool const waiting = pending_.size() > (echoing_ ? 1U : 0U);
    return silence >= (waiting ? std::max(times_.patience, times_.limit) : times_.limit);
}

}  // namespace Ovsdb
