#include "Row.h"

#include <unistd.h>

#include <condition_variable>
#include <ctime>
#include <fstream>
#include <mutex>
#include <thread>

namespace Bench {

void tellOperations(benchmark::State& state, std::size_t operations) {
    using benchmark::Counter;
    auto const all = static_cast<double>(operations) * static_cast<double>(state.iterations());
    state.counters["op"] = Counter(all, Counter::kIsRate | Counter::kInvert);
}

void tellBytes(benchmark::State& state, double bytes) { state.counters["bytes"] = bytes; }

std::size_t bytesHeld() {
    std::size_t pages = 0;
    std::ifstream("/proc/self/statm") >> pages >> pages;
    return pages * static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
}

double processorTime() {
    std::timespec now{};
    ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

void severalThreads() {
    // Never joined: the process ends with it asleep.
    static std::mutex* const mutex = new std::mutex;
    static std::condition_variable* const forever = new std::condition_variable;
    static bool started = false;
    if (!started) {
        started = true;
        std::thread([] {
            std::unique_lock lock(*mutex);
            for (;;) {
                forever->wait(lock);
            }
        }).detach();
    }
}

}  // namespace Bench
