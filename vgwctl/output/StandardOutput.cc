#include <vgwctl/output/StandardOutput.h>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <iostream>

namespace Vgwctl {

StandardOutput::StandardOutput() : before_(std::cout.rdbuf(this)) {
    setp(waiting_.data(), waiting_.data() + waiting_.size());
}

StandardOutput::~StandardOutput() {
    write();
    std::cout.rdbuf(before_);
}

int StandardOutput::flush() {
    std::cout.flush();
    return error_;
}

int StandardOutput::overflow(int c) {
    if (!write()) return traits_type::eof();
    if (c != traits_type::eof()) sputc(static_cast<char>(c));
    return traits_type::not_eof(c);
}

int StandardOutput::sync() { return write() ? 0 : -1; }

// What can't be written is dropped: the error stays.
bool StandardOutput::write() {
    char const* at = pbase();
    while (at != pptr() && error_ == 0) {
        ssize_t const count = ::write(STDOUT_FILENO, at, static_cast<std::size_t>(pptr() - at));
        if (count >= 0) {
            at += count;
        } else if (errno == EAGAIN || errno == EWOULDBLOCK) {
            pollfd one{STDOUT_FILENO, POLLOUT, 0};
            ::poll(&one, 1, -1);
        } else if (errno != EINTR) {
            error_ = errno;
        }
    }
    setp(waiting_.data(), waiting_.data() + waiting_.size());
    return error_ == 0;
}

void openStandardStreams() {
    // The lowest number that is free is the one that was closed.
    for (int const fd : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        if (::fcntl(fd, F_GETFD) < 0) ::open("/dev/null", fd == STDERR_FILENO ? O_RDWR : O_RDONLY);
}

}  // namespace Vgwctl
