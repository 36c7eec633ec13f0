// Adapters of classes that derive from others with attributes of their own.
#include "Peers.h"

#include <levels/attrlog/Owner.h>
#include <levels/attrlog/Target.h>
#include <levels/attrlog/Upper.h>

#include <gtest/gtest.h>

namespace {

using Qor::make;
using Qor::Name;

// Lets go of the adapter when the reference goes.
struct Ender : Levels::Upper::Notifiee {
    void onLink(Qor::U32 key) override {
        if (notifier()->link(key)) return;
        gone = demuxer->reactorDel(id);
    }

    Qor::NboAttrLog::Demuxer* demuxer = nullptr;
    Qor::EntityId id;
    Qor::Ptr<Qor::Entity::QorNboAttrLogSa> gone;
};

TEST(Levels, FlowThatEndsInTheLowerLevelIsLeftInTheUpperOne) {
    Peer peer(Peer::Demuxer::Side::connecting);
    auto const upper = make<Levels::Upper>(Name("u"));
    auto const adapter =
        peer.attach(upper, Qor::AdapterState::weakNotifier | Qor::AdapterState::isCopy);
    auto const owner = make<Levels::Owner>(Name("o"));
    upper->linkIs(1, owner->targetIs(Name("t")));
    ASSERT_TRUE(adapter->flowOut()) << "the reference waits for its target";
    auto const ender = make<Ender>();
    ender->demuxer = peer.demuxer.ptr();
    ender->id = adapter->entityId();
    ender->notifierIs(upper);
    // What is owed in vain goes in the flow's next turn, and a handler hears of it.
    owner->targetDel(Name("t"));
    peer.demuxer->serveFlows(~Qor::U64{0});
    EXPECT_EQ(ender->gone, adapter);
    EXPECT_EQ(upper->links(), 0U);
    EXPECT_EQ(peer.demuxer->flows(), 0U);
    EXPECT_EQ(peer.failure, "");
    takeBytes(peer.out());
    upper->valueIs(7);
    peer.demuxer->serveFlows(~Qor::U64{0});
    EXPECT_EQ(takeBytes(peer.out()), "");
}

}  // namespace
