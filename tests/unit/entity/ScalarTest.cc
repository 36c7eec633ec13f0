#include <tests/unit/notify/TestListeners.h>

#include <gtest/gtest.h>

using namespace Sample;

namespace {

class ScalarSetter : public testing::Test {
  protected:
    Port::Ptr port = Qor::make<Port>("p");
    Log log;
    PortListener::Ptr a = listen<PortListener>(port, log, "a");
};

TEST_F(ScalarSetter, EqualValueTellsNobody) {
    port->speedIs(0);
    EXPECT_TRUE(log.empty());
    port->speedIs(5);
    port->speedIs(5);
    EXPECT_EQ(log, (Log{"a:speed"}));
}

TEST_F(ScalarSetter, NewValueIsStoredAndToldOnce) {
    port->speedIs(5);
    EXPECT_EQ(port->speed(), 5U);
    EXPECT_EQ(log, (Log{"a:speed"}));
}

TEST_F(ScalarSetter, ValueStaysWhenAHandlerThrows) {
    a->react = [](std::string const&) { throw 1; };
    port->speedIs(5);
    EXPECT_EQ(port->speed(), 5U);
}

TEST_F(ScalarSetter, ConstructorRaisesNothing) {
    // Nobody can be attached yet; the default stands.
    EXPECT_EQ(Qor::make<Port>("q")->speed(), 0U);
    EXPECT_TRUE(log.empty());
}

TEST_F(ScalarSetter, HandlerMayRemoveTheNotifieeWhoseTurnItIs) {
    a->react = [this](std::string const&) { a = nullptr; };
    port->speedIs(5);
    port->speedIs(6);
    EXPECT_EQ(log, (Log{"a:speed"}));
}

}  // namespace
