// What goes out when, and what is noted instead.
#include "Peers.h"
#include "Records.h"

#include <vgw/attrlog/CliConfig.h>
#include <vgw/attrlog/HwVtepOvsdb.h>
#include <vgw/attrlog/LogicalSwitch.h>
#include <vgw/attrlog/PhysicalLocator.h>
#include <vgw/attrlog/PhysicalPort.h>
#include <vgw/attrlog/PhysicalSwitch.h>

#include <gtest/gtest.h>

namespace {

using Qor::make;
using Qor::Name;
using Qor::String8;

String8 text(std::size_t length, char byte = 'x') { return String8(std::string(length, byte)); }

class Outbound : public testing::Test {
  protected:
    std::string sent() { return hex(takeBytes(peer.out())); }
    void fill() { peer.fillRing(); }
    void serve() { peer.demuxer->serveFlows(~Qor::U64{0}); }

    Peer peer{Peer::Demuxer::Side::connecting};
};

TEST_F(Outbound, FlowOwesEverythingFromItsStart) {
    auto const sw = make<Vgw::PhysicalSwitch>(Name("s"));
    auto const a = peer.attach(sw);
    peer.demuxer->createFlowOut(*a, {}, false, 387);
    auto const flow = a->flowOut();
    EXPECT_FALSE(flow->qorIsDisplayNameDirty());
    EXPECT_TRUE(flow->qorIsDescDirty());
    EXPECT_FALSE(flow->qorPortHasSynced());
    EXPECT_FALSE(flow->qorIsTypeDirty());
    EXPECT_TRUE(flow->qorInvalidAttribHasSynced());
    EXPECT_TRUE(flow->hasDirtyAttributes());
    EXPECT_FALSE(a->steadyState());
}

TEST_F(Outbound, FlowFromTheGreatestIdOwesNothing) {
    auto const sw = make<Vgw::PhysicalSwitch>(Name("s"));
    auto const a = peer.attach(sw);
    peer.demuxer->createFlowOut(*a, {}, false, Qor::NboAttrLog::FlowOut::owesNothing);
    EXPECT_FALSE(a->flowOut()->hasDirtyAttributes());
    a->flowOut()->qorIsPortDirtyIs("p", true);
    EXPECT_TRUE(a->flowOut()->hasDirtyAttributes());
    a->flowOut()->qorIsPortDirtyDel("p");
    EXPECT_FALSE(a->flowOut()->hasDirtyAttributes());
}

TEST_F(Outbound, ValueWithoutRoomIsNotedAndTheLastOneSent) {
    auto const row = make<Vgw::LogicalSwitch>(Name("ls"));
    auto const a = peer.attach(row);
    fill();
    for (Qor::U32 key = 1; key <= 1000; ++key) row->tunnelKeyIs(key);
    ASSERT_TRUE(a->flowOut());
    EXPECT_TRUE(a->flowOut()->qorIsTunnelKeyDirty());
    sent();
    serve();
    EXPECT_EQ(sent(), record(3, 388, "000003e8"));
    EXPECT_FALSE(a->flowOut());
    EXPECT_TRUE(a->steadyState());
}

TEST_F(Outbound, KeyWithoutRoomIsNotedAndItsRemovalSent) {
    auto const sw = make<Vgw::PhysicalSwitch>(Name("s"));
    auto const a = peer.attach(sw);
    fill();
    sw->portIs("p", true);
    sw->portDel("p");
    sw->portIs("q", true);
    sent();
    serve();
    auto const bytes = sent();
    auto const removal = record(3, -388, "0000000170");
    auto const setting = record(3, 388, "000000017101");
    EXPECT_TRUE(bytes == removal + setting || bytes == setting + removal) << bytes;
}

TEST_F(Outbound, ChangeWhileAFlowIsOwedGoesOutAtOnceWhereThereIsRoom) {
    auto const sw = make<Vgw::PhysicalSwitch>(Name("s"));
    auto const a = peer.attach(sw);
    fill();
    sw->displayNameIs(Name("a"));
    sent();
    sw->portIs("p", true);
    EXPECT_EQ(sent(), record(3, 388, "000000017001"));
    sw->displayNameIs(Name("b"));
    EXPECT_EQ(sent(), record(3, 386, "0000000162"));
    serve();
    EXPECT_EQ(sent(), "");
    EXPECT_FALSE(a->flowOut());
}

TEST_F(Outbound, ReadOnlyHereIsRefusedAndNotSent) {
    auto const row = make<Vgw::LogicalSwitch>(Name("ls"));
    auto const a = peer.attach(row, Qor::AdapterState::readOnlyLocal);
    row->tunnelKeyIs(7);
    EXPECT_EQ(sent(), "");
    EXPECT_EQ(peer.demuxer->counters().refusedLocally, 1U);
    EXPECT_EQ(peer.failure, String8());
    peer.demuxer->mayConvertIs(true);
    row->tunnelKeyIs(8);
    EXPECT_EQ(sent(), record(3, 388, "00000008"));
}

TEST_F(Outbound, NothingGoesOutWhileItIsBarred) {
    auto const row = make<Vgw::LogicalSwitch>(Name("ls"));
    auto const a = peer.attach(row);
    using namespace Qor::AdapterState;
    for (Qor::U32 const barrier : {remountPending, flowOutSuspended, syncModeFanOut}) {
        a->flagIs(barrier, true);
        row->tunnelKeyIs(row->tunnelKey() + 1);
        row->descIs(row->desc() + "x");
        EXPECT_EQ(sent(), "") << barrier;
        a->flagIs(barrier, false);
    }
    a->flagIs(flowOutEnabled, false);
    row->tunnelKeyIs(7);
    EXPECT_EQ(sent(), "");
}

TEST_F(Outbound, EmptyTextIsOneRecord) {
    auto const row = make<Vgw::LogicalSwitch>(Name("ls"));
    row->descIs("x");
    auto const a = peer.attach(row);
    row->descIs("");
    EXPECT_EQ(sent(), record(3, 387, ""));
}

TEST_F(Outbound, TextWithoutRoomStartsInAFlow) {
    auto const row = make<Vgw::LogicalSwitch>(Name("ls"));
    auto const a = peer.attach(row);
    fill();
    row->descIs("x");
    EXPECT_EQ(a->flowOut()->outstandingKeys(), 1U);
    sent();
    serve();
    EXPECT_EQ(sent(), record(3, 387, "78"));
    EXPECT_FALSE(a->flowOut());
}

TEST_F(Outbound, TextThatFillsTheRingGoesOnWhereItStopped) {
    auto const row = make<Vgw::LogicalSwitch>(Name("ls"));
    auto const copy = make<Vgw::LogicalSwitch>(Name("ls"));
    Peers peers(2);
    peers.mount(row, copy);
    std::string long_text;
    for (int i = 0; i < 100000; ++i) long_text += std::to_string(i) + ' ';
    row->descIs(String8(long_text));
    EXPECT_TRUE(peers.source.adapter(row)->flowOut());
    EXPECT_EQ(copy->desc(), "");
    peers.settle();
    EXPECT_EQ(peers.reader.failure, String8());
    EXPECT_EQ(copy->desc(), String8(long_text));
    EXPECT_FALSE(peers.source.adapter(row)->flowOut());
}

TEST_F(Outbound, TextThatChangesWhileItIsHalfSentIsAbortedAndStartsAnew) {
    auto const row = make<Vgw::LogicalSwitch>(Name("ls"));
    auto const a = peer.attach(row);
    row->descIs(text(40000));
    EXPECT_TRUE(a->flowOut()->valueIter());
    sent();
    row->descIs("new");
    EXPECT_EQ(sent(), "");
    serve();
    EXPECT_EQ(sent(), marker(3, 387, "01") + record(3, 387, hexOf("new")));
    EXPECT_FALSE(a->flowOut());
}

TEST_F(Outbound, KeyWhoseTextChangesWhileItIsHalfSentIsAbortedAndStartsAnew) {
    auto const port = make<Vgw::PhysicalPort>(Name("p"));
    auto const a = peer.attach(port);
    port->vlanBindingIs(7, text(40000));
    ASSERT_TRUE(a->flowOut());
    EXPECT_TRUE(a->flowOut()->valueIterKey());
    sent();
    port->vlanBindingIs(8, "other");
    EXPECT_EQ(sent(), record(3, 388, "0008" + hexOf("other")));
    port->vlanBindingIs(7, "new");
    EXPECT_EQ(sent(), "");
    serve();
    EXPECT_EQ(sent(), marker(3, 388, "01") + record(3, 388, "0007" + hexOf("new")));
    EXPECT_FALSE(a->flowOut());
}

TEST_F(Outbound, KeyThatGoesWhileItsTextIsHalfSentIsRemovedAtThePeer) {
    auto const port = make<Vgw::PhysicalPort>(Name("p"));
    auto const copy = make<Vgw::PhysicalPort>(Name("p"));
    Peers peers;
    peers.mount(port, copy);
    port->vlanBindingIs(7, text(40000));
    auto const flow = peers.source.adapter(port)->flowOut();
    ASSERT_TRUE(flow && flow->valueIterKey());
    port->vlanBindingDel(7);
    peers.settle();
    EXPECT_EQ(copy->vlanBindings(), 0U);
    EXPECT_FALSE(peers.source.adapter(port)->flowOut());
}

TEST_F(Outbound, KeyLongerThanABlockStopsTheProcess) {
    auto const locator = make<Vgw::PhysicalLocator>(Name("l"));
    auto const a = peer.attach(locator);
    EXPECT_DEATH(
        locator->bfdIs(text(49152 - 33), "v"),
        "Assertion "
        "'Qor::NboAttrLog::pessimisticMessageSizeEstimate\\(_qor_index,_bfd,true\\)<alOut->"
        "bufferBlockSize\\(\\)' failed");
    EXPECT_DEATH(locator->bfdStatusIs(text(49152 - 33), "v"), "_bfdStatus,true");
}

TEST_F(Outbound, ReferenceToAnUnknownEntityWaitsAndThePeerHoldsNoneMeanwhile) {
    auto const ovsdb = make<Vgw::HwVtepOvsdb>(Name("db"));
    auto const a = peer.attach(ovsdb);
    auto const stranger = make<Vgw::PhysicalSwitch>(Name("s"));
    ovsdb->physicalSwitchIs("leaf", stranger);
    EXPECT_EQ(sent(), "");
    EXPECT_TRUE(a->flowOut()->retryLater());
    serve();
    EXPECT_EQ(sent(), record(3, -260, "000000046c656166"));
    serve();
    EXPECT_EQ(sent(), "");
    EXPECT_FALSE(peer.demuxer->owes()) << "waits without turns";
    auto const b = peer.attach(stranger);
    serve();
    EXPECT_EQ(sent(), record(3, 260, "000000046c6561660000000000000005"));
    EXPECT_FALSE(a->flowOut());
}

TEST_F(Outbound, WalkThatMeetsAnUnknownEntityIsLeftThere) {
    auto const ovsdb = make<Vgw::HwVtepOvsdb>(Name("db"));
    auto const stranger = make<Vgw::PhysicalSwitch>(Name("s"));
    ovsdb->physicalSwitchIs("leaf", stranger);
    auto const a = peer.attach(ovsdb);
    peer.demuxer->createFlowOut(*a, {}, false, 260);
    EXPECT_EQ(a->handleAttrFlowOut(260), 260);
    ASSERT_TRUE(a->flowOut()->bookmark());
    EXPECT_EQ(*static_cast<String8 const*>(a->flowOut()->bookmark()), "leaf");
    EXPECT_EQ(a->handleAttrFlowOut(260), 260);
    auto const b = peer.attach(stranger);
    EXPECT_NE(a->handleAttrFlowOut(260), 260);
    EXPECT_EQ(sent().substr(0, 160),
              (marker(3, 260, "00") + record(3, 260, "000000046c6561660000000000000005") +
               marker(3, 260, "02"))
                  .substr(0, 160));
}

TEST_F(Outbound, FlowsTakeTurnsInSlices) {
    auto const big = make<Vgw::LogicalSwitch>(Name("big"));
    auto const small = make<Vgw::LogicalSwitch>(Name("small"));
    auto const a = peer.attach(big);
    auto const b = peer.attach(small);
    fill();
    big->descIs(text(10'000'000));
    small->tunnelKeyIs(7);
    sent();
    serve();
    auto const bytes = sent();
    EXPECT_NE(bytes.find(record(5, 388, "00000007")), std::string::npos);
    EXPECT_TRUE(a->flowOut());
    EXPECT_FALSE(b->flowOut());
}

TEST_F(Outbound, FlowsLeaveRoomForChangesOfOthers) {
    auto const big = make<Vgw::LogicalSwitch>(Name("big"));
    auto const small = make<Vgw::LogicalSwitch>(Name("small"));
    auto const a = peer.attach(big);
    auto const b = peer.attach(small);
    big->descIs(text(10'000'000));
    serve();
    EXPECT_TRUE(a->flowOut());
    small->tunnelKeyIs(7);
    EXPECT_FALSE(b->flowOut());
}

TEST_F(Outbound, RecordLongerThanThePeerTakesEndsTheConnection) {
    auto const sw = make<Vgw::PhysicalSwitch>(Name("s"));
    auto const a = peer.attach(sw);
    peer.out().greatestFrameIs(1000);
    sw->displayNameIs(Name(text(2000)));
    EXPECT_EQ(peer.failure,
              "attribute 386 could not be sent: a frame of 2029 bytes, the greatest is 1000");
    EXPECT_EQ(sent(), "");
}

TEST(Records, InterruptedByAnotherIsTakenBackAndMayBeWrittenAgain) {
    auto const out = make<Qor::NboAttrLog::Out>();
    using Token = Qor::NboAttrLog::Out::TransactToken;
    out->nextHeaderIs({Qor::EntityId(3), 388});
    out << Token::begin << Qor::U32{1};
    out->nextHeaderIs({Qor::EntityId(5), 388});
    out << Token::begin << Qor::U32{2} << Token::end;
    EXPECT_THROW(out << Token::end, Qor::AttrLogRecordException);
    EXPECT_EQ(hex(takeBytes(*out)), record(5, 388, "00000002"));
}

TEST(Records, OnceBegunIsWholeAlthoughTheCapIsReached) {
    auto const out = make<Qor::NboAttrLog::Out>(1);
    using Token = Qor::NboAttrLog::Out::TransactToken;
    out->nextHeaderIs({Qor::EntityId(3), 388});
    out << Token::begin << text(100000) << Token::end;
    EXPECT_EQ(out->freeBytes(), 0U);
    EXPECT_EQ(takeBytes(*out).size(), 100000U + 4 + 29);
    EXPECT_EQ(out->freeBytes(), Qor::NboAttrLog::Out::blockSize);
}

}  // namespace
