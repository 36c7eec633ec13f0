#include <tests/unit/ptr/Counted.h>

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

namespace {

constexpr int threads = 4;
constexpr int rounds = 50000;

template <class Work>
void onAllThreads(Work work) {
    std::vector<std::thread> running;
    for (int i = 0; i < threads; ++i) {
        running.emplace_back(work, i);
    }
    for (auto& thread : running) {
        thread.join();
    }
}

// Counts its ends on whatever thread they come.
class Shared : public Qor::VFPtrInterface {
  public:
    using Ptr = Qor::Ptr<Shared>;
    ~Shared() override { ++destructions; }
    void zeroReferencesIs(bool) override { ++ends; }
    int payload = 0;
    static inline std::atomic<int> ends{0};
    static inline std::atomic<int> destructions{0};
};

class CountThreads : public testing::Test {
  protected:
    CountThreads() {
        Shared::ends = 0;
        Shared::destructions = 0;
    }
};

TEST_F(CountThreads, CountIsExactAfterManyThreadsChangedIt) {
    auto const shared = Qor::make<Shared>();
    onAllThreads([&](int) {
        for (int i = 0; i < rounds; ++i) {
            Shared::Ptr const a(shared);
            Shared::Ptr const b(a);
        }
    });
    EXPECT_EQ(shared->qorRefWord(), 1U);
    EXPECT_EQ(Shared::ends, 0);
}

TEST_F(CountThreads, LastReferenceEndsTheObjectOnceOnWhateverThread) {
    constexpr int objects = 5000;
    std::vector<std::vector<Shared::Ptr>> held(threads);
    for (int i = 0; i < objects; ++i) {
        auto const object = Qor::make<Shared>();
        for (auto& part : held) {
            part.push_back(object);
        }
    }
    onAllThreads([&](int i) {
        for (auto& object : held[static_cast<std::size_t>(i)]) {
            object = nullptr;
        }
    });
    EXPECT_EQ(Shared::ends, objects);
    EXPECT_EQ(Shared::destructions, objects);
}

TEST_F(CountThreads, OneOfManyReferencesIsNeverGivenUpAsTheLast) {
    constexpr int objects = 5000;
    std::vector<Shared*> all;
    for (int i = 0; i < objects; ++i) {
        all.push_back(new Shared);
        for (int j = 1; j < threads; ++j) {
            all.back()->qorNewRef();
        }
    }
    std::atomic<int> last{0};
    onAllThreads([&](int) {
        for (Shared* object : all) {
            if (!object->qorDeleteRefOfMany()) {
                ++last;
                object->qorDeleteRef();
            }
        }
    });
    EXPECT_EQ(last, objects);
    EXPECT_EQ(Shared::destructions, objects);
}

// Its destructor reads what other threads wrote before they gave up their references.
class Summing : public Shared {
  public:
    ~Summing() override { sum += payload; }
    static inline int sum = 0;
};

TEST_F(CountThreads, WhatAThreadWroteIsSeenByTheOneThatDestroys) {
    Summing::sum = 0;
    for (int round = 0; round < 500; ++round) {
        auto object = Qor::make<Summing>();
        std::thread writer([held = object]() mutable {
            held->payload = 1;
            held = nullptr;
        });
        object = nullptr;
        writer.join();
    }
    EXPECT_EQ(Summing::sum, 500);
}

// Saves itself from its end, once, by a reference that another thread gives up.
class Rescued : public Shared {
  public:
    void zeroReferencesIs(bool) override {
        ++ends;
        if (!saved) {
            saved = true;
            helper = std::thread([kept = Qor::Ptr<Rescued>(this)]() mutable {
                kept->payload = 1;
                kept = nullptr;
            });
        }
    }
    bool saved = false;
    static inline std::thread helper;
};

TEST_F(CountThreads, ObjectSavedForAnotherThreadIsDestroyedOnce) {
    for (int round = 0; round < 500; ++round) {
        { auto const object = Qor::make<Rescued>(); }
        Rescued::helper.join();
        ASSERT_EQ(Shared::destructions, round + 1);
    }
}

TEST_F(CountThreads, MarkAndCountMayChangeAtOnce) {
    auto const shared = Qor::make<Shared>();
    onAllThreads([&](int thread) {
        for (int i = 0; i < rounds; ++i) {
            if (thread == 0) {
                shared->qorMarkedForDeletionIs(i % 2 == 0);
            } else {
                Shared::Ptr const held(shared);
            }
        }
    });
    shared->qorMarkedForDeletionIs(false);
    EXPECT_EQ(shared->qorRefWord(), 1U);
}

TEST_F(CountThreads, CountsFromBeforeTheFirstThreadAreKept) {
    auto const shared = Qor::make<Shared>();
    std::vector<Shared::Ptr> const held(10, shared);
    std::thread([&] { std::vector<Shared::Ptr> const more(10, shared); }).join();
    EXPECT_EQ(shared->qorRefs(), 11U);
}

}  // namespace
