// Both ends make and remove children of the same collection at once: a removal takes what its
// author had heard of and nothing else, and what nobody else speaks of stays.
#include "Peers.h"

#include <qor/attrlog/dir/DirAdapter.h>
#include <vgw/attrlog/HwVtepOvsdb.h>
#include <vgw/attrlog/LogicalSwitch.h>
#include <vgw/attrlog/PhysicalPort.h>
#include <vgw/attrlog/PhysicalSwitch.h>
#include <vgw/attrlog/Status.h>

#include <gtest/gtest.h>

#include <string>

namespace {

using Qor::Dir;
using Qor::Entity;
using Qor::make;
using Qor::Name;
using Vgw::HwVtepOvsdb;
using Vgw::LogicalSwitch;

class ChildCrossing : public testing::Test {
  protected:
    ChildCrossing() { peers.mount(original, copy); }

    // At rest: the same children with the same values, and the same number of adapters.
    void needEqual() {
        peers.settle();
        EXPECT_EQ(peers.source.failure + peers.reader.failure, Qor::String8());
        EXPECT_EQ(peers.source.demuxer->adapters(), peers.reader.demuxer->adapters());
        EXPECT_EQ(peers.source.demuxer->flows() + peers.reader.demuxer->flows(), 0U);
        EXPECT_EQ(original->logicalSwitchs(), copy->logicalSwitchs());
        for (auto at = original->logicalSwitchIterator(); at; ++at) {
            auto const there = copy->logicalSwitch(at.key());
            ASSERT_TRUE(there) << at.key().view();
            EXPECT_EQ(there->tunnelKey(), at.value()->tunnelKey());
            EXPECT_EQ(there->desc(), at.value()->desc());
        }
    }

