#include <tests/unit/notify/QueuingListener.h>

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>

using namespace Sample;

namespace {

class QueuedDelivery : public testing::Test {
  protected:
    QueuedDelivery() { listener->notifierIs(port); }
    void run() { manager.runReady(100); }

    Qor::ActivityManager manager;
    Port::Ptr port = Qor::make<Port>("ethernet1");
    Log log;
    QueuingListener::Ptr listener = Qor::make<QueuingListener>(log, manager);
};

TEST_F(QueuedDelivery, WaitsForTheTurn) {
    port->speedIs(1);
    EXPECT_TRUE(log.empty());
    EXPECT_EQ(listener->pendingAttribute(), 386);
    EXPECT_EQ(manager.ready(), 1U);
    run();
    EXPECT_EQ(log, (Log{"386"}));
    EXPECT_EQ(listener->pendingAttribute(), 0);
}

TEST_F(QueuedDelivery, ManyChangesOfOneAttributeAreDeliveredOnce) {
    for (Qor::U32 i = 1; i < 10; ++i) {
        port->speedIs(i);
    }
    EXPECT_EQ(manager.ready(), 1U);
    run();
    EXPECT_EQ(log, (Log{"386"}));
}

TEST_F(QueuedDelivery, ChangesOfSeveralAttributesAreDeliveredAsAll) {
    port->speedIs(1);
    port->modeIs(1);
    EXPECT_EQ(listener->pendingAttribute(), -1);
    port->speedIs(2);
    EXPECT_EQ(listener->pendingAttribute(), -1);
    run();
    EXPECT_EQ(log, (Log{"all"}));
}

TEST_F(QueuedDelivery, AllAndCollectionsStaysWhatItIs) {
    listener->pendingAttributeIs(-2);
    port->speedIs(1);
    EXPECT_EQ(listener->pendingAttribute(), -2);
    run();
    EXPECT_EQ(log, (Log{"all"}));
}

TEST_F(QueuedDelivery, OnePendingKeyIsDeliveredAsThatKey) {
    port->labelIs(7, "a");
    port->labelIs(7, "b");
    port->labelIs(7, "c");
    run();
    EXPECT_EQ(log, (Log{"label(7)"}));
}

TEST_F(QueuedDelivery, SeveralPendingKeysAreDeliveredAsTheWhole) {
    port->labelIs(7, "a");
    port->labelIs(8, "b");
    port->labelIs(7, "c");
    run();
    EXPECT_EQ(log, (Log{"label"}));
}

TEST_F(QueuedDelivery, CountingBeginsAnewAfterADelivery) {
    port->labelIs(7, "a");
    port->labelIs(8, "b");
    run();
    port->labelIs(9, "c");
    run();
    EXPECT_EQ(log, (Log{"label", "label(9)"}));
}

TEST_F(QueuedDelivery, KeyAndOtherAttributeAreBothDelivered) {
    port->labelIs(7, "a");
    port->speedIs(1);
    run();
    EXPECT_EQ(log, (Log{"all", "label(7)"}));
}

TEST_F(QueuedDelivery, PendingCountNeverPassesTwo) {
    Qor::U8 count = 0;
    for (int i = 0; i < 1000; ++i) {
        EXPECT_TRUE(listener->qorOnAttribute(260, &count));
    }
    EXPECT_EQ(count, 2);
}

TEST_F(QueuedDelivery, ChangeInTheTurnItselfIsNotPutOff) {
    listener->inDelivery = [this] {
        listener->inDelivery = nullptr;
        port->modeIs(5);
        port->labelIs(3, "x");
    };
    port->speedIs(1);
    run();
    EXPECT_EQ(log, (Log{"386", "now 258", "now label(3)"}));
    EXPECT_FALSE(manager.hasReady());
}

TEST_F(QueuedDelivery, PendingKeyIsNotLostToAnotherThatChangesInTheTurn) {
    listener->onAll = [this] { port->labelIs(8, "b"); };
    port->speedIs(1);
    port->labelIs(7, "a");
    run();
    EXPECT_EQ(log, (Log{"all", "now label(8)", "label"}));
    port->labelIs(9, "c");
    run();
    EXPECT_EQ(log.back(), "label(9)") << "counting begins anew";
}

TEST_F(QueuedDelivery, PendingKeyThatChangesAgainInTheTurnStaysOneKey) {
    listener->onAll = [this] { port->labelIs(7, "b"); };
    port->speedIs(1);
    port->labelIs(7, "a");
    run();
    EXPECT_EQ(log, (Log{"all", "now label(7)", "label(7)"}));
}

TEST_F(QueuedDelivery, KeyThatChangesInTheTurnAloneIsNotDeliveredLater) {
    listener->onAll = [this] { port->labelIs(8, "b"); };
    port->speedIs(1);
    port->modeIs(1);
    run();
    EXPECT_EQ(log, (Log{"all", "now label(8)"}));
}

TEST_F(QueuedDelivery, WithoutAnActivityNothingIsPutOff) {
    listener->activityIs(nullptr);
    port->speedIs(1);
    EXPECT_EQ(log, (Log{"now 386"}));
    EXPECT_EQ(listener->pendingAttribute(), 0);
}

TEST_F(QueuedDelivery, NewActivityDropsWhatWasPending) {
    port->speedIs(1);
    listener->activityIs(Qor::make<Qor::Activity>(manager, "other"));
    EXPECT_EQ(listener->pendingAttribute(), 0);
    run();
    EXPECT_TRUE(log.empty());
    port->speedIs(2);
    run();
    EXPECT_EQ(log, (Log{"386"}));
}

TEST_F(QueuedDelivery, KeyThatWasDroppedWithItsActivityIsNotDeliveredAfterAll) {
    port->labelIs(7, "a");
    listener->activityIs(nullptr);
    listener->activityIs(Qor::make<Qor::Activity>(manager, "other"));
    port->speedIs(1);
    run();
    EXPECT_EQ(log, (Log{"386"}));
}

TEST_F(QueuedDelivery, KeyThatWasDroppedWithItsActivityIsNotCounted) {
    port->labelIs(7, "a");
    listener->activityIs(Qor::make<Qor::Activity>(manager, "other"));
    port->labelIs(8, "b");
    run();
    EXPECT_EQ(log, (Log{"label(8)"}));
}

TEST_F(QueuedDelivery, RedispatchAsksForAnotherTurnWhileSomethingIsPending) {
    listener->redispatch(listener->actsm());
    EXPECT_FALSE(manager.hasReady());
    listener->pendingAttributeIs(258);
    listener->redispatch(nullptr);
    EXPECT_FALSE(manager.hasReady());
    listener->redispatch(listener->actsm());
    EXPECT_TRUE(manager.hasReady());
    run();
    EXPECT_EQ(log, (Log{"258"}));
}

TEST_F(QueuedDelivery, RedispatchInATurnGivesAnotherTurn) {
    listener->inDelivery = [this] {
        listener->inDelivery = nullptr;
        listener->pendingAttributeIs(258);
        listener->redispatch(listener->actsm());
    };
    port->speedIs(1);
    EXPECT_EQ(manager.runReady(100), 2U);
    EXPECT_EQ(log, (Log{"386", "258"}));
}

TEST_F(QueuedDelivery, NotifieeDestroyedWhileQueuedIsNotDelivered) {
    port->speedIs(1);
    listener = nullptr;
    EXPECT_EQ(manager.ready(), 0U);
    run();
    EXPECT_TRUE(log.empty());
    EXPECT_EQ(QueuingListener::living(), 0);
}

TEST_F(QueuedDelivery, DetachedNotifieeIsStillDelivered) {
    port->speedIs(1);
    listener->notifierIs(nullptr);
    run();
    EXPECT_EQ(log, (Log{"386"}));
}

TEST_F(QueuedDelivery, NotifierMayEndBeforeTheTurn) {
    listener->isWeakReferenceIs(true);
    port->speedIs(1);
    port = nullptr;
    EXPECT_EQ(listener->qorNotifier(), nullptr);
    run();
    EXPECT_EQ(log, (Log{"386"}));
}

// Throws from what the framework delivers to it.
struct Throwing : Port::NotifieeConst {
    explicit Throwing(Qor::ActivityManager& manager) {
        activityIs(Qor::make<Qor::Activity>(manager, "throwing"));
    }
    void onSpeed() override { EXPECT_TRUE(qorOnAttribute(386, nullptr)); }
    void onMode() override { EXPECT_TRUE(qorOnAttribute(258, nullptr)); }
    void onAttribute(Qor::AttributeId) override { throw std::runtime_error("no"); }
    void onNotification() override { throw std::runtime_error("no"); }
    void onNotificationException(Qor::AttributeId id) override {
        reported.push_back(id);
        if (reportToo) {
            throw 1;
        }
    }
    std::vector<Qor::AttributeId> reported;
    bool reportToo = false;
};

TEST_F(QueuedDelivery, ExceptionIsReportedWithTheIdOfTheAttribute) {
    auto const throwing = Qor::make<Throwing>(manager);
    throwing->notifierIs(port);
    port->speedIs(1);
    EXPECT_NO_THROW(run());
    port->speedIs(2);
    port->modeIs(2);
    EXPECT_NO_THROW(run());
    EXPECT_EQ(throwing->reported, (std::vector<Qor::AttributeId>{386, -1}));
    EXPECT_EQ(throwing->pendingAttribute(), 0);
}

TEST_F(QueuedDelivery, ExceptionOfTheReportIsContainedAndFurtherTurnsCome) {
    auto const throwing = Qor::make<Throwing>(manager);
    throwing->notifierIs(port);
    throwing->reportToo = true;
    port->speedIs(1);
    EXPECT_NO_THROW(run());
    port->speedIs(2);
    EXPECT_NO_THROW(run());
    EXPECT_EQ(throwing->reported.size(), 2U);
}

TEST_F(QueuedDelivery, ManagerMayGoFirst) {
    auto other = std::make_unique<Qor::ActivityManager>();
    auto const outliving = Qor::make<QueuingListener>(log, *other);
    outliving->notifierIs(port);
    other = nullptr;
    listener->notifierIs(nullptr);
    port->speedIs(1);
    EXPECT_EQ(outliving->actsm()->state(), Qor::ActivitySm::State::idle);
    EXPECT_TRUE(log.empty());
}

}  // namespace
