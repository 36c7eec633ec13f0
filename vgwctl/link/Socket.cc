#include <vgwctl/link/Socket.h>

#include <tcp/SocketOptions.h>

#include <netdb.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>

namespace Vgwctl {
namespace {

LinkFailure failureOf(std::string const& what, int error) {
    return LinkFailure(what + ": " + std::strerror(error));
}

// Of an address that does not answer, when there is another.
constexpr Deadline::Seconds longestTry{10};

}  // namespace

Descriptor::~Descriptor() {
    if (fd_ >= 0) ::close(fd_);
}

void await(pollfd const& awaited, Deadline const& deadline) {
    pollfd one = awaited;
    if (::poll(&one, 1, deadline.milliseconds()) < 0 && errno != EINTR)
        throw failureOf("poll", errno);
}

sockaddr_un unixAddressOf(std::string const& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.empty()) throw Failure("expected the path of a socket");
    if (path.size() >= sizeof address.sun_path)
        throw Failure(path + ": the path of a socket may have " +
                      std::to_string(sizeof address.sun_path - 1) + " bytes");
    path.copy(address.sun_path, path.size());
    return address;
}

Connecting::Connecting(Ovsdb::Remote const& remote) : remote_(remote.text()) {
    if (remote.kind == Ovsdb::Remote::Kind::unixSocket) {
        sockaddr_un const address = unixAddressOf(remote.path);
        addressInc(&address, sizeof address);
    } else {
        findHost(remote);
    }
    tryNext();
}

void Connecting::addressInc(void const* bytes, std::size_t length) {
    Address& address = addresses_.emplace_back();
    address.length = static_cast<socklen_t>(std::min(length, sizeof address.bytes));
    std::memcpy(&address.bytes, bytes, address.length);
}

void Connecting::findHost(Ovsdb::Remote const& remote) {
    addrinfo hints{};
    hints.ai_socktype = SOCK_STREAM;
    addrinfo* found = nullptr;
    int const failed =
        ::getaddrinfo(remote.host.c_str(), std::to_string(remote.port).c_str(), &hints, &found);
    if (failed != 0) throw LinkFailure(remote_ + ": " + ::gai_strerror(failed));
    std::unique_ptr<addrinfo, decltype(&::freeaddrinfo)> const owner(found, &::freeaddrinfo);
    for (addrinfo const* at = found; at != nullptr; at = at->ai_next)
        addressInc(at->ai_addr, at->ai_addrlen);
}

void Connecting::tryNext() {
    while (next_ != addresses_.size()) {
        Address const& address = addresses_[next_++];
        socket_ = Descriptor(
            ::socket(address.bytes.ss_family, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
        if (socket_.get() < 0) {
            error_ = errno;
            continue;
        }
        if (address.bytes.ss_family != AF_UNIX) Tcp::setForSession(socket_.get());
        bool const isLast = next_ == addresses_.size();
        limit_ = isLast ? Deadline() : Deadline::after(longestTry);
        isMade_ = ::connect(socket_.get(), reinterpret_cast<sockaddr const*>(&address.bytes),
                            address.length) == 0;
        if (isMade_ || errno == EINPROGRESS) return;
        error_ = errno;
    }
    throw failureOf(remote_, error_);
}

bool Connecting::step() {
    if (isMade_) return true;
    pollfd one = awaited();
    if (::poll(&one, 1, 0) > 0) {
        socklen_t size = sizeof error_;
        ::getsockopt(socket_.get(), SOL_SOCKET, SO_ERROR, &error_, &size);
        isMade_ = error_ == 0;
    } else if (limit_.isOver()) {
        error_ = ETIMEDOUT;
    } else {
        return false;
    }
    if (!isMade_) tryNext();
    return isMade_;
}

Descriptor connectTo(Ovsdb::Remote const& remote, Deadline const& deadline) {
    Connecting connecting(remote);
    while (!connecting.step()) {
        deadline.check("connecting");
        await(connecting.awaited(), deadline.orAt(connecting.due()));
    }
    return connecting.take();
}

}  // namespace Vgwctl
