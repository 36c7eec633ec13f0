// Whether work grows with what it is given: twice as much takes at most 2.3 times as long.
#ifndef TESTS_SUPPORT_LINEAR_COST_H
#define TESTS_SUPPORT_LINEAR_COST_H

#include <gtest/gtest.h>

#include <algorithm>
#include <ctime>

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

// The machine is shared: what counts is the best of several, and of several tries.
template <class Cost>
void expectLinearCost(std::size_t count, Cost const& cost) {
    constexpr double most = 2.3;
    double ratio = 0;
    for (int tries = 0; tries < 6; ++tries) {
        double once = 1e9;
        double twice = 1e9;
        for (int round = 0; round < 5; ++round) {
            once = std::min(once, cost(count));
            twice = std::min(twice, cost(2 * count));
        }
        ratio = twice / once;
        if (ratio <= most) return;
    }
    ADD_FAILURE() << "twice the input takes " << ratio << " times as long";
}

#endif
