#include <vgwctl/link/Silence.h>

#include <gtest/gtest.h>

#include <thread>

namespace {

using namespace Vgwctl;
using Finding = Silence::Finding;

constexpr Deadline::Seconds patience{0.05};

void wait() { std::this_thread::sleep_for(patience + std::chrono::milliseconds(5)); }

TEST(Silence, OneThatSaysNothingIsAskedAndThenToldOnce) {
    Silence silence(patience);
    EXPECT_EQ(silence.look(10), Finding::none);
    EXPECT_EQ(silence.look(10), Finding::none);
    wait();
    EXPECT_EQ(silence.look(10), Finding::toAsk);
    EXPECT_EQ(silence.look(10), Finding::none);
    wait();
    EXPECT_EQ(silence.look(10), Finding::silent);
    EXPECT_EQ(silence.due().milliseconds(), -1);
    wait();
    EXPECT_EQ(silence.look(10), Finding::none);
    EXPECT_EQ(silence.look(11), Finding::heardAgain);
    EXPECT_EQ(silence.look(12), Finding::none);
}

TEST(Silence, AnAnswerIsEnough) {
    Silence silence(patience);
    for (std::uint64_t bytes = 1; bytes < 4; ++bytes) {
        wait();
        EXPECT_EQ(silence.look(bytes - 1), Finding::toAsk);
        EXPECT_EQ(silence.look(bytes), Finding::none);
    }
}

TEST(Silence, WhoWasStoppedItselfAsksBeforeItTellsOfSilence) {
    Silence silence(patience);
    wait();
    wait();
    wait();
    EXPECT_EQ(silence.look(0), Finding::toAsk);
    EXPECT_EQ(silence.look(0), Finding::none);
}

TEST(Silence, WithoutPatienceNothingIsFound) {
    Silence silence(Deadline::Seconds(0));
    EXPECT_EQ(silence.due().milliseconds(), -1);
    EXPECT_EQ(silence.look(0), Finding::none);
    EXPECT_EQ(silence.look(5), Finding::none);
}

}  // namespace
