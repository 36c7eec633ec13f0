#include <vgwctl/recording/ListeningSocket.h>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstring>
#include <thread>

namespace Vgwctl {
namespace {

constexpr Deadline::Seconds longestWait{2};
constexpr std::chrono::milliseconds betweenTries{10};

Failure failureOf(std::string const& path, int error) {
    return Failure(path + ": " + std::strerror(error));
}

Descriptor newSocket(std::string const& path) {
    Descriptor fd(::socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
    if (fd.get() < 0) throw failureOf(path, errno);
    return fd;
}

// The lock of the directory that the path stands in; it ends with the descriptor.
Descriptor lockedDirectoryOf(std::string const& path) {
    std::size_t const slash = path.rfind('/');
    std::string const name = slash == std::string::npos ? "." : path.substr(0, slash + 1);
    Descriptor directory(::open(name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (directory.get() < 0) throw failureOf(path, errno);
    Deadline const until = Deadline::after(longestWait);
    while (::flock(directory.get(), LOCK_EX | LOCK_NB) != 0) {
        if (until.isOver()) throw Failure(path + ": " + name + " is locked by another program");
        std::this_thread::sleep_for(betweenTries);
    }
    return directory;
}

// False when there is something already.
bool bindAt(Descriptor const& fd, std::string const& path, sockaddr_un const& address) {
    mode_t const mask = ::umask(0177);
    bool const isBound =
        ::bind(fd.get(), reinterpret_cast<sockaddr const*>(&address), sizeof address) == 0;
    int const error = errno;
    ::umask(mask);
    if (!isBound && error != EADDRINUSE) throw failureOf(path, error);
    return isBound;
}

void removeLeftOver(std::string const& path, sockaddr_un const& address) {
    struct stat found {};
    if (::lstat(path.c_str(), &found) != 0) return;
    if (!S_ISSOCK(found.st_mode)) throw Failure(path + ": there is something that is no socket");
    Descriptor const probe = newSocket(path);
    bool const isRefused =
        ::connect(probe.get(), reinterpret_cast<sockaddr const*>(&address), sizeof address) != 0 &&
        errno == ECONNREFUSED;
    if (!isRefused) throw Failure(path + ": another program listens there");
    if (::unlink(path.c_str()) != 0) throw failureOf(path, errno);
}

Descriptor listeningAt(std::string const& path) {
    sockaddr_un const address = unixAddressOf(path);
    Descriptor const lock = lockedDirectoryOf(path);
    Descriptor fd = newSocket(path);
    if (!bindAt(fd, path, address)) {
        removeLeftOver(path, address);
        if (!bindAt(fd, path, address)) throw failureOf(path, EADDRINUSE);
    }
    if (::listen(fd.get(), SOMAXCONN) != 0) throw failureOf(path, errno);
    return fd;
}

}  // namespace

ListeningSocket::ListeningSocket(std::string const& path) {
    // Whoever sees the socket may end the program.
    EndingHeldOff const heldOff;
    descriptor_ = listeningAt(path);
    removed_.emplace(path);
}

Descriptor ListeningSocket::accept() {
    return Descriptor(::accept4(get(), nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC));
}

}  // namespace Vgwctl
