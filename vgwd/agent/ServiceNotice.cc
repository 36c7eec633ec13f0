#include <vgwd/agent/ServiceNotice.h>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <charconv>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <optional>
#include <string_view>

namespace Vgwd {
namespace {

std::string taken(char const* variable) {
    char const* const value = std::getenv(variable);
    std::string text = value != nullptr ? value : "";
    ::unsetenv(variable);
    return text;
}

long numberOf(std::string const& text) {
    long number = 0;
    auto const [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size() ? number : 0;
}

// Half of the time that the manager waits; 0 when it does not watch this process.
std::chrono::microseconds watchInterval() {
    long const limit = numberOf(taken("WATCHDOG_USEC"));
    std::string const process = taken("WATCHDOG_PID");
    bool const isMeant = process.empty() || numberOf(process) == ::getpid();
    return std::chrono::microseconds(isMeant && limit > 0 ? limit / 2 : 0);
}

std::string monotonicMicroseconds() {
    timespec now{};
    ::clock_gettime(CLOCK_MONOTONIC, &now);
    return std::to_string(now.tv_sec * 1000000 + now.tv_nsec / 1000);
}

}  // namespace

ServiceNotice::ServiceNotice(asio::io_context& loop)
    : address_(taken("NOTIFY_SOCKET")), interval_(watchInterval()), watch_(loop) {
    bool const isAddress = address_.starts_with('/') || address_.starts_with('@');
    if (!isAddress || address_.size() >= sizeof(sockaddr_un::sun_path)) return;
    socket_ = ::socket(AF_UNIX, SOCK_DGRAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
}

ServiceNotice::~ServiceNotice() {
    if (socket_ >= 0) ::close(socket_);
}

void ServiceNotice::tell(std::string const& message) const {
    if (socket_ < 0) return;
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::memcpy(address.sun_path, address_.data(), address_.size());
    // An abstract address begins with a zero byte.
    if (address.sun_path[0] == '@') address.sun_path[0] = '\0';
    auto const size = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + address_.size());
    ::sendto(socket_, message.data(), message.size(), MSG_NOSIGNAL,
             reinterpret_cast<sockaddr const*>(&address), size);
}

void ServiceNotice::ready() {
    tell("READY=1\nMAINPID=" + std::to_string(::getpid()));
    watch();
}

void ServiceNotice::reloading() { tell("RELOADING=1\nMONOTONIC_USEC=" + monotonicMicroseconds()); }

void ServiceNotice::stopping() {
    watch_.cancel();
    tell("STOPPING=1");
}

void ServiceNotice::status(std::string const& text) { tell("STATUS=" + text); }

void ServiceNotice::watch() {
    if (socket_ < 0 || interval_.count() == 0) return;
    tell("WATCHDOG=1");
    watch_.expires_after(interval_);
    watch_.async_wait(tether_.tie([this](std::error_code error) {
        if (!error) watch();
    }));
}

}  // namespace Vgwd
