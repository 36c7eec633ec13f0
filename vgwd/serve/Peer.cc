#include <vgwd/serve/Peer.h>

#include <asio/post.hpp>

#include <sys/socket.h>
#include <exception>
#include <utility>

#include <qor/attrlog/MessageSize.h>

namespace Vgwd {

using Ovsdb::LogLevel;
using Qor::NboAttrLog::MountId;

namespace {

// Bytes that one connection may move each way before the others have their turn.
constexpr Qor::U64 turnBytes = 256U << 10;

}  // namespace

Peer::Peer(asio::io_context& loop, PeerHost& host, int socket, Kind kind, std::string name)
    : loop_(loop),
      host_(host),
      socket_(loop, socket),
      kind_(kind),
      name_(std::move(name)),
      deadline_(loop),
      silence_(loop) {}

Peer::~Peer() = default;

void Peer::start() {
    limitHello();
    int const fd = socket_.native_handle();
    if (kind_ == Kind::ssl) {
        auto tls = std::make_unique<TlsPeerTransport>(fd, host_.tlsContext());
        tls_ = tls.get();
        transport_ = std::move(tls);
        return shakeHands();
    }
    transport_ = std::make_unique<SocketPeerTransport>(fd);
    Access const& access = host_.options().access;
    begin(kind_ == Kind::tcp ? access.ofTcpPeer() : access.ofUnixPeer(credentialsOf(fd)));
}

void Peer::shakeHands() {
    if (tls_->shakeHands()) return begin(host_.options().access.ofTlsPeer(tls_->commonName()));
    if (transport_->closed().length() != 0) return end(std::string(transport_->closed().view()));
    if (tls_->wantsWrite()) return awaitWritable();
    awaitReadable();
}

void Peer::begin(Identity identity) {
    identity_ = std::move(identity);
    if (identity_.role == PeerRole::refused) return refuse(identity_.refusal);
    if (!host_.quotas().takeSession(identity_.name))
        return refuse(identity_.name + " has " + std::to_string(host_.quotas().limits().sessions) +
                      " sessions already");
    taken_.sessions = 1;
    host_.log(LogLevel::debug, name_ + ": " + identity_.name + " is connected, " +
                                   (identity_.role == PeerRole::writer ? "a writer" : "a reader"));
    makeSession(identity_.role == PeerRole::writer, host_.root());
    host_.handleTraffic(*this);
    schedule();
}

void Peer::makeSession(bool mayWrite, Qor::Ptr<Qor::Entity> root) {
    Session::Config config;
    config.name = Qor::Name(std::string_view(name_));
    config.side = Qor::NboAttrLog::Demuxer::Side::accepting;
    config.peerMayWrite = mayWrite;
    config.quota.openTextBytes = host_.quotas().limits().halfTexts;
    config.quota.entities = static_cast<Qor::U32>(host_.quotas().limits().entities);
    session_.emplace(config, *transport_, std::move(root));
    session_->listenerIs(this);
}

void Peer::refuse(std::string const& reason) {
    host_.log(LogLevel::warning, name_ + ": refused: " + reason);
    makeSession(false, nullptr);
    close(reason);
}

void Peer::close(std::string const& reason) {
    if (isOver_) return;
    if (session_) {
        session_->close(std::string_view(reason));
        session_->service(turnBytes);
    }
    end(reason);
}

void Peer::end(std::string const& reason) {
    if (std::exchange(isOver_, true)) return;
    host_.log(LogLevel::debug, name_ + ": " + identity_.name + " is gone: " + reason);
    deadline_.cancel();
    silence_.cancel();
    host_.quotas().giveBack(identity_.name, taken_);
    mounts_.clear();
    if (transport_) transport_->finish();
    // Bytes that the peer has not read yet still reach it.
    ::shutdown(socket_.native_handle(), SHUT_WR);
    std::error_code ignored;
    socket_.cancel(ignored);
    host_.handleEnded(*this);
}

void Peer::schedule() {
    if (isOver_ || std::exchange(isScheduled_, true)) return;
    asio::post(loop_, [self = weak_from_this()] {
        if (auto const peer = self.lock()) peer->runTurn();
    });
}

void Peer::runTurn() {
    isScheduled_ = false;
    if (isOver_) return;
    if (!session_) return shakeHands();
    Qor::U64 const before = session_->counters().bytesIn + session_->counters().bytesOut;
    if (!serve()) return;
    noteTraffic();
    countHeld();
    if (session_->closed().length() != 0) return end(std::string(session_->closed().view()));
    bool const isMoving = session_->counters().bytesIn + session_->counters().bytesOut != before;
    bool const isFlowing = session_->wantsWrite() && !transport_->isBlocked();
    if (session_->wantsRead() || (isFlowing && isMoving)) schedule();
    await();
}

// What goes wrong with one session is no other's business.
bool Peer::serve() {
    try {
        session_->service(turnBytes);
        return true;
    } catch (std::exception const& e) {
        end(e.what());
        return false;
    }
}

void Peer::await() {
    if (session_->hasRoom()) awaitReadable();
    if (session_->wantsWrite() && transport_->isBlocked()) awaitWritable();
}

void Peer::awaitReadable() {
    if (std::exchange(awaitsReadable_, true)) return;
    socket_.async_wait(socket_.wait_read, [self = shared_from_this()](std::error_code error) {
        self->awaitsReadable_ = false;
        if (!error) self->runTurn();
    });
}

void Peer::awaitWritable() {
    if (std::exchange(awaitsWritable_, true)) return;
    socket_.async_wait(socket_.wait_write, [self = shared_from_this()](std::error_code error) {
        self->awaitsWritable_ = false;
        if (!error) self->runTurn();
    });
}

// A mount stands in the books under its path.
Qor::String8 Peer::onAsked(Qor::String8 const& path, bool writable, Qor::Entity& entity) {
    if (path.length() > Qor::NboAttrLog::longestTextKey) {
        return std::string_view("a path of " + std::to_string(path.length()) +
                                " bytes; the longest that can be mounted has " +
                                std::to_string(Qor::NboAttrLog::longestTextKey));
    }
    if (writable) {
        std::string const why = host_.whyReadOnly(std::string(path.view()), entity);
        if (!why.empty()) return std::string_view(why);
        if (std::string const full = whyNoMoreRows(); !full.empty()) return std::string_view(full);
    }
    if (host_.quotas().takeMount(identity_.name)) {
        ++taken_.mounts;
        return {};
    }
    return std::string_view(identity_.name + " has " +
                            std::to_string(host_.quotas().limits().mounts) + " mounts already");
}

Qor::String8 Peer::onAskedToCall(Qor::String8 const& path, Qor::String8 const&,
                                 Qor::Entity& entity) {
    return std::string_view(host_.whyNotCalled(std::string(path.view()), entity));
}

void Peer::onGiven(MountId mount, Qor::String8 const& path, bool writable) {
    mounts_[mount] = {std::string(path.view()), writable};
}

void Peer::onTakenBack(MountId mount) {
    if (mounts_.erase(mount) == 0) return;
    --taken_.mounts;
    host_.quotas().giveBack(identity_.name, {0, 1, 0, 0});
}

void Peer::onWritten(Qor::Entity& entity, Qor::AttributeId attribute) {
    host_.handleWritten(*this, entity, attribute);
}

void Peer::onPong(Qor::Seconds) { ++pongs_; }

// What the session holds for the peer, against what its identity may have.
void Peer::countHeld() {
    Quotas& quotas = host_.quotas();
    auto const& demuxer = session_->demuxer();
    if (Qor::U64 const held = demuxer.openText(); held != taken_.halfTexts) {
        bool const isWithin = quotas.moveHalfTexts(identity_.name, taken_.halfTexts, held);
        taken_.halfTexts = held;
        if (!isWithin)
            return closeFor("the texts that " + identity_.name + " has sent by half are over " +
                            std::to_string(quotas.limits().halfTexts) + " bytes");
    }
    if (Qor::U64 const held = demuxer.peersEntities(); held != taken_.entities) {
        bool const isWithin = quotas.moveEntities(identity_.name, taken_.entities, held);
        taken_.entities = held;
        if (!isWithin)
            return closeFor(identity_.name + " has made more than " +
                            std::to_string(quotas.limits().entities) + " entities");
        Qor::U64 const most = quotas.limits().entities;
        if (host_.rowsWaiting(identity_.name) > most)
            closeFor("more than " + std::to_string(most) + " rows of " + identity_.name +
                     " wait for the database");
    }
}

// What it has made stays when its session ends, and is its own until the database has it.
std::string Peer::whyNoMoreRows() const {
    Qor::U64 const most = host_.quotas().limits().entities;
    if (host_.rowsWaiting(identity_.name) < most) return {};
    return std::to_string(most) + " rows of " + identity_.name + " wait for the database already";
}

void Peer::closeFor(std::string const& reason) {
    host_.log(LogLevel::warning, name_ + ": " + reason);
    session_->close(std::string_view(reason));
    session_->service(turnBytes);
}

}  // namespace Vgwd
