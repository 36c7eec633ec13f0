// Notifiers and notifiees when there is no memory: what has changed is told, who leaves needs none,
// and what is refused has changed nothing.
#include "CountingNew.h"

#include <tests/unit/notify/TestListeners.h>

#include <gtest/gtest.h>

namespace {

using namespace Sample;

// Counts what it hears, and keeps nothing.
struct Hearing : Port::NotifieeConst {
    void onSpeed() override {
        ++speeds;
        if (react) react();
    }
    void onMode() override { ++modes; }
    void onZeroReferences() override { ++ends; }
    std::function<void()> react;
    int speeds = 0;
    int modes = 0;
    int ends = 0;
};

enum class Outcome { askedNothing, didWithout, refused };

// What becomes of `work` when its first request for memory fails.
template <class Work>
Outcome withoutMemory(Work work) {
    bool isRefused = false;
    Memory::failAt(1);
    try {
        work();
    } catch (std::bad_alloc const&) {
        isRefused = true;
    }
    bool const hasAsked = Memory::hasFailed();
    Memory::failAt(0);
    if (isRefused) return Outcome::refused;
    return hasAsked ? Outcome::didWithout : Outcome::askedNothing;
}

class WithoutMemory : public testing::Test {
  protected:
    WithoutMemory() {
        for (auto& listener : listeners) {
            listener = Qor::make<Hearing>();
            listener->notifierIs(port);
        }
    }
    std::vector<int> speeds() const {
        std::vector<int> result;
        for (auto const& listener : listeners) result.push_back(listener ? listener->speeds : -1);
        return result;
    }
    Port::Ptr port = Qor::make<Port>("ethernet1");
    std::array<Qor::Ptr<Hearing>, 20> listeners;
};

TEST_F(WithoutMemory, ChangeThatMoreThanSixteenHearIsToldToAll) {
    EXPECT_EQ(withoutMemory([this] { port->speedIs(7); }), Outcome::didWithout);
    EXPECT_EQ(speeds(), std::vector<int>(20, 1));
}

TEST_F(WithoutMemory, ChangeWithinTheTellingOfAnotherIsToldToAll) {
    bool hasOuterFailed = false;
    listeners[3]->react = [&] {
        hasOuterFailed = Memory::hasFailed();
        EXPECT_EQ(withoutMemory([this] { port->modeIs(1); }), Outcome::didWithout);
    };
    Memory::failAt(1);
    EXPECT_NO_THROW(port->speedIs(7));
    Memory::failAt(0);
    EXPECT_TRUE(hasOuterFailed);
    EXPECT_EQ(speeds(), std::vector<int>(20, 1));
    for (auto const& listener : listeners) EXPECT_EQ(listener->modes, 1);
}

TEST_F(WithoutMemory, OnesThatGoBeforeTheirTurnAreNotCalledAndThoseThatComeAreNot) {
    auto const fresh = Qor::make<Hearing>();
    listeners[1]->react = [&] {
        for (int i = 2; i < 18; ++i) listeners[i] = nullptr;
        fresh->notifierIs(port);
    };
    EXPECT_EQ(withoutMemory([this] { port->speedIs(7); }), Outcome::didWithout);
    std::vector<int> expected(20, -1);
    expected[0] = expected[1] = expected[18] = expected[19] = 1;
    EXPECT_EQ(speeds(), expected);
    EXPECT_EQ(fresh->speeds, 0);
}

TEST_F(WithoutMemory, EndIsToldToMoreThanSixteen) {
    for (auto const& listener : listeners) listener->isWeakReferenceIs(true);
    EXPECT_EQ(withoutMemory([this] { port = nullptr; }), Outcome::didWithout);
    EXPECT_EQ(Port::living(), 0);
    for (auto const& listener : listeners) EXPECT_EQ(listener->ends, 1);
}

// A weak notifiee that is on no list stands in a table, which needs memory.
class WeakWithoutMemory : public testing::Test {
  protected:
    void weak(bool registered) {
        a->isWeakReferenceIs(true);
        a->isRegisteredNotifieeIs(registered);
        a->notifierIs(port);
    }
    Port::Ptr port = Qor::make<Port>("ethernet1");
    Port::Ptr other = Qor::make<Port>("ethernet2");
    Qor::Ptr<Hearing> a = Qor::make<Hearing>();
};

TEST_F(WeakWithoutMemory, ListedOneMayEnd) {
    weak(true);
    EXPECT_EQ(withoutMemory([this] { a = nullptr; }), Outcome::askedNothing);
    EXPECT_EQ(port->notifierList().count(), 0U);
    EXPECT_FALSE(port->qorWeaklyWatched());
}

TEST_F(WeakWithoutMemory, ListedOneMayEndWhileItsNotifierIsMarked) {
    weak(true);
    port->qorMarkedForDeletionIs(true);
    EXPECT_EQ(withoutMemory([this] { a = nullptr; }), Outcome::askedNothing);
    EXPECT_EQ(port->notifierList().head(), nullptr);
    EXPECT_FALSE(port->qorWeaklyWatched());
}

TEST_F(WeakWithoutMemory, ListedOneMayBeDetachedAndGoToAnotherNotifier) {
    weak(true);
    EXPECT_EQ(withoutMemory([this] { a->notifierIs(other); }), Outcome::askedNothing);
    EXPECT_EQ(port->notifierList().count(), 0U);
    other->speedIs(1);
    EXPECT_EQ(a->speeds, 1);
    EXPECT_EQ(withoutMemory([this] { a->notifierIs(nullptr); }), Outcome::askedNothing);
    EXPECT_EQ(other->notifierList().count(), 0U);
    EXPECT_FALSE(a->qorIsListed());
    EXPECT_EQ(other->qorRefs(), 1U);
}

TEST_F(WeakWithoutMemory, UnregisteringThatIsRefusedLeavesItRegistered) {
    weak(true);
    EXPECT_EQ(withoutMemory([this] { a->isRegisteredNotifieeIs(false); }), Outcome::refused);
    EXPECT_TRUE(a->isRegisteredNotifiee());
    EXPECT_TRUE(a->qorIsListed());
    port->speedIs(1);
    EXPECT_EQ(a->speeds, 1);
    port = nullptr;
    EXPECT_EQ(a->qorNotifier(), nullptr);
    EXPECT_EQ(a->ends, 1);
}

TEST_F(WeakWithoutMemory, MakingAnUnlistedOneWeakThatIsRefusedLeavesItStrong) {
    a->isRegisteredNotifieeIs(false);
    a->notifierIs(port);
    EXPECT_EQ(withoutMemory([this] { a->isWeakReferenceIs(true); }), Outcome::refused);
    EXPECT_FALSE(a->isWeakReference());
    EXPECT_EQ(port->qorRefs(), 2U);
    a = nullptr;
    EXPECT_EQ(port->qorRefs(), 1U);
}

TEST_F(WeakWithoutMemory, AttachingAnUnlistedOneThatIsRefusedLeavesItDetached) {
    a->isWeakReferenceIs(true);
    a->isRegisteredNotifieeIs(false);
    EXPECT_EQ(withoutMemory([this] { a->notifierIs(port); }), Outcome::refused);
    EXPECT_EQ(a->qorNotifier(), nullptr);
    EXPECT_FALSE(port->qorWeaklyWatched());
}

TEST_F(WeakWithoutMemory, UnlistedOneThatAnotherNotifierRefusesStaysWithItsOwn) {
    weak(false);
    EXPECT_EQ(withoutMemory([this] { a->notifierIs(other); }), Outcome::refused);
    EXPECT_EQ(a->qorNotifier(), port.ptr());
    EXPECT_FALSE(other->qorWeaklyWatched());
    port = nullptr;
    EXPECT_EQ(a->qorNotifier(), nullptr);
}

}  // namespace
