#include <vgwd/serve/Server.h>

#include <asio/post.hpp>

#include <sys/resource.h>
#include <unistd.h>
#include <algorithm>
#include <exception>

namespace Vgwd {

using Ovsdb::LogLevel;

namespace {

// A descriptor a peer: as many as the system lets us have.
void raiseDescriptorLimit() {
    rlimit limit{};
    if (::getrlimit(RLIMIT_NOFILE, &limit) != 0 || limit.rlim_cur == limit.rlim_max) return;
    limit.rlim_cur = limit.rlim_max;
    ::setrlimit(RLIMIT_NOFILE, &limit);
}

}  // namespace

Server::Server(asio::io_context& loop, Qor::Ptr<Qor::Entity> root, ServerListener& listener,
               Ovsdb::LogSink log)
    : loop_(loop),
      root_(std::move(root)),
      listener_(listener),
      log_(std::move(log)),
      admission_(loop) {}

Server::~Server() { stop("the agent ends"); }

void Server::start(ServeOptions options) {
    options_ = std::move(options);
    quotas_.emplace(options_.quotas);
    raiseDescriptorLimit();
    for (ListenAddress const& address : options_.listen) {
        if (address.kind == ListenAddress::Kind::ssl && !tls_) tls_.emplace(options_.tls);
        listeners_.push_back(std::make_unique<Listener>(
            loop_, address, options_,
            [this](int socket, ListenAddress::Kind kind) { accept(socket, kind); }, log_));
        log_(LogLevel::info, "listening on " + listeners_.back()->address().text());
    }
    if (options_.admission.count() == 0) return admit();
    admission_.expires_after(options_.admission);
    admission_.async_wait(tether_.tie([this](std::error_code error) {
        if (!error) admit();
    }));
}

void Server::admit() {
    admission_.cancel();
    for (auto const& listener : listeners_) listener->admit();
}

void Server::stop(std::string const& reason) {
    admission_.cancel();
    listeners_.clear();
    for (auto const& peer : std::vector(peers_)) peer->close(reason);
    peers_.clear();
}

void Server::reloadCertificates() {
    if (!tls_) return;
    try {
        tls_.emplace(TlsContext(options_.tls));
        log_(LogLevel::info, "certificates are read again");
    } catch (std::exception const& e) {
        log_(LogLevel::error, std::string("certificates stay as they were: ") + e.what());
    }
}

std::vector<ListenAddress> Server::addresses() const {
    std::vector<ListenAddress> addresses;
    for (auto const& listener : listeners_) addresses.push_back(listener->address());
    return addresses;
}

// What goes wrong with one connection is no other's business.
void Server::accept(int socket, ListenAddress::Kind kind) {
    std::string const name = "session-" + std::to_string(++made_);
    std::shared_ptr<Peer> peer;
    try {
        peer = std::make_shared<Peer>(loop_, static_cast<PeerHost&>(*this), socket, kind, name);
    } catch (std::exception const& e) {
        ::close(socket);
        return log_(LogLevel::error, name + " can't be made: " + e.what());
    }
    peers_.push_back(peer);
    try {
        peer->start();
    } catch (std::exception const& e) {
        peer->close(e.what());
    }
}

std::string Server::whyReadOnly(std::string const& path, Qor::Entity& entity) {
    return listener_.whyReadOnly(path, entity);
}

std::string Server::whyNotCalled(std::string const& path, Qor::Entity& entity) {
    return listener_.whyNotCalled(path, entity);
}

std::size_t Server::rowsWaiting(std::string const& identity) {
    return listener_.rowsWaiting(identity);
}

void Server::handleWritten(Peer& peer, Qor::Entity& entity, Qor::AttributeId attribute) {
    listener_.onWritten(peer, entity, attribute);
}

void Server::handleEnded(Peer& peer) {
    auto const found = std::find_if(peers_.begin(), peers_.end(),
                                    [&](auto const& one) { return one.get() == &peer; });
    if (found == peers_.end()) return;
    // It may be its own call that this is in.
    asio::post(loop_, [held = std::move(*found)] {});
    peers_.erase(found);
    listener_.onTraffic(peer);
}

}  // namespace Vgwd
