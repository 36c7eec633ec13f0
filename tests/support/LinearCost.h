// Whether work grows with what it is given: twice as much takes at most 2.3 times as long.
#ifndef TESTS_SUPPORT_LINEAR_COST_H
#define TESTS_SUPPORT_LINEAR_COST_H

#include <gtest/gtest.h>

#include <malloc.h>

#include <algorithm>
#include <ctime>
#include <limits>

// This thread's time for some work, in seconds.
template <class Work>
double timeOf(Work const& work) {
    auto const now = [] {
        timespec at{};
        ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &at);
        return static_cast<double>(at.tv_sec) + static_cast<double>(at.tv_nsec) * 1e-9;
    };
    double const start = now();
    work();
    return now() - start;
}

// The machine is shared: what counts is the least of several.
template <class Cost>
double leastOf(int rounds, Cost const& cost) {
    double least = cost();
    for (int round = 1; round < rounds; ++round) least = std::min(least, cost());
    return least;
}

// Memory that was given back stays with the process: whether a round has to fault its pages in
// again depends on what lay above it, and a page costs as much as several rows.
inline void keepFreedMemory() {
#ifdef __GLIBC__
    constexpr int most = 1 << 25;  // glibc takes no more for M_MMAP_THRESHOLD
    ::mallopt(M_TRIM_THRESHOLD, 8 * most);
    ::mallopt(M_MMAP_THRESHOLD, most);
#endif
}

// The least of several, in several tries, and of all of them: a try may meet a slower moment of the
// machine with either half.
template <class Cost>
void expectLinearCost(std::size_t count, Cost const& cost) {
    constexpr double most = 2.3;
    keepFreedMemory();
    double ratio = 0;
    double leastOnce = std::numeric_limits<double>::infinity();
    double leastTwice = leastOnce;
    for (int tries = 0; tries < 12; ++tries) {
        double const once = leastOf(5, [&] { return cost(count); });
        double const twice = leastOf(5, [&] { return cost(2 * count); });
        leastOnce = std::min(leastOnce, once);
        leastTwice = std::min(leastTwice, twice);
        ratio = std::min(twice / once, leastTwice / leastOnce);
        if (ratio <= most) return;
    }
    ADD_FAILURE() << "twice the input takes " << ratio << " times as long";
}

#endif
