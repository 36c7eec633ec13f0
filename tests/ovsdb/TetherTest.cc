// What is on its way in an event loop when its owner ends or thinks better of it.

#include <ovsdb/rpc/Tether.h>

#include <asio/io_context.hpp>
#include <asio/steady_timer.hpp>

#include <gtest/gtest.h>

#include <chrono>
#include <optional>
#include <string>
#include <system_error>

namespace Ovsdb {
namespace {

using std::chrono::milliseconds;

class TetherTest : public testing::Test {
  protected:
    std::optional<Tether> tether_{std::in_place};
    std::string heard_;
};

TEST_F(TetherTest, ATiedHandlerIsCalledWithWhatItIsCalledWith) {
    auto const tied = tether_->tie(
        [this](std::string const& one, int other) { heard_ = one + std::to_string(other); });
    tied("a", 1);
    EXPECT_EQ(heard_, "a1");
}

TEST_F(TetherTest, NothingIsCalledOnceItIsCut) {
    auto const tied = tether_->tie([this] { heard_ += "old"; });
    tether_->cut();
    tied();
    EXPECT_EQ(heard_, "");
    tether_->tie([this] { heard_ += "new"; })();
    EXPECT_EQ(heard_, "new");
}

TEST_F(TetherTest, NothingIsCalledOnceItHasEnded) {
    auto const tied = tether_->tie([this] { heard_ += "late"; });
    tether_.reset();
    tied();
    EXPECT_EQ(heard_, "");
}

TEST_F(TetherTest, AHandlerMayCutOrEndItself) {
    auto const tied = tether_->tie([this](std::string const& what) {
        tether_.reset();
        heard_ += what;
    });
    tied("last");
    tied("late");
    EXPECT_EQ(heard_, "last");
}

TEST_F(TetherTest, ATimerThatHasRunOutIsNotHeardOnceItsOwnerHasEnded) {
    asio::io_context loop;
    asio::steady_timer first(loop, milliseconds(0));
    std::optional<asio::steady_timer> second(std::in_place, loop, milliseconds(0));
    first.async_wait([&](std::error_code) {
        tether_.reset();
        EXPECT_EQ(second->cancel(), 0U) << "both have run out";
        second.reset();
    });
    second->async_wait([this](std::error_code error) { heard_ += error ? "cancelled" : "untied"; });
    second->async_wait(tether_->tie([this](std::error_code) { heard_ += "tied"; }));
    loop.run();
    EXPECT_EQ(heard_, "untied");
}

}  // namespace
}  // namespace Ovsdb
