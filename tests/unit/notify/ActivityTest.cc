#include <tests/unit/notify/QueuingListener.h>

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>

using namespace Sample;
using State = Qor::ActivitySm::State;

namespace {

// Notes its turns.
struct Client : Qor::PtrInterface::NotifieeConst {
    Client(Qor::ActivityManager& manager, Log& turnLog, char const* clientName)
        : log(&turnLog), label(clientName) {
        activityIs(Qor::make<Qor::Activity>(manager, clientName));
    }
    void handleNotification(Qor::ActivityConfig* config) override {
        log->push_back(text(config->name()));
        if (auto const work = inTurn) {
            work();
        }
    }
    void handleNotificationException() override { log->push_back(label + "!"); }
    Log* log;
    std::string label;
    std::function<void()> inTurn;
};

class Activity : public testing::Test {
  protected:
    Qor::Ptr<Client> client(char const* name) { return Qor::make<Client>(*manager, log, name); }
    std::size_t run(std::size_t budget = 100) { return manager->runReady(budget); }

    std::unique_ptr<Qor::ActivityManager> manager = std::make_unique<Qor::ActivityManager>();
    Log log;
};

TEST_F(Activity, NothingRunsByItself) {
    auto const a = client("a");
    EXPECT_FALSE(manager->hasReady());
    EXPECT_EQ(run(), 0U);
    a->actsm()->schedule();
    EXPECT_EQ(a->actsm()->state(), State::ready);
    EXPECT_TRUE(log.empty());
    EXPECT_EQ(manager->ready(), 1U);
}

TEST_F(Activity, EachGetsOneTurnInTheOrderOfTheirComing) {
    auto const a = client("a");
    auto const b = client("b");
    auto const c = client("c");
    for (auto const& each : {c, a, b}) {
        each->actsm()->schedule();
        each->actsm()->schedule();
    }
    EXPECT_EQ(manager->ready(), 3U);
    EXPECT_EQ(run(), 3U);
    EXPECT_EQ(log, (Log{"c", "a", "b"}));
    EXPECT_FALSE(manager->hasReady());
    EXPECT_EQ(a->actsm()->state(), State::idle);
}

TEST_F(Activity, BudgetIsKept) {
    std::vector<Qor::Ptr<Client>> all;
    for (char const* name : {"a", "b", "c"}) {
        all.push_back(client(name));
        all.back()->actsm()->schedule();
    }
    EXPECT_EQ(run(0), 0U);
    EXPECT_EQ(run(2), 2U);
    EXPECT_EQ(log, (Log{"a", "b"}));
    EXPECT_EQ(manager->ready(), 1U);
    EXPECT_EQ(run(2), 1U);
    EXPECT_EQ(log, (Log{"a", "b", "c"}));
}

TEST_F(Activity, ScheduledInItsOwnTurnGoesToTheEnd) {
    auto const a = client("a");
    auto const b = client("b");
    a->inTurn = [&] {
        EXPECT_EQ(a->actsm()->state(), State::running);
        if (log.size() < 3) {
            a->actsm()->schedule();
            a->actsm()->schedule();
        }
    };
    a->actsm()->schedule();
    b->actsm()->schedule();
    EXPECT_EQ(run(), 3U);
    EXPECT_EQ(log, (Log{"a", "b", "a"}));
}

TEST_F(Activity, OneThatAlwaysAsksForMoreIsHeldByTheBudget) {
    auto const a = client("a");
    a->inTurn = [&] { a->actsm()->schedule(); };
    a->actsm()->schedule();
    EXPECT_EQ(run(7), 7U);
    EXPECT_EQ(log.size(), 7U);
    EXPECT_TRUE(manager->hasReady());
}

TEST_F(Activity, DestroyedWhileItWaitsGetsNoTurn) {
    auto const a = client("a");
    auto b = client("b");
    auto const c = client("c");
    for (auto const& each : {a, b, c}) {
        each->actsm()->schedule();
    }
    b = nullptr;
    EXPECT_EQ(manager->ready(), 2U);
    EXPECT_EQ(run(), 2U);
    EXPECT_EQ(log, (Log{"a", "c"}));
}

TEST_F(Activity, LastInTheQueueMayBeDestroyedAndOthersCome) {
    auto const a = client("a");
    auto b = client("b");
    a->actsm()->schedule();
    b->actsm()->schedule();
    b = nullptr;
    auto const c = client("c");
    c->actsm()->schedule();
    EXPECT_EQ(run(), 2U);
    EXPECT_EQ(log, (Log{"a", "c"}));
}

TEST_F(Activity, OthersMayBeDestroyedInATurn) {
    auto const a = client("a");
    auto b = client("b");
    auto const c = client("c");
    for (auto const& each : {a, b, c}) {
        each->actsm()->schedule();
    }
    a->inTurn = [&] { b = nullptr; };
    EXPECT_EQ(run(), 2U);
    EXPECT_EQ(log, (Log{"a", "c"}));
}

TEST_F(Activity, ItsNotifieeMayGoInItsTurn) {
    auto a = client("a");
    a->actsm()->schedule();
    a->inTurn = [&] { a = nullptr; };
    EXPECT_EQ(run(), 1U);
    EXPECT_FALSE(a);
    EXPECT_EQ(run(), 0U);
}

TEST_F(Activity, TakenAwayWhileItWaitsGetsNoTurn) {
    auto const a = client("a");
    Qor::Activity::Ptr const held = a->activityPtr();
    held->sm().schedule();
    a->activityIs(nullptr);
    EXPECT_EQ(a->actsm(), nullptr);
    run();
    EXPECT_TRUE(log.empty());
    EXPECT_EQ(held->sm().state(), State::idle);
}

TEST_F(Activity, OutlivesItsManagerAndGetsNoTurn) {
    auto const idle = client("idle");
    auto const waiting = client("waiting");
    waiting->actsm()->schedule();
    manager = nullptr;
    EXPECT_EQ(waiting->actsm()->state(), State::idle);
    idle->actsm()->schedule();
    waiting->actsm()->schedule();
    EXPECT_EQ(idle->actsm()->state(), State::idle);
    EXPECT_TRUE(log.empty());
}

TEST_F(Activity, GoesBeforeOrAfterItsManagerInAnyOrder) {
    std::vector<Qor::Ptr<Client>> all;
    for (int i = 0; i < 6; ++i) {
        all.push_back(client("x"));
        if (i % 2 == 0) {
            all.back()->actsm()->schedule();
        }
    }
    all[0] = nullptr;
    all[3] = nullptr;
    all[5] = nullptr;
    EXPECT_EQ(manager->ready(), 2U);
    manager = nullptr;
    all.clear();
}

TEST_F(Activity, ExceptionInATurnIsContainedAndReported) {
    auto const a = client("a");
    auto const b = client("b");
    a->inTurn = [] { throw std::runtime_error("no"); };
    a->actsm()->schedule();
    b->actsm()->schedule();
    EXPECT_NO_THROW(EXPECT_EQ(run(), 2U));
    EXPECT_EQ(log, (Log{"a", "a!", "b"}));
    EXPECT_EQ(a->actsm()->state(), State::idle);
}

TEST_F(Activity, GetsFurtherTurnsAfterAnException) {
    auto const a = client("a");
    a->inTurn = [&] {
        if (log.size() == 1) {
            a->actsm()->schedule();
            throw 1;
        }
    };
    a->actsm()->schedule();
    EXPECT_EQ(run(), 2U);
    EXPECT_EQ(log, (Log{"a", "a!", "a"}));
    a->actsm()->schedule();
    EXPECT_EQ(run(), 1U);
}

}  // namespace
