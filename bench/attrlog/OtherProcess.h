// Another process for a measurement: it is forked, the two have a stream socket between them, and
// share a piece of memory in which they tell each other how far they are.
#ifndef BENCH_ATTRLOG_OTHERPROCESS_H
#define BENCH_ATTRLOG_OTHERPROCESS_H

#include <benchmark/benchmark.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>

#include <sys/types.h>

namespace Bench {

/// What both see. All zero in the beginning.
struct Shared {
    static constexpr std::size_t mostWaits = 4096;

    std::atomic<bool> isSynced{false};    // the other process has what it mounted
    std::atomic<std::uint64_t> heard{0};  // by the other process
    std::atomic<std::uint64_t> bytes{0};  // that the other process has come to hold
    std::atomic<double> sentAt{0};
    double waits[mostWaits] = {};  // what each change took until it was heard
};

class OtherProcess {
  public:
    /// Forks a process that calls `body` with its end of the socket and ends when that returns.
    explicit OtherProcess(std::function<void(int fd, Shared& shared)> const& body);
    /// Closes the socket, by which the other process has to end, and waits for it.
    ~OtherProcess();
    OtherProcess(OtherProcess const&) = delete;
    OtherProcess& operator=(OtherProcess const&) = delete;

    int fd() const noexcept { return fd_; }
    Shared& shared() const noexcept { return *shared_; }
    /// Waits until `heard` is at least that; false when ten seconds have brought nothing.
    bool awaitHeard(std::uint64_t heard) const;

  private:
    int fd_ = -1;
    pid_t pid_ = -1;
    Shared* shared_;
};

/// Seconds, the same in both processes.
double wallTime();
/// Makes the calls on it return at once.
void doNotBlock(int fd);
/// Waits until something can be read, or has ended; if `alsoWrites`, until something can be
/// written too; at most so many milliseconds, -1 for ever.
void awaitSocket(int fd, bool alsoWrites = false, int milliseconds = -1);
/// The wait that so many of a hundred stay below, in seconds.
double percentile(Shared const& shared, std::size_t waits, double of100);

}  // namespace Bench

#endif