    Peers peers;
    Qor::Ptr<HwVtepOvsdb> original = make<HwVtepOvsdb>(Name("db"));
    Qor::Ptr<HwVtepOvsdb> copy = make<HwVtepOvsdb>(Name("db"));
};

TEST_F(ChildCrossing, ChildStaysTheSameWhileTheOriginalRemovesASibling) {
    original->logicalSwitchIs(Name("old"));
    peers.settle();
    original->logicalSwitchDel(Name("old"));
    auto const made = copy->logicalSwitchIs(Name("new"));
    made->tunnelKeyIs(1);
    carry(peers.reader, peers.source);
    made->tunnelKeyIs(2);
    made->descIs("written behind the announcement");
    needEqual();
    EXPECT_EQ(copy->logicalSwitch(Name("new")), made);
    EXPECT_EQ(made->tunnelKey(), 2U);
    EXPECT_EQ(original->logicalSwitch(Name("new"))->desc(), made->desc());
    EXPECT_FALSE(original->logicalSwitch(Name("old")));
}

TEST_F(ChildCrossing, ChildThatIsMadeAnewStaysWhereARemovalMeantTheOlderOne) {
    original->logicalSwitchIs(Name("a"));
    peers.settle();
    original->logicalSwitchDel(Name("a"));
    copy->logicalSwitchDel(Name("a"));
    auto const made = copy->logicalSwitchIs(Name("a"));
    made->tunnelKeyIs(5);
    needEqual();
    EXPECT_EQ(copy->logicalSwitch(Name("a")), made);
    ASSERT_TRUE(original->logicalSwitch(Name("a")));
    EXPECT_EQ(original->logicalSwitch(Name("a"))->tunnelKey(), 5U);
}

TEST_F(ChildCrossing, RemovalTakesTheChildThatItsAuthorHadHeardOf) {
    copy->logicalSwitchIs(Name("a"));
    peers.settle();
    original->logicalSwitchDel(Name("a"));
    needEqual();
    EXPECT_FALSE(copy->logicalSwitch(Name("a")));
}

TEST_F(ChildCrossing, ChildThatMadeRoomForOneThatHasGoneIsAtNeitherEnd) {
    copy->logicalSwitchIs(Name("a"))->tunnelKeyIs(1);
    original->logicalSwitchIs(Name("a"))->tunnelKeyIs(2);
    carry(peers.source, peers.reader);
    original->logicalSwitchDel(Name("a"));
    needEqual();
    EXPECT_FALSE(original->logicalSwitch(Name("a")));
}

TEST_F(ChildCrossing, TakingBackLeavesTheOriginalsChild) {
    copy->logicalSwitchIs(Name("a"))->tunnelKeyIs(1);
    original->logicalSwitchIs(Name("a"))->tunnelKeyIs(2);
    carry(peers.source, peers.reader);
    carry(peers.reader, peers.source);
    needEqual();
    ASSERT_TRUE(original->logicalSwitch(Name("a")));
    EXPECT_EQ(original->logicalSwitch(Name("a"))->tunnelKey(), 2U);
}

TEST_F(ChildCrossing, ChildThatIsMadeDuringTheMountStays) {
    Peers again;
    again.reader.copy = copy;
    copy->logicalSwitchIs(Name("stale"));
    for (int i = 0; i < 200; ++i) original->logicalSwitchIs(Name(std::to_string(i).c_str()));
    again.source.send(original);
    carry(again.source, again.reader, 4000);
    ASSERT_TRUE(copy->logicalSwitch(Name("stale"))) << "the snapshot has ended too early";
    auto const made = copy->logicalSwitchIs(Name("new"));
    made->tunnelKeyIs(1);
    again.settle();
    EXPECT_EQ(copy->logicalSwitch(Name("new")), made);
    ASSERT_TRUE(original->logicalSwitch(Name("new")));
    EXPECT_EQ(original->logicalSwitch(Name("new"))->tunnelKey(), 1U);
    EXPECT_FALSE(copy->logicalSwitch(Name("stale")));
}

TEST_F(ChildCrossing, ReaderGetsNoReceipts) {
    peers.reader.flags = Qor::AdapterState::Bits(Qor::AdapterState::readOnlyLocal);
    auto const entity = make<HwVtepOvsdb>(Name("read"));
    peers.reader.copy = make<HwVtepOvsdb>(Name("read"));
    auto const flags = Qor::AdapterState::weakNotifier | Qor::AdapterState::readOnlyRemote;
    peers.source.attach(entity, flags)->doSerializeOrphan();
    copy->logicalSwitchIs(Name("a"));
    peers.settle();
    entity->logicalSwitchIs(Name("b"));
    peers.settle();
    entity->logicalSwitchDel(Name("b"));
    EXPECT_EQ(takeBytes(peers.source.out())[4], 0);
}

// A reference that a copy owes, and whose target the original takes away.
TEST_F(ChildCrossing, NoFlowStaysOwedForATargetThatHasGone) {
    Peers again;
    for (int i = 0; i < 200; ++i) original->logicalSwitchIs(Name(std::to_string(i).c_str()));
    auto const stale = make<HwVtepOvsdb>(Name("db"));
    again.reader.copy = stale;
    auto const target = stale->physicalSwitchRawIs(Name("stale"));
    again.source.send(original);
    carry(again.source, again.reader, 4000);
    stale->physicalSwitchIs("owed", target);
    again.settle();
    EXPECT_FALSE(stale->physicalSwitchRaw(Name("stale")));
    EXPECT_FALSE(stale->physicalSwitch("owed"));
    EXPECT_EQ(again.reader.demuxer->flows(), 0U);
}

TEST_F(ChildCrossing, ConnectionMayEndWhenAnOwedReferenceGoes) {
    struct Ender : HwVtepOvsdb::Notifiee {
        void onPhysicalSwitch(Qor::String8) override {
            if (!notifier()->physicalSwitch("owed")) demuxer->close();
        }
        Peer::Demuxer::Ptr demuxer;
    };
    Peers again;
    for (int i = 0; i < 200; ++i) original->logicalSwitchIs(Name(std::to_string(i).c_str()));
    auto const stale = make<HwVtepOvsdb>(Name("db"));
    again.reader.copy = stale;
    auto const target = stale->physicalSwitchRawIs(Name("stale"));
    again.source.send(original);
    carry(again.source, again.reader, 4000);
    stale->physicalSwitchIs("owed", target);
    auto const ender = make<Ender>();
    ender->demuxer = again.reader.demuxer;
    ender->notifierIs(stale);
    again.settle();
    EXPECT_EQ(again.reader.demuxer->adapters(), 0U);
    EXPECT_FALSE(stale->physicalSwitch("owed"));
}

// What the original writes below an entity while the copy that made it still sends its state.
TEST_F(ChildCrossing, KeyOfTheOriginalsOutlivesTheSnapshotOfACopy) {
    auto const port = copy->physicalPortIs(Name("p"));
    peers.settle();
    auto const here = original->physicalPort(Name("p"));
    peers.reader.adapter(port)->doThis();
    here->vlanBindingIs(1, "the original's");
    here->faultIs("too", true);
    needEqual();
    EXPECT_EQ(here->vlanBinding(1), "the original's");
    EXPECT_EQ(port->vlanBinding(1), "the original's");
    EXPECT_TRUE(here->fault("too"));
    EXPECT_TRUE(port->fault("too"));
}

TEST_F(ChildCrossing, KeyThatACopyOwesOutlivesTheSnapshotOfTheOriginal) {
    original->physicalPortIs(Name("p"));
    peers.settle();
    auto const there = copy->physicalPort(Name("p"));
    peers.source.adapter(original->physicalPort(Name("p")))->doThis();
    peers.reader.out().hasLiveBufferIs(false);
    there->faultIs("owed", true);
    peers.reader.out().hasLiveBufferIs(true);
    ASSERT_EQ(peers.reader.demuxer->flows(), 1U);
    carry(peers.source, peers.reader);
    EXPECT_TRUE(there->fault("owed"));
    needEqual();
    EXPECT_TRUE(original->physicalPort(Name("p"))->fault("owed"));
}

TEST_F(ChildCrossing, WhatACopyWritesToARowThatASnapshotHoldsUpGivesWayToTheOriginals) {
    auto const here = original->logicalSwitchIs(Name("a"));
    here->tunnelKeyIs(1);
    peers.settle();
    auto const there = copy->logicalSwitch(Name("a"));
    peers.source.adapter(original)->doThis();
    while (!peers.reader.adapter(there)->isHeldUp()) {
        ASSERT_EQ(carry(peers.source, peers.reader, 1), 1U);
    }
    there->tunnelKeyIs(2);
    EXPECT_EQ(peers.reader.demuxer->flows(), 0U);
    needEqual();
    EXPECT_EQ(there->tunnelKey(), 1U);
    EXPECT_EQ(copy->logicalSwitch(Name("a")), there);
}

class EntryCrossing : public testing::Test {
  protected:
    EntryCrossing() {
        for (char const* const key : {"a", "b"}) original->entryIs(Name(key), row(1));
        peers.mount(original, copy);
    }
    static Qor::Ptr<LogicalSwitch> row(Qor::U32 tunnelKey) {
        auto const made = make<LogicalSwitch>(Name("row"));
        made->tunnelKeyIs(tunnelKey);
        return made;
    }
    static Qor::U32 keyAt(Dir const& dir, char const* key) {
        auto const entity = dir.entry(Name(key));
        return entity ? static_cast<LogicalSwitch const&>(*entity).tunnelKey() : 0;
    }
    void needEqual() {
        peers.settle();
        EXPECT_EQ(peers.source.demuxer->adapters(), peers.reader.demuxer->adapters());
        EXPECT_EQ(original->entrys(), copy->entrys());
        for (auto at = original->entryIteratorConst(); at; ++at) {
            EXPECT_EQ(keyAt(*original, at.key().charPtr()), keyAt(*copy, at.key().charPtr()));
        }
    }

