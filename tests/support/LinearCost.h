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

// The machine is shared: what counts is the least of several.
template <class Cost>
double leastOf(int rounds, Cost const& cost) {
    double least = cost();
    for (int round = 1; round < rounds; ++round) least = std::min(least, cost());
    return least;
}

// The least of several, in several tries.
template <class Cost>
void expectLinearCost(std::size_t count, Cost const& cost) {
    constexpr double most = 2.3;
    double ratio = 0;
    for (int tries = 0; tries < 12; ++tries) {
        double const once = leastOf(5, [&] { return cost(count); });
        ratio = leastOf(5, [&] { return cost(2 * count); }) / once;
        if (ratio <= most) return;
    }
    ADD_FAILURE() << "twice the input takes " << ratio << " times as long";
}

#endif
