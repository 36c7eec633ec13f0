#include <tests/unit/notify/TestListeners.h>

#include <qor/notify/SnapshotIterator.h>

#include <gtest/gtest.h>

using namespace Sample;

namespace {

class Dispatch : public testing::Test {
  protected:
    Port::Ptr port = Qor::make<Port>("ethernet1");
    Log log;

    PortListener::Ptr listener(std::string name) {
        return listen<PortListener>(port, log, std::move(name));
    }
};

TEST_F(Dispatch, EntityWithoutNotifieesTellsNobody) {
    port->speedIs(10);
    EXPECT_EQ(port->speed(), 10U);
    EXPECT_TRUE(log.empty());
}

TEST_F(Dispatch, EachNotifieeIsToldInTheOrderOfAttachment) {
    auto const a = listener("a");
    auto const b = listener("b");
    auto const c = listener("c");
    port->speedIs(10);
    EXPECT_EQ(log, (Log{"a:speed", "b:speed", "c:speed"}));
}

TEST_F(Dispatch, ValueIsStoredBeforeItIsTold) {
    auto const a = listener("a");
    Qor::U32 seen = 0;
    a->react = [&](std::string const&) { seen = port->speed(); };
    port->speedIs(40);
    EXPECT_EQ(seen, 40U);
}

TEST_F(Dispatch, EqualValueTellsNobody) {
    auto const a = listener("a");
    port->speedIs(10);
    port->speedIs(10);
    EXPECT_EQ(log, (Log{"a:speed"}));
}

TEST_F(Dispatch, StreamAdapterAttachedAfterTwoReadersIsCalledFirst) {
    auto const a = listener("a");
    auto const b = listener("b");
    auto const adapter = Qor::make<PortListener>(log, "adapter");
    adapter->adapter = true;
    adapter->notifierIs(port);
    port->speedIs(10);
    EXPECT_EQ(log, (Log{"adapter:speed", "a:speed", "b:speed"}));
}

TEST_F(Dispatch, LaterStreamAdapterComesBeforeTheEarlier) {
    auto const a = listener("a");
    std::vector<PortListener::Ptr> adapters;
    for (char const* name : {"s1", "s2"}) {
        adapters.push_back(Qor::make<PortListener>(log, name));
        adapters.back()->adapter = true;
        adapters.back()->notifierIs(port);
    }
    auto const b = listener("b");
    port->speedIs(10);
    EXPECT_EQ(log, (Log{"s2:speed", "s1:speed", "a:speed", "b:speed"}));
}

TEST_F(Dispatch, AdapterOnAnEmptyListIsFollowedByReaders) {
    auto const adapter = Qor::make<PortListener>(log, "s");
    adapter->adapter = true;
    adapter->notifierIs(port);
    auto const a = listener("a");
    port->speedIs(10);
    EXPECT_EQ(log, (Log{"s:speed", "a:speed"}));
}

TEST_F(Dispatch, AttributeOfTheRootTellsAll) {
    auto const row = listen<RowListener>(port, log, "row");
    auto const a = listener("a");
    port->modeIs(3);
    EXPECT_EQ(log, (Log{"row:mode", "a:mode"}));
}

TEST_F(Dispatch, AttributeOfADerivedClassPassesOverNotifieesOfTheRoot) {
    auto const row = listen<RowListener>(port, log, "row");
    auto const a = listener("a");
    port->speedIs(3);
    EXPECT_EQ(log, (Log{"a:speed"}));
}

TEST_F(Dispatch, KeyIsToldWithEachChange) {
    auto const row = listen<RowListener>(port, log, "row");
    port->markIs("target", true);
    port->labelIs(7, "seven");
    port->labelDel(7);
    EXPECT_EQ(log, (Log{"row:mark(target)", "row:label(7)", "row:label(7)"}));
}

TEST_F(Dispatch, AnyNumberOfNotifieesIsToldInOrder) {
    for (std::size_t const many : {8U, 9U, 16U, 17U, 100U}) {
        std::vector<PortListener::Ptr> all;
        Log expected;
        for (std::size_t i = 0; i < many; ++i) {
            all.push_back(listener(std::to_string(i)));
            expected.push_back(std::to_string(i) + ":speed");
        }
        log.clear();
        port->speedIs(port->speed() + 1);
        EXPECT_EQ(log, expected);
    }
}

// Notes when it is asked what it will read, in the log of what is heard.
class AskedListener : public PortListener {
  public:
    AskedListener(Log& log, std::string name) : PortListener(log, name), log_(log), name_(name) {}
    void qorWillHear(bool hasCome) const override {
        log_.push_back(name_ + (hasCome ? ":further" : ":first"));
    }

  private:
    Log& log_;
    std::string const name_;
};

TEST_F(Dispatch, MoreThanSixteenAreAskedTwiceWhatTheyWillReadBeforeTheFirstIsTold) {
    for (std::size_t const many : {16U, 17U}) {
        std::vector<Qor::Ptr<AskedListener>> all;
        for (std::size_t i = 0; i < many; ++i)
            all.push_back(listen<AskedListener>(port, log, std::to_string(i)));
        Log expected;
        for (char const* const what : {":first", ":further", ":speed"}) {
            if (many == 16 && std::string(what) != ":speed") continue;
            for (std::size_t i = 0; i < many; ++i) expected.push_back(std::to_string(i) + what);
        }
        log.clear();
        port->speedIs(port->speed() + 1);
        EXPECT_EQ(log, expected);
    }
}

TEST_F(Dispatch, NondestructingIsToldOnceAChange) {
    auto const a = listener("a");
    port->isNondestructingIs(true);
    port->isNondestructingIs(true);
    EXPECT_TRUE(port->isNondestructing());
    port->isNondestructingIs(false);
    EXPECT_EQ(log, (Log{"a:nondestructing", "a:nondestructing"}));
}

TEST_F(Dispatch, SnapshotHoldsEachNotifieeUntilItIsServed) {
    auto const a = listener("a");
    auto const b = listener("b");
    std::vector<Qor::U32> refs;
    auto const note = [&](std::string const&) {
        refs.push_back(a->qorRefs());
        refs.push_back(b->qorRefs());
    };
    a->react = note;
    b->react = note;
    port->speedIs(1);
    EXPECT_EQ(refs, (std::vector<Qor::U32>{2, 2, 1, 2}));
    EXPECT_EQ(b->qorRefs(), 1U);
}

TEST_F(Dispatch, SetterOnAnOtherEntityTellsItsOwnNotifieesAlone) {
    auto const other = Qor::make<Port>("ethernet2");
    auto const a = listener("a");
    auto const b = listen<PortListener>(other, log, "b");
    other->speedIs(5);
    EXPECT_EQ(log, (Log{"b:speed"}));
}

// Below, at and above what it has room for in itself.
TEST(Snapshot, MeetsEachNotifieeOfAnyNumber) {
    Log log;
    for (std::size_t const count : {1, 15, 16, 17, 40, 1000}) {
        std::vector<PortListener::Ptr> listeners;
        Qor::ListRaw<Port::NotifieeConst> list;  // forgets them while they live
        for (std::size_t i = 0; i < count; ++i) {
            listeners.push_back(Qor::make<PortListener>(log, "a"));
            list.link(*listeners.back());
        }
        std::size_t met = 0;
        for (Qor::SnapshotIterator<Qor::ListRaw<Port::NotifieeConst>> at(list); at; ++at, ++met) {
            ASSERT_EQ(&*at, listeners[met].ptr());
        }
        EXPECT_EQ(met, count);
    }
}

}  // namespace
