#include <qor/attrlog/session/Transport.h>

#include <qor/core/Format.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include <sys/socket.h>
#include <unistd.h>

namespace Qor {

namespace NboAttrLog {

Transport::~Transport() = default;

std::size_t FdTransport::done(long count, char const* what) {
    if (count > 0) return static_cast<std::size_t>(count);
    bool const isOver = count < 0 && errno != EAGAIN && errno != EWOULDBLOCK && errno != EINTR;
    if (isOver) closed_ = format("%s: %s", what, std::strerror(errno));
    return 0;
}

std::size_t FdTransport::write(std::string_view bytes) {
    if (closed_.length() != 0 || bytes.empty()) return 0;
    long count = ::send(fd_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
    if (count < 0 && errno == ENOTSOCK) count = ::write(fd_, bytes.data(), bytes.size());
    // Nobody reads it any more. What the peer has said, and why it left, may still be to be read.
    if (count < 0 && errno == EPIPE) return bytes.size();
    return done(count, "write");
}

std::size_t FdTransport::read(std::span<unsigned char> room) {
    if (closed_.length() != 0 || room.empty()) return 0;
    long const count = ::read(fd_, room.data(), room.size());
    if (count == 0) closed_ = "the peer has closed the connection";
    return done(count, "read");
}

void MemoryTransport::connect(MemoryTransport& one, MemoryTransport& other) noexcept {
    one.other_ = &other;
    other.other_ = &one;
}

void MemoryTransport::cut() {
    for (MemoryTransport* const end : {this, other_}) {
        end->closed_ = "the connection was cut";
        end->waiting_.clear();
        end->taken_ = 0;
    }
}

std::size_t MemoryTransport::write(std::string_view bytes) {
    if (closed_.length() != 0) return 0;
    std::size_t const waits = other_->waiting_.size() - other_->taken_;
    std::size_t const left = other_->room_ - std::min(other_->room_, waits);
    std::size_t const count = std::min(left, bytes.size());
    other_->waiting_ += bytes.substr(0, count);
    return count;
}

// What was taken is dropped when it is more than what waits, so that no byte is moved often.
std::size_t MemoryTransport::read(std::span<unsigned char> room) {
    std::size_t const count = std::min(room.size(), waiting_.size() - taken_);
    std::copy_n(waiting_.data() + taken_, count, reinterpret_cast<char*>(room.data()));
    taken_ += count;
    if (taken_ >= waiting_.size() - taken_) {
        waiting_.erase(0, taken_);
        taken_ = 0;
    }
    return count;
}

}  // namespace NboAttrLog

}  // namespace Qor
