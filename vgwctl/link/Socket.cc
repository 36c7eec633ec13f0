#include <vgwctl/link/Socket.h>

#include <netdb.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <memory>

namespace Vgwctl {
namespace {

LinkFailure failureOf(std::string const& what, int error) {
    return LinkFailure(what + ": " + std::strerror(error));
}

Descriptor newSocket(int family) {
    Descriptor fd(::socket(family, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
    if (fd.get() < 0) throw failureOf("socket", errno);
    return fd;
}

// 0, or the error.
int connected(Descriptor const& fd, sockaddr const* address, socklen_t length,
              Deadline const& deadline) {
    if (::connect(fd.get(), address, length) == 0) return 0;
    if (errno != EINPROGRESS) return errno;
    await(fd, POLLOUT, deadline);
    deadline.check("connecting");
    int error = 0;
    socklen_t size = sizeof error;
    ::getsockopt(fd.get(), SOL_SOCKET, SO_ERROR, &error, &size);
    return error;
}

Descriptor connectToUnix(Ovsdb::Remote const& remote, Deadline const& deadline) {
    sockaddr_un const address = unixAddressOf(remote.path);
    Descriptor fd = newSocket(AF_UNIX);
    int const error =
        connected(fd, reinterpret_cast<sockaddr const*>(&address), sizeof address, deadline);
    if (error != 0) throw failureOf(remote.text(), error);
    return fd;
}

Descriptor connectToHost(Ovsdb::Remote const& remote, Deadline const& deadline) {
    addrinfo hints{};
    hints.ai_socktype = SOCK_STREAM;
    addrinfo* found = nullptr;
    int const failed =
        ::getaddrinfo(remote.host.c_str(), std::to_string(remote.port).c_str(), &hints, &found);
    if (failed != 0) throw LinkFailure(remote.text() + ": " + ::gai_strerror(failed));
    std::unique_ptr<addrinfo, decltype(&::freeaddrinfo)> const owner(found, &::freeaddrinfo);
    int error = ECONNREFUSED;
    for (addrinfo const* at = found; at != nullptr; at = at->ai_next) {
        Descriptor fd = newSocket(at->ai_family);
        error = connected(fd, at->ai_addr, at->ai_addrlen, deadline);
        if (error == 0) return fd;
    }
    throw failureOf(remote.text(), error);
}

}  // namespace

Descriptor::~Descriptor() {
    if (fd_ >= 0) ::close(fd_);
}

void await(Descriptor const& descriptor, short events, Deadline const& deadline) {
    pollfd one{descriptor.get(), events, 0};
    if (::poll(&one, 1, deadline.milliseconds()) < 0 && errno != EINTR)
        throw failureOf("poll", errno);
}

sockaddr_un unixAddressOf(std::string const& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path)
        throw Failure(path + ": the path of a socket may have " +
                      std::to_string(sizeof address.sun_path - 1) + " bytes");
    path.copy(address.sun_path, path.size());
    return address;
}

Descriptor connectTo(Ovsdb::Remote const& remote, Deadline const& deadline) {
    return remote.kind == Ovsdb::Remote::Kind::unixSocket ? connectToUnix(remote, deadline)
                                                          : connectToHost(remote, deadline);
}

}  // namespace Vgwctl
