#include "Carrier.h"

#include <sys/socket.h>
#include <unistd.h>
#include <algorithm>
#include <array>
#include <cerrno>
#include <system_error>

namespace Sim {

namespace {

using Qor::NboAttrLog::FdTransport;
using Qor::NboAttrLog::MemoryTransport;

class MemoryCarrier final : public Carrier {
  public:
    MemoryTransport& memory() { return memory_; }
    void roomIs(std::size_t bytes) override { memory_.roomIs(bytes); }
    void cut() override { memory_.cut(); }
    std::size_t write(std::string_view bytes) override { return memory_.write(bytes); }
    std::size_t read(std::span<unsigned char> room) override { return memory_.read(room); }
    Qor::String8 closed() const override { return memory_.closed(); }

  private:
    MemoryTransport memory_;
};

// A socket has room of its own; what a script gives beyond that is nothing.
class SocketCarrier final : public Carrier {
  public:
    explicit SocketCarrier(int fd) : fd_(fd), transport_(fd) {}
    ~SocketCarrier() override { ::close(fd_); }
    SocketCarrier(SocketCarrier const&) = delete;
    SocketCarrier& operator=(SocketCarrier const&) = delete;

    void otherIs(SocketCarrier& other) { other_ = &other; }
    void roomIs(std::size_t bytes) override { room_ = bytes; }
    void cut() override { ::shutdown(fd_, SHUT_RDWR); }
    std::size_t write(std::string_view bytes) override {
        std::size_t const waiting = put_ - other_->taken_;
        std::size_t const room = other_->room_ - std::min(waiting, other_->room_);
        std::size_t const count = transport_.write(bytes.substr(0, room));
        put_ += count;
        return count;
    }
    std::size_t read(std::span<unsigned char> room) override {
        std::size_t const count = transport_.read(room);
        taken_ += count;
        return count;
    }
    Qor::String8 closed() const override { return transport_.closed(); }

  private:
    int const fd_;
    FdTransport transport_;
    SocketCarrier* other_ = nullptr;
    std::size_t room_ = ~std::size_t{0};
    std::size_t put_ = 0;
    std::size_t taken_ = 0;
};

Carriers inMemory() {
    auto one = std::make_unique<MemoryCarrier>();
    auto other = std::make_unique<MemoryCarrier>();
    MemoryTransport::connect(one->memory(), other->memory());
    return {std::move(one), std::move(other)};
}

Carriers overSockets() {
    std::array<int, 2> ends{};
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0, ends.data()) != 0) {
        throw std::system_error(errno, std::generic_category(), "socketpair");
    }
    auto one = std::make_unique<SocketCarrier>(ends[0]);
    auto other = std::make_unique<SocketCarrier>(ends[1]);
    one->otherIs(*other);
    other->otherIs(*one);
    return {std::move(one), std::move(other)};
}

}  // namespace

Carriers connected(Carried carried) {
    return carried == Carried::inMemory ? inMemory() : overSockets();
}

}  // namespace Sim
