#include <tests/unit/notify/TestListeners.h>

#include <gtest/gtest.h>

using namespace Sample;

namespace {

class Attach : public testing::Test {
  protected:
    Port::Ptr port = Qor::make<Port>("ethernet1");
    Port::Ptr other = Qor::make<Port>("ethernet2");
    Log log;
    PortListener::Ptr a = Qor::make<PortListener>(log, "a");
};

TEST_F(Attach, NewNotifieeIsRegisteredAndDetached) {
    EXPECT_TRUE(a->isRegisteredNotifiee());
    EXPECT_FALSE(a->isWeakReference());
    EXPECT_EQ(a->qorNotifier(), nullptr);
    EXPECT_EQ(a->name(), "");
}

TEST_F(Attach, HoldsTheNotifierAndBearsItsName) {
    a->notifierIs(port);
    EXPECT_EQ(port->qorRefs(), 2U);
    EXPECT_EQ(a->name(), "ethernet1");
    EXPECT_EQ(port->notifierList().count(), 1U);
    EXPECT_EQ(port->notifierList().version(), 1U);
    EXPECT_TRUE(a->qorIsListed());
}

TEST_F(Attach, NullDetaches) {
    a->notifierIs(port);
    a->notifierIs(nullptr);
    EXPECT_EQ(port->qorRefs(), 1U);
    EXPECT_EQ(port->notifierList().count(), 0U);
    EXPECT_EQ(port->notifierList().version(), 2U);
    EXPECT_EQ(port->notifierList().head(), nullptr);
    EXPECT_EQ(a->name(), "");
}

TEST_F(Attach, SameNotifierAgainChangesNothing) {
    a->notifierIs(port);
    auto const b = listen<PortListener>(port, log, "b");
    a->notifierIs(port);
    EXPECT_EQ(port->notifierList().version(), 2U);
    EXPECT_EQ(port->notifierList().count(), 2U);
    EXPECT_EQ(port->qorRefs(), 3U);
    port->speedIs(1);
    EXPECT_EQ(log, (Log{"a:speed", "b:speed"}));
}

TEST_F(Attach, AnotherNotifierTakesItOver) {
    a->notifierIs(port);
    a->notifierIs(other);
    EXPECT_EQ(port->notifierList().count(), 0U);
    EXPECT_EQ(port->qorRefs(), 1U);
    EXPECT_EQ(other->notifierList().count(), 1U);
    port->speedIs(1);
    other->speedIs(1);
    EXPECT_EQ(log, (Log{"a:speed"}));
}

TEST_F(Attach, OldNotifierMayEndInTheExchange) {
    a->notifierIs(port);
    port = nullptr;
    EXPECT_EQ(Port::living(), 2);
    a->notifierIs(other);
    EXPECT_EQ(Port::living(), 1);
    EXPECT_EQ(a->name(), "ethernet2");
}

TEST_F(Attach, NotifierOfAnotherTreeCountsAsNull) {
    auto const device = Qor::make<Device>("d");
    a->notifierIs(port);
    a->notifierIs(device);
    EXPECT_EQ(a->qorNotifier(), nullptr);
    EXPECT_EQ(port->notifierList().count(), 0U);
    EXPECT_EQ(device->notifierList().count(), 0U);
    EXPECT_EQ(device->qorRefs(), 1U);
}

TEST_F(Attach, NotifieeOfADerivedClassMayAttachToTheRoot) {
    auto const row = Qor::make<Row>("r");
    a->notifierIs(row);
    row->modeIs(1);
    EXPECT_EQ(log, (Log{"a:mode"}));
}

TEST_F(Attach, UnregisteredIsOnlyRemembered) {
    a->isRegisteredNotifieeIs(false);
    a->notifierIs(port);
    EXPECT_EQ(port->notifierList().count(), 0U);
    EXPECT_EQ(port->qorRefs(), 2U);
    EXPECT_EQ(a->name(), "ethernet1");
    port->speedIs(1);
    EXPECT_TRUE(log.empty());
}

TEST_F(Attach, RegisteringTwiceLinksOnce) {
    a->isRegisteredNotifieeIs(false);
    a->notifierIs(port);
    a->isRegisteredNotifieeIs(true);
    a->isRegisteredNotifieeIs(true);
    EXPECT_EQ(port->notifierList().count(), 1U);
    EXPECT_EQ(port->notifierList().version(), 1U);
    port->speedIs(1);
    EXPECT_EQ(log, (Log{"a:speed"}));
}

TEST_F(Attach, UnregisteringKeepsTheNotifier) {
    a->notifierIs(port);
    a->isRegisteredNotifieeIs(false);
    a->isRegisteredNotifieeIs(false);
    EXPECT_EQ(port->notifierList().count(), 0U);
    EXPECT_EQ(port->notifierList().version(), 2U);
    EXPECT_EQ(a->qorNotifier(), port.ptr());
    EXPECT_EQ(port->qorRefs(), 2U);
}

TEST_F(Attach, UnregisteredMayMoveFromNotifierToNotifier) {
    a->isRegisteredNotifieeIs(false);
    a->notifierIs(port);
    a->notifierIs(other);
    EXPECT_EQ(port->qorRefs(), 1U);
    a->isRegisteredNotifieeIs(true);
    EXPECT_EQ(other->notifierList().count(), 1U);
    EXPECT_EQ(port->notifierList().count(), 0U);
}

TEST_F(Attach, ReregisteredNotifieeGoesToTheTail) {
    a->notifierIs(port);
    auto const b = listen<PortListener>(port, log, "b");
    a->isRegisteredNotifieeIs(false);
    a->isRegisteredNotifieeIs(true);
    port->speedIs(1);
    EXPECT_EQ(log, (Log{"b:speed", "a:speed"}));
}

TEST_F(Attach, DestructionUnlinksAndReleases) {
    a->notifierIs(port);
    a = nullptr;
    EXPECT_EQ(port->notifierList().count(), 0U);
    EXPECT_EQ(port->notifierList().version(), 2U);
    EXPECT_EQ(port->qorRefs(), 1U);
    port->speedIs(1);
    EXPECT_TRUE(log.empty());
}

TEST_F(Attach, DestructionOfTheLastHolderEndsTheNotifier) {
    a->notifierIs(port);
    port = nullptr;
    EXPECT_EQ(Port::living(), 2);
    a = nullptr;
    EXPECT_EQ(Port::living(), 1);
}

TEST_F(Attach, EachPlaceOnTheListMayBeLeft) {
    for (std::size_t gone = 0; gone < 4; ++gone) {
        std::vector<PortListener::Ptr> all;
        Log expected;
        for (std::size_t i = 0; i < 4; ++i) {
            all.push_back(listen<PortListener>(port, log, std::to_string(i)));
            if (i != gone) {
                expected.push_back(std::to_string(i) + ":speed");
            }
        }
        all[gone]->notifierIs(nullptr);
        auto const last = listen<PortListener>(port, log, "last");
        expected.push_back("last:speed");
        log.clear();
        port->speedIs(port->speed() + 1);
        EXPECT_EQ(log, expected);
    }
}

TEST_F(Attach, UnlinkOfWhatIsNotThereDoesNothing) {
    a->notifierIs(port);
    other->notifierList().unlink(*a);
    EXPECT_EQ(other->notifierList().version(), 0U);
    EXPECT_EQ(port->notifierList().count(), 1U);
    EXPECT_TRUE(a->qorIsListed());
}

TEST_F(Attach, FlagsMayBeReplaced) {
    using Flags = Qor::PtrInterface::NotifieeConst::Qor_BitSet;
    EXPECT_EQ(a->qor_bitSet().word(), 0U);
    a->qor_bitSetIs(Flags(0x42));
    EXPECT_EQ(a->qor_bitSet().word(), 0x42U);
    EXPECT_EQ(Flags::notificationBitMask().word(), 0xFA8FFFFFU);
}

}  // namespace
