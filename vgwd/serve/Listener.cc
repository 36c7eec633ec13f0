#include <vgwd/serve/Listener.h>

#include <tcp/SocketOptions.h>
#include <vgwd/serve/UnixSocket.h>

#include <asio/ip/tcp.hpp>

#include <sys/socket.h>
#include <unistd.h>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <stdexcept>

namespace Vgwd {
namespace {

constexpr int backlog = 256;
constexpr int acceptsATurn = 16;
constexpr std::chrono::milliseconds shortPause{100};

using Kind = ListenAddress::Kind;

bool standsIn(std::string const& path, std::string const& directory) {
    namespace fs = std::filesystem;
    std::error_code error;
    return fs::weakly_canonical(fs::absolute(path).parent_path(), error) ==
           fs::weakly_canonical(fs::absolute(directory), error);
}

FileLock lockOf(ListenAddress const& address, ServeOptions const& options) {
    if (address.kind != Kind::unixSocket || standsIn(address.path, options.runDirectory)) return {};
    return {address.path + ".lock", address.text() + " is another process's"};
}

SocketGroups groupsOf(Access const& access) {
    if (!access.readGroup) return {access.writeGroup, false};
    bool const areTwo = access.writeGroup && *access.writeGroup != *access.readGroup;
    return areTwo ? SocketGroups{{}, true} : SocketGroups{access.readGroup, false};
}

[[noreturn]] void refuse(ListenAddress const& address, char const* what) {
    std::string const why = std::strerror(errno);
    throw std::runtime_error(address.text() + ": " + what + ": " + why);
}

int listenTcp(ListenAddress& address) {
    asio::ip::tcp::endpoint place(asio::ip::make_address(address.host), address.port);
    int const fd =
        ::socket(place.protocol().family(), SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    if (fd < 0) refuse(address, "socket");
    int const on = 1;
    ::setsockopt(fd, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    socklen_t size = static_cast<socklen_t>(place.size());
    bool const isListening = ::bind(fd, place.data(), size) == 0 && ::listen(fd, backlog) == 0;
    if (!isListening) {
        int const failure = errno;
        ::close(fd);
        errno = failure;
        refuse(address, "bind");
    }
    size = static_cast<socklen_t>(place.capacity());
    if (::getsockname(fd, place.data(), &size) == 0) address.port = place.port();
    return fd;
}

int listenAt(ListenAddress& address, ServeOptions const& options) {
    return address.kind == Kind::unixSocket ? listenUnix(address.path, groupsOf(options.access))
                                            : listenTcp(address);
}

}  // namespace

Listener::Listener(asio::io_context& loop, ListenAddress address, ServeOptions const& options,
                   Accept accept, Ovsdb::LogSink log)
    : address_(std::move(address)),
      lock_(lockOf(address_, options)),
      socket_(loop, listenAt(address_, options)),
      pause_(loop),
      accept_(std::move(accept)),
      log_(std::move(log)) {}

Listener::~Listener() {
    if (address_.kind == Kind::unixSocket) ::unlink(address_.path.c_str());
}

void Listener::admit() {
    if (!std::exchange(admits_, true)) await();
}

void Listener::await() {
    socket_.async_wait(socket_.wait_read, tether_.tie([this](std::error_code error) {
        if (!error) acceptSome();
    }));
}

void Listener::acceptSome() {
    for (int count = 0; count < acceptsATurn; ++count) {
        int const fd =
            ::accept4(socket_.native_handle(), nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC);
        if (fd < 0 && (errno == EAGAIN || errno == EWOULDBLOCK)) break;
        if (fd < 0 && (errno == EINTR || errno == ECONNABORTED)) continue;
        if (fd < 0) return pause();
        isShort_ = false;
        if (address_.kind != Kind::unixSocket) Tcp::setForSession(fd);
        accept_(fd, address_.kind);
    }
    await();
}

void Listener::pause() {
    if (!std::exchange(isShort_, true))
        log_(Ovsdb::LogLevel::error,
             address_.text() + ": connections can't be taken: " + std::strerror(errno));
    pause_.expires_after(shortPause);
    pause_.async_wait(tether_.tie([this](std::error_code error) {
        if (!error) await();
    }));
}

}  // namespace Vgwd