    Peers peers;
    Dir::Ptr original = make<Dir>(Name("d"));
    Dir::Ptr copy = make<Dir>(Name("d"));
};

TEST_F(EntryCrossing, EntryStaysTheSameWhileTheOriginalReplacesASibling) {
    original->entryIs(Name("a"), row(2));
    original->entryDel(Name("b"));
    auto const made = row(3);
    copy->entryIs(Name("c"), made);
    carry(peers.reader, peers.source);
    made->tunnelKeyIs(4);
    needEqual();
    EXPECT_EQ(copy->entry(Name("c")).ptr(), made.ptr());
    EXPECT_EQ(keyAt(*original, "c"), 4U);
    EXPECT_EQ(keyAt(*copy, "a"), 2U);
}

TEST_F(EntryCrossing, ReplacementOfACopysIsNotTakenByARemovalOfTheOlderEntry) {
    original->entryDel(Name("a"));
    auto const made = row(3);
    copy->entryIs(Name("a"), made);
    needEqual();
    EXPECT_EQ(copy->entry(Name("a")).ptr(), made.ptr());
    EXPECT_EQ(keyAt(*original, "a"), 3U);
}

TEST_F(EntryCrossing, StateOfAnEntryDoesNotBringBackWhatTheCopyHasReplaced) {
    original->entryStateIs(Name("a"), Dir::EntryState::stale);
    copy->entryIs(Name("a"), row(3));
    needEqual();
    EXPECT_EQ(keyAt(*copy, "a"), 3U);
    original->entryStateIs(Name("b"), Dir::EntryState::stale);
    copy->entryDel(Name("b"));
    needEqual();
    EXPECT_FALSE(copy->entry(Name("b")));
    EXPECT_FALSE(original->entry(Name("b")));
}

TEST_F(EntryCrossing, StateOfAnEntryLeavesItsIdentityWhileASiblingGoes) {
    auto const there = copy->entry(Name("b"));
    original->entryDel(Name("a"));
    original->entryStateIs(Name("b"), Dir::EntryState::stale);
    needEqual();
    EXPECT_EQ(copy->entry(Name("b")), there);
    EXPECT_EQ(copy->entryState(Name("b")), Dir::EntryState::stale);
}

TEST_F(EntryCrossing, EntityThatIsPutBackComesWhole) {
    auto const held = original->entryDel(Name("a"));
    original->entryIs(Name("a"), held);
    needEqual();
    EXPECT_EQ(keyAt(*copy, "a"), 1U);
    original->entryDel(Name("a"));
    original->entryIs(Name("elsewhere"), held);
    needEqual();
    EXPECT_EQ(keyAt(*copy, "elsewhere"), 1U);
}

TEST_F(EntryCrossing, EntryThatMadeRoomForOneThatHasGoneIsAtNeitherEnd) {
    copy->entryIs(Name("c"), row(3));
    original->entryIs(Name("c"), row(4));
    carry(peers.source, peers.reader);
    original->entryDel(Name("c"));
    needEqual();
    EXPECT_FALSE(original->entry(Name("c")));
}

}  // namespace
