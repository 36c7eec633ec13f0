#include "OtherProcess.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <new>
#include <vector>

namespace Bench {

namespace {

[[noreturn]] void stop(char const* what) {
    std::perror(what);
    std::exit(1);
}

Shared* shareMemory() {
    void* const place =
        ::mmap(nullptr, sizeof(Shared), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (place == MAP_FAILED) stop("mmap");
    return ::new (place) Shared;
}

void sleepFor(long microseconds) {
    std::timespec const time{0, microseconds * 1000};
    ::nanosleep(&time, nullptr);
}

}  // namespace

OtherProcess::OtherProcess(std::function<void(int fd, Shared& shared)> const& body)
    : shared_(shareMemory()) {
    int ends[2];
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) stop("socketpair");
    pid_ = ::fork();
    if (pid_ < 0) stop("fork");
    if (pid_ == 0) {
        ::close(ends[0]);
        body(ends[1], *shared_);
        ::_exit(0);
    }
    ::close(ends[1]);
    fd_ = ends[0];
}

OtherProcess::~OtherProcess() {
    ::close(fd_);
    ::waitpid(pid_, nullptr, 0);
    ::munmap(shared_, sizeof(Shared));
}

bool OtherProcess::awaitHeard(std::uint64_t heard) const {
    double const end = wallTime() + 10;
    while (shared_->heard.load(std::memory_order_acquire) < heard) {
        if (wallTime() > end) return false;
        sleepFor(20);
    }
    return true;
}

double wallTime() {
    std::timespec now{};
    ::clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

void doNotBlock(int fd) { ::fcntl(fd, F_SETFL, O_NONBLOCK); }

void awaitSocket(int fd, bool alsoWrites, int milliseconds) {
    pollfd one{fd, static_cast<short>(alsoWrites ? POLLIN | POLLOUT : POLLIN), 0};
    ::poll(&one, 1, milliseconds);
}

double percentile(Shared const& shared, std::size_t waits, double of100) {
    std::vector<double> sorted(shared.waits, shared.waits + waits);
    std::sort(sorted.begin(), sorted.end());
    return sorted[static_cast<std::size_t>(static_cast<double>(waits - 1) * of100 / 100)];
}

}  // namespace Bench
