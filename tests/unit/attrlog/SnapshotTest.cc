// Snapshots between markers, and whole trees that come a second time.
#include "Peers.h"
#include "Records.h"

#include <vgw/attrlog/HwVtepOvsdb.h>
#include <vgw/attrlog/LogicalSwitch.h>
#include <vgw/attrlog/OvsdbSessionStatus.h>
#include <vgw/attrlog/PhysicalPort.h>
#include <vgw/attrlog/PhysicalSwitch.h>
#include <vgw/attrlog/Status.h>

#include <gtest/gtest.h>

namespace {

using Qor::make;
using Qor::Name;
using Qor::String8;

class Snapshot : public testing::Test {
  protected:
    static constexpr std::uint64_t first = 0x8000000000000003;

    template <class X>
    typename X::QorNboAttrLogSa::Ptr enter(Qor::Ptr<X> const& entity, std::uint64_t id = first) {
        auto const adapter = X::QorNboAttrLogSa::QorNboAttrLogSaIs(
            Qor::AdapterState::Bits(Qor::AdapterState::weakNotifier), entity, 1, peer.outPtr(),
            nullptr);
        adapter->doEntityIdIs(Qor::EntityId(id), peer.demuxer, true);
        return adapter;
    }
    void feed(std::string const& hexadecimal) {
        peer.demuxer->in()->receive(bytesOf(hexadecimal));
        peer.demuxer->serveFrames(~std::size_t{0});
    }
    std::string sent() { return hex(takeBytes(peer.out())); }

