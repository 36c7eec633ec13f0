#include <tests/unit/notify/TestListeners.h>

#include <gtest/gtest.h>

using namespace Sample;

namespace {

class WeakReference : public testing::Test {
  protected:
    Port::Ptr port = Qor::make<Port>("ethernet1");
    Log log;
    PortListener::Ptr a = Qor::make<PortListener>(log, "a");
};

TEST_F(WeakReference, CountsNoReference) {
    a->isWeakReferenceIs(true);
    a->notifierIs(port);
    EXPECT_EQ(port->qorRefs(), 1U);
    EXPECT_EQ(a->qorNotifier(), port.ptr());
    port->speedIs(1);
    EXPECT_EQ(log, (Log{"a:speed"}));
}

TEST_F(WeakReference, GivesUpTheReferenceWhenItIsSetAndTakesItWhenItIsCleared) {
    a->notifierIs(port);
    EXPECT_EQ(port->qorRefs(), 2U);
    a->isWeakReferenceIs(true);
    a->isWeakReferenceIs(true);
    EXPECT_EQ(port->qorRefs(), 1U);
    a->isWeakReferenceIs(false);
    a->isWeakReferenceIs(false);
    EXPECT_EQ(port->qorRefs(), 2U);
}

TEST_F(WeakReference, SwapsNotifiersWithoutChangingTheirCounts) {
    auto const other = Qor::make<Port>("ethernet2");
    a->isWeakReferenceIs(true);
    a->notifierIs(port);
    a->notifierIs(other);
    EXPECT_EQ(port->qorRefs(), 1U);
    EXPECT_EQ(other->qorRefs(), 1U);
    a->notifierIs(nullptr);
    EXPECT_EQ(other->qorRefs(), 1U);
}

TEST_F(WeakReference, ListedOneHearsOfTheEndAndForgetsTheNotifier) {
    a->isWeakReferenceIs(true);
    a->notifierIs(port);
    bool stillThere = false;
    a->react = [&](std::string const&) { stillThere = a->name() == "ethernet1"; };
    port = nullptr;
    EXPECT_EQ(log, (Log{"a:zero"}));
    EXPECT_TRUE(stillThere);
    EXPECT_EQ(a->qorNotifier(), nullptr);
    EXPECT_FALSE(a->qorIsListed());
    EXPECT_EQ(a->name(), "");
    EXPECT_EQ(Port::living(), 0);
}

TEST_F(WeakReference, UnlistedOneForgetsTheNotifierAtItsEnd) {
    a->isWeakReferenceIs(true);
    a->isRegisteredNotifieeIs(false);
    a->notifierIs(port);
    EXPECT_TRUE(port->qorWeaklyWatched());
    port = nullptr;
    EXPECT_TRUE(log.empty());
    EXPECT_EQ(a->qorNotifier(), nullptr);
}

TEST_F(WeakReference, SetAfterUnregisteringForgetsTheNotifierToo) {
    a->notifierIs(port);
    a->isRegisteredNotifieeIs(false);
    a->isWeakReferenceIs(true);
    port = nullptr;
    EXPECT_EQ(a->qorNotifier(), nullptr);
}

TEST_F(WeakReference, UnregisteredWhileWeakForgetsTheNotifierToo) {
    a->isWeakReferenceIs(true);
    a->notifierIs(port);
    a->isRegisteredNotifieeIs(false);
    port = nullptr;
    EXPECT_EQ(a->qorNotifier(), nullptr);
}

TEST_F(WeakReference, WatchEndsWhenTheNotifieeGoesFirst) {
    a->isWeakReferenceIs(true);
    a->isRegisteredNotifieeIs(false);
    a->notifierIs(port);
    a = nullptr;
    EXPECT_FALSE(port->qorWeaklyWatched());
    port = nullptr;
    EXPECT_EQ(Port::living(), 0);
}

TEST_F(WeakReference, WatchEndsWhenItIsRegisteredOrStrongAgain) {
    a->isWeakReferenceIs(true);
    a->isRegisteredNotifieeIs(false);
    a->notifierIs(port);
    a->isRegisteredNotifieeIs(true);
    EXPECT_FALSE(port->qorWeaklyWatched());
    a->isRegisteredNotifieeIs(false);
    EXPECT_TRUE(port->qorWeaklyWatched());
    a->isWeakReferenceIs(false);
    EXPECT_FALSE(port->qorWeaklyWatched());
    EXPECT_EQ(port->qorRefs(), 2U);
}

TEST_F(WeakReference, SeveralUnlistedOnesAllForget) {
    std::vector<PortListener::Ptr> all;
    for (int i = 0; i < 5; ++i) {
        all.push_back(Qor::make<PortListener>(log, std::to_string(i)));
        all.back()->isWeakReferenceIs(true);
        all.back()->isRegisteredNotifieeIs(false);
        all.back()->notifierIs(port);
    }
    all[2] = nullptr;
    EXPECT_TRUE(port->qorWeaklyWatched());
    port = nullptr;
    for (auto const& listener : all) {
        EXPECT_TRUE(!listener || !listener->qorNotifier());
    }
}

TEST_F(WeakReference, MadeWeakOnTheLastReferenceEndsTheNotifier) {
    a->notifierIs(port);
    port = nullptr;
    a->isWeakReferenceIs(true);
    EXPECT_EQ(Port::living(), 0);
    EXPECT_EQ(a->qorNotifier(), nullptr);
    EXPECT_EQ(log, (Log{"a:zero"}));
}

TEST_F(WeakReference, MadeWeakInItsHandlerOnTheLastReferenceEndsTheNotifier) {
    a->notifierIs(port);
    Port* const raw = port.ptr();
    port = nullptr;
    a->react = [this](std::string const& event) {
        if (event == "speed") {
            a->isWeakReferenceIs(true);
        }
    };
    raw->speedIs(1);
    EXPECT_EQ(log, (Log{"a:speed", "a:zero"}));
    EXPECT_EQ(Port::living(), 0);
}

TEST_F(WeakReference, MadeStrongWhileTheEndIsToldSavesTheNotifier) {
    a->isWeakReferenceIs(true);
    a->notifierIs(port);
    a->react = [this](std::string const& event) {
        if (event == "zero") {
            a->isWeakReferenceIs(false);
        }
    };
    port = nullptr;
    EXPECT_EQ(Port::living(), 1);
    ASSERT_TRUE(a->qorNotifier());
    EXPECT_EQ(a->name(), "ethernet1");
    a->notifierIs(nullptr);
    EXPECT_EQ(Port::living(), 0);
}

TEST_F(WeakReference, SurvivesANondestructingTimeOfTheNotifier) {
    a->isWeakReferenceIs(true);
    a->isRegisteredNotifieeIs(false);
    a->notifierIs(port);
    port->isNondestructingIs(true);
    port->isNondestructingIs(false);
    port = nullptr;
    EXPECT_EQ(Port::living(), 0);
    EXPECT_EQ(a->qorNotifier(), nullptr);
}

TEST_F(WeakReference, TakenInANondestructingTimeLeavesTheNotifierNondestructing) {
    port->isNondestructingIs(true);
    a->isWeakReferenceIs(true);
    a->isRegisteredNotifieeIs(false);
    a->notifierIs(port);
    EXPECT_TRUE(port->isNondestructing());
    port->isNondestructingIs(false);
    port = nullptr;
    EXPECT_EQ(Port::living(), 0);
    EXPECT_EQ(a->qorNotifier(), nullptr);
}

TEST_F(WeakReference, OfAPlainEntityForgetsItAtItsEnd) {
    struct Plain : Qor::Entity::NotifieeConst {};
    auto entity = Qor::make<Qor::Entity>("plain");
    auto const plain = Qor::make<Plain>();
    plain->isWeakReferenceIs(true);
    plain->notifierIs(entity);
    EXPECT_EQ(entity->qorRefs(), 1U);
    EXPECT_TRUE(plain->notifier() == entity);
    entity = nullptr;
    EXPECT_FALSE(plain->notifier());
}

TEST_F(WeakReference, OfAPlainEntityEndsWithTheNotifiee) {
    struct Plain : Qor::Entity::NotifieeConst {};
    auto entity = Qor::make<Qor::Entity>("plain");
    auto plain = Qor::make<Plain>();
    plain->isWeakReferenceIs(true);
    plain->notifierIs(entity);
    plain = nullptr;
    EXPECT_FALSE(entity->qorWeaklyWatched());
    EXPECT_EQ(entity->qorRefs(), 1U);
}

TEST_F(WeakReference, OfAnEntityOutsideTheHeapForgetsItAtItsEnd) {
    a->isWeakReferenceIs(true);
    auto const b = Qor::make<PortListener>(log, "b");
    b->isWeakReferenceIs(true);
    b->isRegisteredNotifieeIs(false);
    {
        Port local("local");
        a->notifierIs(Qor::Ptr<Port>(&local));
        b->notifierIs(Qor::Ptr<Port>(&local));
    }
    EXPECT_EQ(a->qorNotifier(), nullptr);
    EXPECT_EQ(b->qorNotifier(), nullptr);
}

}  // namespace
