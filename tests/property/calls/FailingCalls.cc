#include "FailingCalls.h"

#include <sys/socket.h>
#include <unistd.h>
#include <algorithm>
#include <cerrno>

namespace {

Calls::Failure failure{Calls::Call::send, 0, 0, 0, -1};
std::uint64_t calls = 0;
bool failed = false;

// Whether this call fails; `count` is what it would have moved.
bool fails(Calls::Call call, int fd, std::size_t* count = nullptr) {
    if (call != failure.call || fd == failure.notAt) return false;
    ++calls;
    bool const isIt = calls >= failure.nth && calls < failure.nth + failure.times;
    if (!isIt || failure.error == 0) return false;
    failed = true;
    if (failure.error == Calls::oneByte) {
        if (count != nullptr) *count = std::min<std::size_t>(*count, 1);
        return false;
    }
    if (Calls::isEnd(failure.error)) ::shutdown(fd, SHUT_RDWR);
    errno = failure.error;
    return true;
}

}  // namespace

namespace Calls {

bool isEnd(int error) {
    return error == EPIPE || error == ECONNRESET || error == ETIMEDOUT || error == EIO;
}

void failAt(Failure const& next) {
    failure = next;
    calls = 0;
    failed = false;
}
void failNone() { failure.error = 0; }
bool hasFailed() { return failed; }
std::uint64_t made() { return calls; }

}  // namespace Calls

// The names that the linker gives to what is wrapped.
extern "C" {
ssize_t __real_send(int fd, void const* bytes, size_t count, int flags);
ssize_t __real_recv(int fd, void* room, size_t count, int flags);
ssize_t __real_read(int fd, void* room, size_t count);
ssize_t __real_write(int fd, void const* bytes, size_t count);
int __real_accept4(int fd, sockaddr* address, socklen_t* size, int flags);

ssize_t __wrap_send(int fd, void const* bytes, size_t count, int flags) {
    return fails(Calls::Call::send, fd, &count) ? -1 : __real_send(fd, bytes, count, flags);
}
ssize_t __wrap_recv(int fd, void* room, size_t count, int flags) {
    return fails(Calls::Call::recv, fd, &count) ? -1 : __real_recv(fd, room, count, flags);
}
ssize_t __wrap_read(int fd, void* room, size_t count) {
    return fails(Calls::Call::read, fd, &count) ? -1 : __real_read(fd, room, count);
}
ssize_t __wrap_write(int fd, void const* bytes, size_t count) {
    return fails(Calls::Call::write, fd, &count) ? -1 : __real_write(fd, bytes, count);
}
int __wrap_accept4(int fd, sockaddr* address, socklen_t* size, int flags) {
    return fails(Calls::Call::accept, fd) ? -1 : __real_accept4(fd, address, size, flags);
}
}
