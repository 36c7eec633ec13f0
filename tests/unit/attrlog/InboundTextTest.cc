// Texts on their way in: whole, in chunks, aborted, and too many.
#include "Inbound.h"

#include <vgw/attrlog/LogicalSwitch.h>
#include <vgw/attrlog/PhysicalPort.h>

namespace {

using Qor::make;
using Qor::Name;

TEST_F(Inbound, EmptyTextSetsTheEmptyText) {
    auto const row = make<Vgw::LogicalSwitch>(Name("ls"));
    row->descIs("old");
    auto const a = enter(row);
    feed(record(first, 387, ""));
    EXPECT_EQ(row->desc(), "");
}

TEST_F(Inbound, TextInChunksIsSeenOnlyWhole) {
    auto const row = make<Vgw::LogicalSwitch>(Name("ls"));
    row->descIs("old");
    auto const a = enter(row);
    feed(chunk(first, 387, hexOf("ab")) + chunk(first, 387, hexOf("cd")));
    EXPECT_EQ(row->desc(), "old");
    EXPECT_EQ(peer.demuxer->openText(), 4U);
    feed(record(first, 387, hexOf("e")));
    EXPECT_EQ(row->desc(), "abcde");
    EXPECT_FALSE(peer.demuxer->hasFlowsIn());
    EXPECT_EQ(peer.demuxer->openText(), 0U);
}

TEST_F(Inbound, EmptyLastChunkEndsTheText) {
    auto const row = make<Vgw::LogicalSwitch>(Name("ls"));
    auto const a = enter(row);
    feed(chunk(first, 387, hexOf("ab")) + record(first, 387, ""));
    EXPECT_EQ(row->desc(), "ab");
}

TEST_F(Inbound, AbortDropsAHalfReceivedText) {
    auto const row = make<Vgw::LogicalSwitch>(Name("ls"));
    row->descIs("old");
    auto const a = enter(row);
    feed(chunk(first, 387, hexOf("ab")) + marker(first, 387, "01"));
    EXPECT_FALSE(peer.demuxer->hasFlowsIn());
    feed(record(first, 387, hexOf("new")));
    EXPECT_EQ(row->desc(), "new");
}

TEST_F(Inbound, MarkerOfAnotherAttributeLeavesTheTextOpen) {
    auto const row = make<Vgw::LogicalSwitch>(Name("ls"));
    auto const a = enter(row);
    feed(chunk(first, 387, hexOf("ab")) + marker(first, 386, "01"));
    feed(record(first, 387, hexOf("c")));
    EXPECT_EQ(row->desc(), "abc");
}

TEST_F(Inbound, ChangeHereOfATextThatArrivesWaitsForIt) {
    auto const row = make<Vgw::LogicalSwitch>(Name("ls"));
    auto const a = enter(row);
    feed(chunk(first, 387, hexOf("ab")));
    row->descIs("mine");
    EXPECT_EQ(sent(), "");
    feed(record(first, 387, hexOf("c")));
    EXPECT_EQ(row->desc(), "abc");
    EXPECT_EQ(sent(), "");
}

TEST_F(Inbound, ChangeHereOfATextWhoseArrivalIsAbortedIsSentThen) {
    auto const row = make<Vgw::LogicalSwitch>(Name("ls"));
    auto const a = enter(row);
    feed(chunk(first, 387, hexOf("ab")));
    row->descIs("mine");
    feed(marker(first, 387, "01"));
    EXPECT_EQ(sent(), record(first, 387, hexOf("mine")));
}

TEST_F(Inbound, TextOfOneKeyContinuesUnderThatKeyOnly) {
    auto const port = make<Vgw::PhysicalPort>(Name("p"));
    auto const a = enter(port);
    feed(chunk(first, 388, "0007" + hexOf("ab")));
    feed(record(first, 388, "0008" + hexOf("x")));
    EXPECT_EQ(port->vlanBinding(8), "x");
    EXPECT_EQ(port->vlanBindings(), 1U);
    feed(record(first, 388, "0007" + hexOf("c")));
    EXPECT_EQ(port->vlanBinding(7), "abc");
    EXPECT_FALSE(peer.demuxer->hasFlowsIn());
}

TEST_F(Inbound, TextThatBeginsWithinAnotherIsRefused) {
    auto const row = make<Vgw::LogicalSwitch>(Name("ls"));
    auto const a = enter(row);
    feed(chunk(first, 386, hexOf("a")) + chunk(first, 387, hexOf("b")));
    EXPECT_EQ(peer.failure,
              "a text of attribute 387 begins before that of attribute 386 has ended");
}

TEST_F(Inbound, EmptyChunkThatSaysMoreFollowsIsRefused) {
    auto const port = make<Vgw::PhysicalPort>(Name("p"));
    auto const a = enter(port);
    feed(chunk(first, 388, "0007"));
    EXPECT_EQ(peer.failure, "an empty chunk of a text that is said to go on");
}

TEST_F(Inbound, OpenTextsAreKeptWithinTheQuota) {
    auto const row = make<Vgw::LogicalSwitch>(Name("ls"));
    auto const a = enter(row);
    peer.demuxer->quotaIs({10, 3});
    feed(chunk(first, 387, hexOf("ab")) + chunk(first, 387, hexOf("cd")));
    EXPECT_EQ(peer.failure, "more than 3 bytes of texts that have not ended");
}

TEST_F(Inbound, DemuxerThatAHandlerClosesKeepsItsAdaptersToTheRecordsEnd) {
    struct Closing : Vgw::LogicalSwitch::NotifieeConst {
        void onTunnelKey() override {
            demuxer->close();
            left = demuxer->adapters();
        }
        Peer::Demuxer::Ptr demuxer;
        Qor::U32 left = 0;
    };
    auto const row = make<Vgw::LogicalSwitch>(Name("ls"));
    auto const a = enter(row);
    auto const closing = make<Closing>();
    closing->demuxer = peer.demuxer;
    closing->notifierIs(row);
    feed(record(first, 388, "00000007") + record(first, 388, "00000008"));
    EXPECT_EQ(closing->left, 1U);
    EXPECT_EQ(peer.demuxer->adapters(), 0U);
    EXPECT_EQ(row->tunnelKey(), 7U);
    closing->notifierIs(nullptr);
}

}  // namespace
