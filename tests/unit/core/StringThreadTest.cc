#include <qor/core/String8.h>

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

namespace {

using Qor::String8;

constexpr int threads = 4;
constexpr int rounds = 50000;

template <class Work>
void onAllThreads(Work work) {
    std::vector<std::thread> running;
    for (int i = 0; i < threads; ++i) running.emplace_back(work, i);
    for (auto& thread : running) thread.join();
}

TEST(StringThreads, CountIsExactAfterCopiesOnManyThreads) {
    String8 const shared("6b2f1c3e-9d47-4f0a-8a51-0c9e7d5b1234");
    onAllThreads([&shared](int) {
        std::vector<String8> kept;
        for (int i = 0; i < rounds; ++i) {
            kept.push_back(shared);
            if (kept.size() > 10) kept.clear();
        }
    });
    EXPECT_EQ(shared.data()->count(), 1U);
    EXPECT_EQ(shared, "6b2f1c3e-9d47-4f0a-8a51-0c9e7d5b1234");
}

TEST(StringThreads, LastReferenceMayGoOnAnotherThread) {
    std::vector<String8> texts;
    for (int i = 0; i < rounds; ++i) texts.emplace_back("a text that a thread gives up");
    auto const copies = texts;
    std::vector<std::vector<String8>> parts(threads);
    for (std::size_t i = 0; i < texts.size(); ++i) parts[i % threads].push_back(texts[i]);
    texts.clear();
    onAllThreads([&parts](int i) { parts[static_cast<std::size_t>(i)].clear(); });
    for (auto const& text : copies) ASSERT_EQ(text.data()->count(), 1U);
}

TEST(StringThreads, HashIsTheSameWhicheverThreadAsksFirst) {
    String8 const shared("computed by who comes first");
    auto const expected = String8("computed by who comes first").hash();
    std::atomic<int> wrong{0};
    onAllThreads([&](int) { wrong += shared.hash() != expected ? 1 : 0; });
    EXPECT_EQ(wrong, 0);
}

}  // namespace