    Peer peer{Peer::Demuxer::Side::connecting};
};

TEST_F(Snapshot, RemovesWhatItDoesNotHoldAtItsEndOnly) {
    auto const sw = make<Vgw::PhysicalSwitch>(Name("s"));
    sw->portIs("a", true);
    sw->portIs("b", true);
    auto const a = enter(sw);
    feed(marker(first, 388, "00") + record(first, 388, "000000016101"));
    EXPECT_EQ(sw->ports(), 2U);
    feed(marker(first, 388, "02"));
    EXPECT_EQ(sw->ports(), 1U);
    EXPECT_TRUE(sw->port("a"));
    EXPECT_EQ(sent(), "");
    EXPECT_FALSE(peer.demuxer->hasFlowsIn());
}

TEST_F(Snapshot, ThoseOfSeveralEntitiesThatAreOpenAtOnceEndEachForItself) {
    auto const one = make<Vgw::PhysicalSwitch>(Name("one"));
    auto const other = make<Vgw::PhysicalSwitch>(Name("other"));
    for (auto const& sw : {one, other}) {
        sw->portIs("a", true);
        sw->portIs("b", true);
    }
    auto const a = enter(one);
    auto const b = enter(other, first + 2);
    for (int round = 0; round < 2; ++round) {
        feed(marker(first, 388, "00") + marker(first + 2, 388, "00"));
        feed(record(first, 388, "000000016101") + record(first + 2, 388, "000000016201"));
        feed(marker(first, 388, "02"));
        EXPECT_EQ(one->ports(), 1U);
        EXPECT_TRUE(peer.demuxer->hasFlowsIn());
        feed(marker(first + 2, 388, "02"));
        EXPECT_FALSE(peer.demuxer->hasFlowsIn());
        EXPECT_TRUE(one->port("a"));
        EXPECT_EQ(other->ports(), 1U);
        EXPECT_TRUE(other->port("b"));
    }
}

TEST_F(Snapshot, EmptyOneEmptiesTheCollection) {
    auto const port = make<Vgw::PhysicalPort>(Name("p"));
    port->vlanBindingIs(1, "x");
    port->vlanBindingIs(2, "y");
    auto const a = enter(port);
    feed(marker(first, 388, "00") + marker(first, 388, "02"));
    EXPECT_EQ(port->vlanBindings(), 0U);
    EXPECT_EQ(sent(), "");
}

TEST_F(Snapshot, EqualContentsTellNobody) {
    struct Listener : Vgw::PhysicalSwitch::NotifieeConst {
        void onPort(String8) override { ++heard; }
        int heard = 0;
    };
    auto const sw = make<Vgw::PhysicalSwitch>(Name("s"));
    sw->portIs("a", true);
    auto const listener = make<Listener>();
    listener->notifierIs(sw);
    auto const a = enter(sw);
    feed(marker(first, 388, "00") + record(first, 388, "000000016101") + marker(first, 388, "02"));
    EXPECT_EQ(listener->heard, 0);
    EXPECT_EQ(sw->ports(), 1U);
}

TEST_F(Snapshot, SecondBeginMakesNoSecondFlow) {
    auto const sw = make<Vgw::PhysicalSwitch>(Name("s"));
    auto const a = enter(sw);
    feed(marker(first, 388, "00"));
    auto* const flow = peer.demuxer->flowIn(Qor::EntityId(first));
    ASSERT_TRUE(flow);
    feed(marker(first, 389, "00"));
    EXPECT_EQ(peer.demuxer->flowIn(Qor::EntityId(first)), flow);
    EXPECT_EQ(flow->aid(), 388);
}

TEST_F(Snapshot, EndOfAnotherAttributeIsNotTakenForItsEnd) {
    auto const sw = make<Vgw::PhysicalSwitch>(Name("s"));
    auto const a = enter(sw);
    feed(marker(first, 388, "00") + marker(first, 389, "02"));
    auto* const flow = peer.demuxer->flowIn(Qor::EntityId(first));
    ASSERT_TRUE(flow);
    EXPECT_FALSE(flow->handlingTransaction());
}

TEST_F(Snapshot, AbortLeavesTheMarksUntilTheNextEnd) {
    auto const sw = make<Vgw::PhysicalSwitch>(Name("s"));
    sw->portIs("a", true);
    auto const a = enter(sw);
    feed(marker(first, 388, "00") + marker(first, 388, "01"));
    EXPECT_EQ(sw->ports(), 1U);
    feed(marker(first, 388, "02"));
    EXPECT_EQ(sw->ports(), 0U);
}

TEST_F(Snapshot, CollectionThatGrowsDuringTheSweepIsWalkedAgain) {
    // What the first handler enters, marked as if the peer's snapshot had met it, stands in front
    // of the member that the sweep has come to.
    struct Grower : Vgw::PhysicalPort::Notifiee {
        void onVlanBinding(Qor::U16) override {
            if (grown++ != 0) return;
            auto const port = notifier();
            port->vlanBindingIs(0, "late");
            port->vlanBindingIs(7, "new");
            Vgw::PhysicalPort::VlanBindingAttr::map(*port).member(0)->qorMarkedForDeletionIs(true);
        }
        int grown = 0;
    };
    auto const port = make<Vgw::PhysicalPort>(Name("p"));
    for (Qor::U16 key = 1; key < 6; key += 2) port->vlanBindingIs(key, "old");
    auto const a = enter(port);
    auto const grower = make<Grower>();
    feed(marker(first, 388, "00"));
    grower->notifierIs(port);
    feed(marker(first, 388, "02"));
    EXPECT_EQ(port->vlanBindings(), 1U);
    EXPECT_EQ(port->vlanBinding(7), "new");
}

TEST_F(Snapshot, ChildrenThatAreNotAnnouncedAgainGo) {
    auto const ovsdb = make<Vgw::HwVtepOvsdb>(Name("db"));
    auto const kept = ovsdb->logicalSwitchIs(Name("a"));
    auto const gone = ovsdb->logicalSwitchIs(Name("b"));
    auto const a = enter(ovsdb);
    feed(record(first, 263, "00000001618000000000000005", 1, 151) +
         record(first, 263, "00000001628000000000000007", 1, 151));
    feed(marker(first, 263, "00"));
    EXPECT_TRUE(peer.adapter(kept)->has(Qor::AdapterState::remountPending));
    feed(record(first, 263, "00000001618000000000000005", 1, 151));
    EXPECT_FALSE(peer.adapter(kept)->has(Qor::AdapterState::remountPending));
    feed(marker(first, 263, "02"));
    EXPECT_EQ(ovsdb->logicalSwitch(Name("a")), kept);
    EXPECT_FALSE(ovsdb->logicalSwitch(Name("b")));
    EXPECT_FALSE(gone->parent());
    EXPECT_EQ(sent(), "");
}

TEST_F(Snapshot, ChildWithoutAnAdapterGoesAtTheEnd) {
    auto const ovsdb = make<Vgw::HwVtepOvsdb>(Name("db"));
    ovsdb->logicalSwitchIs(Name("stale"));
    auto const a = enter(ovsdb);
    feed(marker(first, 263, "00") + marker(first, 263, "02"));
    EXPECT_EQ(ovsdb->logicalSwitchs(), 0U);
    EXPECT_EQ(sent(), "");
}

TEST_F(Snapshot, WhatIsHalfReceivedOfWhatWasTakenOutIsDroppedAsFramesGoOn) {
    auto const ovsdb = make<Vgw::HwVtepOvsdb>(Name("db"));
    auto const a = enter(ovsdb);
    feed(record(first, 263, "00000001618000000000000005", 1, 151) +
         record(first, 263, "00000001628000000000000007", 1, 151));
    auto const one = ovsdb->logicalSwitch(Name("a"));
    auto const other = ovsdb->logicalSwitch(Name("b"));
    constexpr Qor::EntityId oneId{first + 2};
    constexpr Qor::EntityId otherId{first + 4};
    feed(chunk(first + 2, 387, hexOf("ab")) + chunk(first + 4, 387, hexOf("ab")));
    ovsdb->logicalSwitchDel(Name("a"));
    EXPECT_FALSE(peer.demuxer->flowIn(oneId));
    EXPECT_TRUE(peer.demuxer->flowIn(otherId));
    ovsdb->logicalSwitchDel(Name("b"));
    feed(record(first, 999, "00") + record(first, 999, "00"));
    EXPECT_FALSE(peer.demuxer->hasFlowsIn());
    EXPECT_EQ(peer.demuxer->openText(), 0U);
}

TEST_F(Snapshot, SingleChildIsOnlyMarked) {
    auto const status = make<Vgw::Status>(Name("st"));
    auto const a = enter(status);
    feed(record(first, 258, "00000001738000000000000005", 1, 151) + marker(first, 258, "00"));
    auto const child = status->ovsdbSessionStatus();
    EXPECT_TRUE(peer.adapter(child)->has(Qor::AdapterState::remountPending));
    feed(marker(first, 258, "02"));
    EXPECT_EQ(status->ovsdbSessionStatus(), child);
}

TEST_F(Snapshot, UnknownMarkerEndsTheConnection) {
    feed(marker(first, 388, "03"));
    EXPECT_EQ(peer.failure, "a transaction marker of the unknown type 3");
}

TEST_F(Snapshot, OfACollectionIsBeginRecordsEnd) {
    auto const sw = make<Vgw::PhysicalSwitch>(Name("s"));
    sw->portIs("a", true);
    auto const a = peer.attach(sw);
    a->doThis();
    auto const bytes = sent();
    std::string const wanted = marker(3, 388, "00") + record(3, 388, "000000016101") +
                               marker(3, 388, "02") + marker(3, 389, "00") + marker(3, 389, "02");
    EXPECT_NE(bytes.find(wanted), std::string::npos) << bytes;
    EXPECT_FALSE(a->flowOut());
}

TEST(Remount, CopyIsBroughtUpToDateAndWhatStaysKeepsItsIdentity) {
    auto const original = Vgw::statusFactory(Name("status"));
    auto const copy = Vgw::statusFactory(Name("status"));
    auto const ovsdb = original->ovsdbIs(Name("db"));
    ovsdb->logicalSwitchIs(Name("a"))->descIs("a");
    ovsdb->logicalSwitchIs(Name("b"));
    ovsdb->physicalSwitchIs("leaf", ovsdb->physicalSwitchRawIs(Name("s")));
    {
        Peers peers;
        peers.mount(original, copy);
    }
    auto const mirror = copy->ovsdb();
    auto const kept = mirror->logicalSwitch(Name("a"));
    ASSERT_TRUE(kept);
    ovsdb->logicalSwitchDel(Name("b"));
    ovsdb->logicalSwitchIs(Name("c"))->tunnelKeyIs(7);
    ovsdb->physicalSwitchDel("leaf");
    ovsdb->logicalSwitch(Name("a"))->descIs("changed");
    Peers peers;
    peers.mount(original, copy);
    EXPECT_EQ(peers.reader.failure, String8());
    EXPECT_EQ(copy->ovsdb(), mirror);
    EXPECT_EQ(mirror->logicalSwitch(Name("a")), kept);
    EXPECT_EQ(kept->desc(), "changed");
    EXPECT_FALSE(mirror->logicalSwitch(Name("b")));
    EXPECT_EQ(mirror->logicalSwitch(Name("c"))->tunnelKey(), 7U);
    EXPECT_EQ(mirror->physicalSwitchs(), 0U);
}

TEST(Remount, OnTheSameConnectionRepeatsTheWholeState) {
    auto const original = make<Vgw::HwVtepOvsdb>(Name("db"));
    auto const copy = make<Vgw::HwVtepOvsdb>(Name("db"));
    original->logicalSwitchIs(Name("a"))->descIs("a");
    Peers peers;
    peers.mount(original, copy);
    auto const kept = copy->logicalSwitch(Name("a"));
    peers.source.adapter(original)->doThis();
    peers.settle();
    EXPECT_EQ(peers.reader.failure, String8());
    EXPECT_EQ(copy->logicalSwitch(Name("a")), kept);
    original->logicalSwitch(Name("a"))->descIs("b");
    peers.settle();
    EXPECT_EQ(kept->desc(), "b");
}

}  // namespace
