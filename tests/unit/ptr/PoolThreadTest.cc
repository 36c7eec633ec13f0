#include <qor/core/Pool.h>

#include <gtest/gtest.h>

#include <atomic>
#include <cstring>
#include <mutex>
#include <thread>
#include <vector>

namespace {

constexpr std::size_t blockSize = 48;

std::vector<void*> blocks(std::size_t count, std::size_t size = blockSize) {
    std::vector<void*> out;
    for (std::size_t i = 0; i < count; ++i) {
        out.push_back(Qor::memNew(size));
        std::memset(out.back(), 0x5A, size);
    }
    return out;
}

void giveBack(std::vector<void*> const& held, std::size_t size = blockSize) {
    for (void* const block : held) {
        Qor::memDel(block, size);
    }
}

TEST(PoolThreads, BlocksFreedOnAnotherThreadAreUsedAgain) {
    // Enough of them that the freeing thread hands its surplus over while it runs.
    auto const round = [] {
        auto const held = blocks(20000);
        std::thread([&] { giveBack(held); }).join();
    };
    round();
    round();
    std::size_t const after = Qor::memFromSystem();
    for (int i = 0; i < 20; ++i) {
        round();
    }
    EXPECT_EQ(Qor::memFromSystem(), after);
}

TEST(PoolThreads, ThreadsEndGivesBackWhatItFreedAndNeverAllocated) {
    // Fewer than a thread would hand over while it runs, and the thread takes none itself.
    auto const round = [] {
        auto const held = blocks(100);
        std::thread([&] { giveBack(held); }).join();
    };
    for (int i = 0; i < 10; ++i) {
        round();
    }
    std::size_t const after = Qor::memFromSystem();
    for (int i = 0; i < 1000; ++i) {
        round();
    }
    EXPECT_EQ(Qor::memFromSystem(), after);
}

TEST(PoolThreads, ThreadsEndGivesBackWhatItHeldForReuse) {
    auto const round = [] { std::thread([] { giveBack(blocks(500)); }).join(); };
    for (int i = 0; i < 10; ++i) {
        round();
    }
    std::size_t const after = Qor::memFromSystem();
    for (int i = 0; i < 1000; ++i) {
        round();
    }
    EXPECT_EQ(Qor::memFromSystem(), after);
}

// Frees and takes blocks after the pool's own end of the thread may have run.
struct LateUser {
    std::vector<void*> held;
    ~LateUser() {
        giveBack(held);
        giveBack(blocks(300));
    }
};

TEST(PoolThreads, BlocksMayStillComeAndGoWhileAThreadEnds) {
    auto const round = [] {
        std::thread([] {
            static thread_local LateUser user;  // made before the thread's first use of the pool
            user.held.reserve(200);
            user.held = blocks(200);
        }).join();
    };
    for (int i = 0; i < 10; ++i) {
        round();
    }
    std::size_t const after = Qor::memFromSystem();
    for (int i = 0; i < 500; ++i) {
        round();
    }
    EXPECT_EQ(Qor::memFromSystem(), after);
}

TEST(PoolThreads, ManyThreadsShareBlocksThatStayWhole) {
    constexpr int threads = 4;
    constexpr int steps = 40000;
    std::mutex mutex;
    std::vector<std::pair<unsigned char*, std::size_t>> shared;
    std::atomic<int> broken{0};
    auto const work = [&](unsigned seed) {
        for (int i = 0; i < steps; ++i) {
            seed = seed * 1664525U + 1013904223U;
            std::size_t const size = 1 + (seed >> 8) % 600;
            auto* const fresh = static_cast<unsigned char*>(Qor::memNew(size));
            std::memset(fresh, static_cast<int>(size & 0xFF), size);
            std::pair<unsigned char*, std::size_t> other{nullptr, 0};
            {
                std::lock_guard const lock(mutex);
                shared.emplace_back(fresh, size);
                if (shared.size() > 500) {
                    std::swap(shared[seed % shared.size()], shared.back());
                    other = shared.back();
                    shared.pop_back();
                }
            }
            auto const& [block, length] = other;
            for (std::size_t at = 0; at < length; ++at) {
                broken += block[at] != (length & 0xFF);
            }
            Qor::memDel(block, length);
        }
    };
    std::vector<std::thread> running;
    for (unsigned i = 0; i < threads; ++i) {
        running.emplace_back(work, i + 1);
    }
    for (auto& thread : running) {
        thread.join();
    }
    for (auto const& [block, length] : shared) {
        Qor::memDel(block, length);
    }
    EXPECT_EQ(broken, 0);
}

}  // namespace
