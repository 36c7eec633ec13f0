// A whole state: what goes at once, and what is left to a flow. Either way the bytes are the same.
#include "Peers.h"
#include "Records.h"

#include <vgw/attrlog/LogicalSwitch.h>
#include <vgw/attrlog/PhysicalSwitch.h>
#include <vgw/attrlog/UcastMacsRemote.h>

#include <gtest/gtest.h>

namespace {

using Qor::make;
using Qor::Name;
using Qor::String8;

String8 textOf(std::size_t length) { return String8(std::string(length, 'x')); }

class WholeState : public testing::Test {
  protected:
    std::string sent() { return hex(takeBytes(peer.out())); }
    void fill() { peer.fillRing(); }
    std::string served() {
        peer.demuxer->serveFlows(~Qor::U64{0});
        return sent();
    }
    template <class Adapter>
    std::string throughFlow(Adapter const& adapter) {
        peer.demuxer->createFlowOut(*adapter, {}, false, 0);
        return served();
    }
    Qor::U64 flowsMade() const { return peer.demuxer->counters().flowsMade; }

    Peer peer{Peer::Demuxer::Side::connecting};
};

TEST_F(WholeState, GoesAtOnceAndWithoutAFlow) {
    auto const row = make<Vgw::UcastMacsRemote>(Name("row"));
    row->macIs(Kelp::EthAddr("00:00:5e:00:53:01"));
    row->logicalSwitchIs("ls");
    row->ipAddrIs(Kelp::IpAddr("192.0.2.1"));
    auto const a = peer.attach(row);
    auto const whole = throughFlow(a);
    auto const made = flowsMade();
    a->doThis();
    EXPECT_FALSE(a->flowOut());
    EXPECT_TRUE(a->steadyState());
    EXPECT_EQ(flowsMade(), made);
    EXPECT_EQ(sent(), whole);
    EXPECT_NE(whole, "");
}

TEST_F(WholeState, LeavesKeysThatAreThereAndWhatFollowsToAFlow) {
    auto const sw = make<Vgw::PhysicalSwitch>(Name("s"));
    sw->descIs("leaf");
    sw->portIs("p", true);
    sw->faultIs("f", true);
    auto const a = peer.attach(sw);
    auto const whole = throughFlow(a);
    auto const made = flowsMade();
    a->doThis();
    EXPECT_EQ(flowsMade(), made + 1);
    EXPECT_FALSE(a->flowOut());
    EXPECT_EQ(sent(), whole);
}

TEST_F(WholeState, LeavesATextOfSeveralChunksToAFlow) {
    auto const row = make<Vgw::LogicalSwitch>(Name("ls"));
    row->descIs(textOf(40000));
    row->tunnelKeyIs(7);
    auto const a = peer.attach(row);
    auto const whole = throughFlow(a);
    auto const made = flowsMade();
    a->doThis();
    EXPECT_EQ(flowsMade(), made + 1);
    EXPECT_EQ(sent(), whole);
}

TEST_F(WholeState, IsOwedWhereThereIsNoRoom) {
    auto const row = make<Vgw::LogicalSwitch>(Name("ls"));
    row->tunnelKeyIs(7);
    auto const a = peer.attach(row);
    auto const whole = throughFlow(a);
    fill();
    a->doThis();
    ASSERT_TRUE(a->flowOut());
    EXPECT_TRUE(a->flowOut()->qorIsTypeDirty());
    EXPECT_TRUE(a->flowOut()->qorIsTunnelKeyDirty());
    sent();
    EXPECT_EQ(served(), whole);
    EXPECT_FALSE(a->flowOut());
}

TEST_F(WholeState, OfWhatIsBehindIsOwedAnew) {
    auto const row = make<Vgw::LogicalSwitch>(Name("ls"));
    auto const a = peer.attach(row);
    fill();
    row->tunnelKeyIs(7);
    ASSERT_TRUE(a->flowOut());
    sent();
    a->doThis();
    auto const once = sent() + served();
    EXPECT_EQ(once, throughFlow(a));
}

TEST_F(WholeState, WaitsWhileItIsBarred) {
    auto const row = make<Vgw::LogicalSwitch>(Name("ls"));
    auto const a = peer.attach(row);
    auto const whole = throughFlow(a);
    a->flagIs(Qor::AdapterState::flowOutSuspended, true);
    a->doThis();
    EXPECT_EQ(sent() + served(), "");
    a->notificationDisabledDueToMsgChannelIs(false);
    EXPECT_EQ(served(), whole);
}

}  // namespace
