#include <vgwd/serve/UnixSocket.h>

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>
#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <utility>

namespace Vgwd {
namespace {

constexpr int backlog = 256;

class Descriptor {
  public:
    explicit Descriptor(int fd) : fd_(fd) {}
    ~Descriptor() {
        if (fd_ >= 0) ::close(fd_);
    }
    Descriptor(Descriptor const&) = delete;
    Descriptor& operator=(Descriptor const&) = delete;
    int get() const { return fd_; }
    int release() { return std::exchange(fd_, -1); }

  private:
    int fd_;
};

[[noreturn]] void refuse(std::string const& path, std::string const& why) {
    throw std::runtime_error("unix:" + path + ": " + why);
}

void need(bool holds, std::string const& path, char const* what) {
    if (!holds) refuse(path, std::string(what) + ": " + std::strerror(errno));
}

sockaddr_un addressOf(std::string const& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path) refuse(path, "the path is too long for a socket");
    std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
    return address;
}

int newSocket(std::string const& path) {
    int const fd = ::socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    need(fd >= 0, path, "socket");
    return fd;
}

bool bindAt(int fd, sockaddr_un const& address) {
    // Owner-only from its first moment on.
    mode_t const before = ::umask(S_IXUSR | S_IRWXG | S_IRWXO);
    int const result = ::bind(fd, reinterpret_cast<sockaddr const*>(&address), sizeof address);
    int const failure = errno;
    ::umask(before);
    errno = failure;
    return result == 0;
}

void removeStale(std::string const& path, sockaddr_un const& address) {
    struct stat found {};
    if (::lstat(path.c_str(), &found) != 0) return;
    if (!S_ISSOCK(found.st_mode)) refuse(path, "there is something that is no socket");
    Descriptor const probe(newSocket(path));
    bool const isRefused =
        ::connect(probe.get(), reinterpret_cast<sockaddr const*>(&address), sizeof address) != 0 &&
        errno == ECONNREFUSED;
    if (!isRefused) refuse(path, "another process listens there");
    need(::unlink(path.c_str()) == 0, path, "the left over socket can't be removed");
}

void letIn(std::string const& path, SocketGroups const& groups) {
    mode_t mode = S_IRUSR | S_IWUSR;
    if (groups.one) {
        need(::chown(path.c_str(), static_cast<uid_t>(-1), *groups.one) == 0, path,
             "the group, of which vgwd has to be a member, can't be set");
        mode |= S_IRGRP | S_IWGRP;
    }
    if (groups.everyone) mode |= S_IRGRP | S_IWGRP | S_IROTH | S_IWOTH;
    need(::chmod(path.c_str(), mode) == 0, path, "the mode can't be set");
}

}  // namespace

bool isListening(std::string const& path) {
    sockaddr_un const address = addressOf(path);
    Descriptor const probe(newSocket(path));
    return ::connect(probe.get(), reinterpret_cast<sockaddr const*>(&address), sizeof address) ==
               0 ||
           errno == EAGAIN;
}

int listenUnix(std::string const& path, SocketGroups const& groups) {
    sockaddr_un const address = addressOf(path);
    Descriptor listening(newSocket(path));
    if (!bindAt(listening.get(), address)) {
        need(errno == EADDRINUSE, path, "bind");
        removeStale(path, address);
        need(bindAt(listening.get(), address), path, "bind");
    }
    need(::listen(listening.get(), backlog) == 0, path, "listen");
    letIn(path, groups);
    return listening.release();
}

}  // namespace Vgwd
