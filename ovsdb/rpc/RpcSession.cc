#include <ovsdb/rpc/RpcSession.h>

#include <ovsdb/rpc/ProtocolError.h>

#include <asio/error.hpp>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <utility>

namespace Ovsdb {
namespace {

static_assert(JsonFramer::padding >= simdjson::SIMDJSON_PADDING);

using std::chrono::milliseconds;

constexpr std::size_t readSize = std::size_t{256} << 10;
constexpr std::size_t writeSize = std::size_t{64} << 10;
// A parser that served a great message is given up: its tape is as large as the message.
constexpr std::size_t keptParser = std::size_t{1} << 20;

std::string describe(std::error_code error) {
    return error == asio::error::eof ? "the server closed the connection" : error.message();
}

std::string textOf(milliseconds time) { return std::to_string(time.count()) + " ms"; }

}  // namespace

RpcSession::RpcSession(asio::io_context& loop, std::shared_ptr<Transport> transport,
                       RpcListener& listener, RpcTimes times)
    : transport_(std::move(transport)), listener_(&listener), times_(times), probe_(loop) {}

void RpcSession::start() {
    lastHeard_ = lastAnswer_ = lastPart_ = lastWritten_ = now();
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
    std::map<std::int64_t, Request> const pending = std::move(pending_);
    close();
    RpcReply lost;
    lost.error = RpcError{RpcError::Kind::lost, "connection lost", reason, 0};
    for (auto const& [id, request] : pending) request.handler(lost);
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
    pending_.emplace(id, Request{std::move(handler), std::string(method), now()});
    send(nlohmann::json{{"id", id}, {"method", method}, {"params", params}}.dump());
    return id;
}

void RpcSession::notify(std::string_view method, nlohmann::json const& params) {
    send(nlohmann::json{{"id", nullptr}, {"method", method}, {"params", params}}.dump());
}

void RpcSession::send(std::string text, bool isAnswer) {
    if (listener_ == nullptr) return;
    if (isAnswer) answers_ += text.size();
    outgoing_.push_back({std::move(text), isAnswer});
    if (outgoing_.size() > 1) return;
    lastWritten_ = now();
    write();
}

// Piece by piece: each that is taken shows that the server reads.
void RpcSession::write() {
    std::string_view const rest = std::string_view(outgoing_.front().text).substr(written_);
    transport_->write(rest.substr(0, writeSize),
                      [self = shared_from_this()](std::error_code error, std::size_t size) {
                          if (self->listener_ == nullptr) return;
                          if (error) return self->fail(describe(error));
                          self->handleWritten(size);
                      });
}

void RpcSession::handleWritten(std::size_t size) {
    lastWritten_ = now();
    written_ += size;
    Outgoing const& first = outgoing_.front();
    if (written_ == first.text.size()) {
        if (first.isAnswer) answers_ -= first.text.size();
        outgoing_.pop_front();
        written_ = 0;
    }
    if (!outgoing_.empty()) write();
    if (full_) readUnlessFull();
}

void RpcSession::read() {
    transport_->readSome(framer_.prepare(readSize),
                         [self = shared_from_this()](std::error_code error, std::size_t size) {
                             self->handleRead(error, size);
                         });
}

void RpcSession::readUnlessFull() {
    // What came while nothing was read is yet to be heard.
    if (std::exchange(full_, answers_ > mostAnswers) && !full_) lastHeard_ = now();
    if (!full_) read();
}

void RpcSession::handleRead(std::error_code error, std::size_t size) {
    if (listener_ == nullptr) return;
    if (error) return fail(describe(error));
    excuseDelay();
    received_ += size;
    lastByte_ = Clock::now();
    lastHeard_ = now();
    framer_.commit(size);
    try {
        if (silence_ == Silence::begun) {
            silence_ = Silence::broken;
            listener_->onSilence(Silence::broken);
        }
        handleMessages();
        if (listener_ != nullptr) readUnlessFull();
    } catch (std::exception const& e) {
        fail(e.what());
    }
}

void RpcSession::handleMessages() {
    bool isPart = true;
    while (listener_ != nullptr) {
        std::optional<std::string_view> const text = framer_.next();
        if (!text) break;
        isPart = false;
        bool const isEcho = handleMessage(*text);
        // Applying took time in which the server may have spoken: what waits in the socket is heard
        // first.
        excuseDelay();
        lastHeard_ = now();
        if (!isEcho) lastAnswer_ = lastHeard_;
        // The parts of an echo were nothing else either.
        lastPart_ = lastAnswer_;
        if (std::string const reason = overdueRequest(); !reason.empty()) fail(reason);
    }
    if (isPart) lastPart_ = now();
}

// Whether it was an echo, or the answer to one.
bool RpcSession::handleMessage(std::string_view text) {
    simdjson::dom::element document;
    simdjson::error_code const error = parser_.parse(text.data(), text.size(), false).get(document);
    if (error != simdjson::SUCCESS)
        throw ProtocolError(std::string("not JSON: ") + simdjson::error_message(error));
    simdjson::dom::object message;
    if (document.get(message) != simdjson::SUCCESS)
        throw ProtocolError("a JSON-RPC message is no array");
    std::string_view method;
    bool const isCall = message["method"].get(method) == simdjson::SUCCESS;
    bool const isEcho = isCall ? handleCall(message, method) : handleReply(message);
    if (text.size() > keptParser) parser_ = simdjson::dom::parser();
    return isEcho;
}

bool RpcSession::handleCall(simdjson::dom::object message, std::string_view method) {
    simdjson::dom::element params;
    if (message["params"].get(params) != simdjson::SUCCESS)
        throw ProtocolError("a JSON-RPC call without \"params\": " + std::string(method));
    simdjson::dom::element id;
    bool const wantsReply = message["id"].get(id) == simdjson::SUCCESS && !id.is_null();
    if (!wantsReply) {
        listener_->onNotification(method, params);
    } else if (method == "echo") {
        send("{\"id\":" + std::string(simdjson::minify(id)) +
                 ",\"result\":" + std::string(simdjson::minify(params)) + ",\"error\":null}",
             true);
    }
    return method == "echo";
}

bool RpcSession::handleReply(simdjson::dom::object message) {
    std::int64_t id = 0;
    simdjson::dom::element error;
    simdjson::dom::element result;
    bool const hasError = message["error"].get(error) == simdjson::SUCCESS;
    bool const hasResult = message["result"].get(result) == simdjson::SUCCESS;
    if (!hasError && !hasResult)
        throw ProtocolError(
            "a message is neither a call nor a reply: it has no \"method\", \"result\" or "
            "\"error\"");
    if (message["id"].get(id) != simdjson::SUCCESS) return false;
    auto const found = pending_.find(id);
    if (found == pending_.end()) return false;
    RpcReply reply;
    if (hasError) reply.error = replyError(error);
    // Still pending: its handler hears that it is lost.
    if (!reply.error && !hasResult)
        throw ProtocolError("a reply has neither \"result\" nor an error");
    Request const request = std::move(found->second);
    pending_.erase(found);
    reply.result = result;
    request.handler(reply);
    return request.method == "echo";
}

// Looked at twice an interval: an answer that does not come is noticed within half of one.
void RpcSession::scheduleProbe() {
    if (times_.probe.count() == 0) return;
    nextProbe_ = Clock::now() + std::max(times_.probe / 2, milliseconds(1));
    probe_.expires_at(nextProbe_);
    probe_.async_wait([self = shared_from_this()](std::error_code error) {
        if (error || self->listener_ == nullptr) return;
        self->handleProbe();
    });
}

// This process did not run for a while: what came meanwhile is yet to be read.
void RpcSession::excuseDelay() {
    if (times_.probe.count() == 0) return;
    auto const late = Clock::now() - nextProbe_;
    if (late <= times_.probe / 2) return;
    excused_ += late;
    nextProbe_ += late;
}

void RpcSession::handleProbe() {
    excuseDelay();
    if (std::string const reason = overdue(); !reason.empty()) return fail(reason);
    auto const silence = now() - lastHeard_;
    if (silence >= times_.probe && !echoing_) echo();
    scheduleProbe();
    try {
        noteSilence(silence);
    } catch (std::exception const& e) {
        fail(e.what());
    }
}

void RpcSession::echo() {
    echoing_ = true;
    request("echo", nlohmann::json::array(), [this](RpcReply const&) {
        echoing_ = false;
        if (listener_ != nullptr && std::exchange(silence_, std::nullopt))
            listener_->onSilence(Silence::over);
    });
}

void RpcSession::noteSilence(std::chrono::nanoseconds silence) {
    if (silence < 2 * times_.probe || silence_ == Silence::begun) return;
    silence_ = Silence::begun;
    listener_->onSilence(Silence::begun);
}

// Why the connection is to be given up; empty while it isn't.
std::string RpcSession::overdue() const {
    if (full_ && now() - lastWritten_ >= times_.limit)
        return "nothing of what is sent was read for " + textOf(times_.limit);
    if (std::string reason = overdueRequest(); !reason.empty()) return reason;
    if (full_) return {};
    bool const waiting = pending_.size() > (echoing_ ? 1U : 0U);
    milliseconds const limit = waiting ? std::max(times_.patience, times_.limit) : times_.limit;
    return now() - lastHeard_ >= limit ? "no answer for " + textOf(limit) : "";
}

std::string RpcSession::overdueRequest() const {
    if (times_.probe.count() == 0) return {};
    for (auto const& [id, request] : pending_) {
        if (request.method == "echo") continue;
        // The first is the oldest.
        auto const since = std::max({request.sent, lastAnswer_, lastPart_});
        if (now() - since < times_.patience) return {};
        return "no answer to " + request.method + " for " + textOf(times_.patience);
    }
    return {};
}

}  // namespace Ovsdb
