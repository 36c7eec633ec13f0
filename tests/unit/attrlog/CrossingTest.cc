// Two writers at once, and references to what the peer does not have.
#include "Peers.h"
#include "Records.h"

#include <vgw/attrlog/HwVtepOvsdb.h>
#include <vgw/attrlog/LogicalSwitch.h>
#include <vgw/attrlog/PhysicalPort.h>
#include <vgw/attrlog/PhysicalSwitch.h>
#include <vgw/attrlog/Status.h>

#include <gtest/gtest.h>

#include <string>

namespace {

using Qor::make;
using Qor::Name;
using Qor::String8;

class Crossing : public testing::Test {
  protected:
    Crossing() { peers.mount(original, copy); }

    Peers peers;
    Qor::Ptr<Vgw::HwVtepOvsdb> original = make<Vgw::HwVtepOvsdb>(Name("db"));
    Qor::Ptr<Vgw::HwVtepOvsdb> copy = make<Vgw::HwVtepOvsdb>(Name("db"));
};

TEST_F(Crossing, ValuesAreNotSwapped) {
    original->logicalSwitchIs(Name("a"));
    peers.settle();
    auto const here = original->logicalSwitch(Name("a"));
    auto const there = copy->logicalSwitch(Name("a"));
    here->tunnelKeyIs(1);
    there->tunnelKeyIs(2);
    here->descIs("one");
    there->descIs("two");
    peers.settle();
    EXPECT_EQ(here->tunnelKey(), there->tunnelKey());
    EXPECT_EQ(here->desc(), there->desc());
}

TEST_F(Crossing, KeysAreNotSwapped) {
    original->physicalPortIs(Name("p"))->vlanBindingIs(1, "old");
    peers.settle();
    auto const here = original->physicalPort(Name("p"));
    auto const there = copy->physicalPort(Name("p"));
    here->vlanBindingIs(1, "one");
    there->vlanBindingDel(1);
    here->vlanBindingDel(2);
    there->vlanBindingIs(2, "two");
    peers.settle();
    EXPECT_EQ(here->vlanBinding(1), there->vlanBinding(1));
    EXPECT_EQ(here->vlanBinding(2), there->vlanBinding(2));
    EXPECT_EQ(here->vlanBindings(), there->vlanBindings());
}

TEST_F(Crossing, ChildOfTheSameNameIsTheOriginals) {
    original->logicalSwitchIs(Name("a"))->tunnelKeyIs(1);
    copy->logicalSwitchIs(Name("a"))->tunnelKeyIs(2);
    peers.settle();
    EXPECT_EQ(original->logicalSwitch(Name("a"))->tunnelKey(), 1U);
    EXPECT_EQ(copy->logicalSwitch(Name("a"))->tunnelKey(), 1U);
    copy->logicalSwitch(Name("a"))->tunnelKeyIs(3);
    peers.settle();
    EXPECT_EQ(original->logicalSwitch(Name("a"))->tunnelKey(), 3U);
}

TEST_F(Crossing, RemovalOfAnOlderChildLeavesTheNewOne) {
    original->logicalSwitchIs(Name("a"));
    peers.settle();
    original->logicalSwitchDel(Name("a"));
    original->logicalSwitchIs(Name("a"))->tunnelKeyIs(7);
    copy->logicalSwitchDel(Name("a"));
    peers.settle();
    ASSERT_TRUE(original->logicalSwitch(Name("a")));
    ASSERT_TRUE(copy->logicalSwitch(Name("a")));
    EXPECT_EQ(copy->logicalSwitch(Name("a"))->tunnelKey(), 7U);
}

TEST_F(Crossing, WriteThatCrossesNothingIsNotSentBack) {
    original->logicalSwitchIs(Name("a"));
    peers.settle();
    copy->logicalSwitch(Name("a"))->tunnelKeyIs(5);
    EXPECT_GT(carry(peers.reader, peers.source), 0U);
    EXPECT_EQ(carry(peers.source, peers.reader), 0U);
    EXPECT_EQ(original->logicalSwitch(Name("a"))->tunnelKey(), 5U);
}

// Another value of the entity was on its way, so that the original says the first once more.
TEST_F(Crossing, ValueThatIsStillToBeSentOutlivesTheRepetitionOfAnOlderOne) {
    original->logicalSwitchIs(Name("a"));
    peers.settle();
    auto const here = original->logicalSwitch(Name("a"));
    auto const there = copy->logicalSwitch(Name("a"));
    there->tunnelKeyIs(1);
    there->displayNameIs("one");
    here->descIs("crosses");
    carry(peers.reader, peers.source);
    peers.reader.out().hasLiveBufferIs(false);
    there->tunnelKeyIs(2);
    there->displayNameIs("two");
    peers.reader.out().hasLiveBufferIs(true);
    carry(peers.source, peers.reader);
    EXPECT_EQ(there->tunnelKey(), 2U);
    peers.settle();
    EXPECT_EQ(here->tunnelKey(), 2U);
    EXPECT_EQ(here->displayName(), "two");
    EXPECT_EQ(there->displayName(), "two");
    EXPECT_EQ(there->desc(), "crosses");
}

TEST_F(Crossing, ReceiptGoesInFrontOfWhatACopyWritesAndOnlyOnce) {
    original->logicalSwitchIs(Name("a"));
    peers.settle();
    auto const there = copy->logicalSwitch(Name("a"));
    there->tunnelKeyIs(5);
    auto const first = takeBytes(peers.reader.out());
    EXPECT_EQ(static_cast<unsigned char>(first[4]), 3U);
    there->tunnelKeyIs(6);
    EXPECT_EQ(takeBytes(peers.reader.out())[4], 0);
}

TEST(OutsideReference, EndsItsSnapshotAndIsSentWhenItsTargetIsKnown) {
    auto const original = make<Vgw::HwVtepOvsdb>(Name("db"));
    auto const copy = make<Vgw::HwVtepOvsdb>(Name("db"));
    auto const stranger = make<Vgw::PhysicalSwitch>(Name("stranger"));
    auto const row = original->physicalSwitchRawIs(Name("s"));
    original->physicalSwitchIs("outside", stranger);
    original->physicalSwitchIs("inside", row);
    copy->physicalSwitchIs("stale", copy->physicalSwitchRawIs(Name("old")));
    Peers peers;
    peers.mount(original, copy);
    EXPECT_EQ(copy->physicalSwitchs(), 1U);
    EXPECT_EQ(copy->physicalSwitch("inside"), copy->physicalSwitchRaw(Name("s")));
    EXPECT_FALSE(peers.source.demuxer->owes());
    EXPECT_EQ(carry(peers.source, peers.reader), 0U);
    original->logicalSwitchIs(Name("ls"))->descIs("goes on");
    peers.settle();
    ASSERT_TRUE(copy->logicalSwitch(Name("ls")));
    EXPECT_EQ(copy->logicalSwitch(Name("ls"))->desc(), "goes on");
    original->physicalSwitchIs("inside", stranger);
    peers.settle();
    EXPECT_FALSE(copy->physicalSwitch("inside")) << "what the peer held is not what it is now";
    original->physicalSwitchIs("inside", row);
    peers.settle();
    EXPECT_TRUE(copy->physicalSwitch("inside"));
}

TEST(RingOfOneBlock, FlowMakesProgressToItsEnd) {
    auto const original = make<Vgw::HwVtepOvsdb>(Name("db"));
    auto const copy = make<Vgw::HwVtepOvsdb>(Name("db"));
    for (int i = 0; i < 2000; ++i) {
        original->logicalSwitchIs(Name(std::to_string(i).c_str()))->descIs("a description");
    }
    original->physicalPortIs(Name("p"))->vlanBindingIs(1, String8(std::string(200000, 'x')));
    Peers peers(1);
    peers.mount(original, copy);
    EXPECT_EQ(copy->logicalSwitchs(), 2000U);
    ASSERT_TRUE(copy->physicalPort(Name("p")));
    EXPECT_EQ(copy->physicalPort(Name("p"))->vlanBinding(1).length(), 200000U);
    EXPECT_EQ(peers.source.demuxer->flows(), 0U);
}

}  // namespace
