// Collections whose keys tie, which stand in the order of their insertion: what is removed and put
// back while a snapshot waits for room stands behind what was behind it.
#include "Peers.h"

#include <tests/support/LinearCost.h>
#include <tests/support/Settings.h>
#include <ties/attrlog/Knot.h>
#include <ties/attrlog/Target.h>

#include <vgw/attrlog/HwVtepOvsdb.h>
#include <vgw/attrlog/PhysicalLocator.h>

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <set>
#include <string>

namespace {

using Qor::make;
using Qor::Name;
using Qor::String8;
using Qor::U32;
using Ties::Knot;
using Ties::Tag;

Tag tag(U32 number, Ties::Hue hue = Ties::red) {
    return Tag(Kelp::IpAddr::fromHostOrder(0xC0000200 + number), hue);
}

std::string inWords(Tag const& key) { return std::string(valueToStrep(key).view()); }

// What a collection holds, whatever its order.
using Held = std::map<std::string, std::string>;

// One sort of collection.
struct Sort {
    char const* name;
    std::function<void(Knot&, Tag const&, U32)> set;
    std::function<void(Knot&, Tag const&)> del;
    std::function<Held(Knot&)> held;
};

Held flagsOf(Knot& knot) {
    Held held;
    for (auto at = knot.flagIteratorConst(); at; ++at) {
        held[inWords(at.key())] = at.value() ? "yes" : "no";
    }
    return held;
}

Held labelsOf(Knot& knot) {
    Held held;
    for (auto at = knot.labelIteratorConst(); at; ++at) {
        held[inWords(at.key())] = std::string(at.value().view());
    }
    return held;
}

Held linksOf(Knot& knot) {
    Held held;
    for (auto at = knot.linkIteratorConst(); at; ++at) {
        held[inWords(at.key())] = std::string(at.value()->name().view());
    }
    return held;
}

template <std::size_t length>
void setLabel(Knot& knot, Tag const& key, U32 value) {
    knot.labelIs(key, String8(std::to_string(value) + std::string(length, '.')));
}

Sort const tiedSorts[] = {
    {"Flags", [](Knot& knot, Tag const& key, U32 value) { knot.flagIs(key, value % 2 == 0); },
     [](Knot& knot, Tag const& key) { knot.flagDel(key); }, &flagsOf},
    {"Labels", &setLabel<1>, [](Knot& knot, Tag const& key) { knot.labelDel(key); }, &labelsOf},
    {"LongLabels", &setLabel<40000>, [](Knot& knot, Tag const& key) { knot.labelDel(key); },
     &labelsOf},
    {"Links",
     [](Knot& knot, Tag const& key, U32 value) {
         knot.linkIs(key, knot.targetIs(Name(value % 2 == 0 ? "even" : "odd")));
     },
     [](Knot& knot, Tag const& key) { knot.linkDel(key); }, &linksOf},
};

// The keys that are told of.
struct KeyHearer : Knot::Notifiee {
    void onFlag(Tag const& key) override { heard.insert(inWords(key)); }
    void onLabel(Tag const& key) override { heard.insert(inWords(key)); }
    void onLink(Tag const& key) override { heard.insert(inWords(key)); }
    std::set<std::string> heard;
};

// A copy that holds the same is mounted with the room for one record in each turn.
class SlowMount {
  public:
    static constexpr U32 keys = 4;      // of which the last is not there in the beginning
    static constexpr U32 changes = 12;  // three of each

    SlowMount(Sort const& sort, unsigned turns) : sort_(sort) {
        for (auto const& knot : {original_, copy_}) fill(*knot);
        peers_.reader.copy = copy_;
        peers_.source.out().hasLiveBufferIs(false);
        peers_.source.send(original_);
        peers_.source.out().hasLiveBufferIs(true);
        hearer_->notifierIs(copy_);
        while (goesOn_ && turns-- > 0) goesOn_ = peers_.source.demuxer->serveFlows(1);
    }
    bool goesOn() const { return goesOn_; }
    // A key of the tie is removed, removed and put back, or set to another value.
    void change(U32 which) {
        U32 const n = which % keys;
        touched_.insert(inWords(tag(n)));
        if (which / keys < 2) sort_.del(*original_, tag(n));
        if (which / keys > 0) sort_.set(*original_, tag(n), n + 1);
    }
    // What is wrong in the end; empty if nothing is.
    std::string settle() {
        peers_.settle();
        auto const failure = peers_.source.failure + peers_.reader.failure;
        if (failure.length() != 0) return std::string(failure.view());
        if (peers_.source.demuxer->flows() != 0) return "a flow stays owed";
        if (sort_.held(*copy_) != sort_.held(*original_)) return "the copy is another";
        for (auto const& key : hearer_->heard) {
            if (!touched_.contains(key)) return key + " has not changed, and was told of";
        }
        return {};
    }

  private:
    void fill(Knot& knot) {
        sort_.set(knot, tag(0, Ties::green), 7);
        for (U32 n = 0; n + 1 < keys; ++n) sort_.set(knot, tag(n), n);
    }

    Sort const& sort_;
    Peers peers_;
    Qor::Ptr<Knot> const original_ = make<Knot>(Name("knot"));
    Qor::Ptr<Knot> const copy_ = make<Knot>(Name("knot"));
    Qor::Ptr<KeyHearer> const hearer_ = make<KeyHearer>();
    std::set<std::string> touched_;
    bool goesOn_ = true;
};

class TiedKeys : public testing::TestWithParam<Sort> {};

TEST_P(TiedKeys, NoneIsLostWhenOneInFrontIsPutBackBehindItWhileTheSnapshotWaits) {
    constexpr U32 stride = Settings::volume(1, 5, 11);  // the plain build takes every pair
    unsigned turns = 0;
    for (bool goesOn = true; goesOn; ++turns) {
        for (U32 pair = 0; pair < SlowMount::changes * SlowMount::changes; pair += stride) {
            SlowMount mount(GetParam(), turns);
            mount.change(pair % SlowMount::changes);
            mount.change(pair / SlowMount::changes);
            ASSERT_EQ(mount.settle(), "") << "after " << turns << " turns, changes " << pair;
            goesOn = mount.goesOn();
        }
    }
    EXPECT_GT(turns, 8U) << "pauses between markers and records";
}

INSTANTIATE_TEST_SUITE_P(All, TiedKeys, testing::ValuesIn(tiedSorts),
                         [](auto const& one) { return std::string(one.param.name); });

// Where two rows' addresses have one hash.
TEST(TiedLocators, NoneIsLostWhenTheSnapshotWaitsInFrontOfOneThatIsRemovedAndPutBack) {
    auto const original = make<Vgw::HwVtepOvsdb>(Name("db"));
    auto const copy = make<Vgw::HwVtepOvsdb>(Name("db"));
    Vgw::PhysicalLocatorKey const a(Vgw::vxlan_over_ipv4, Kelp::IpAddr("10.1.19.59"));
    Vgw::PhysicalLocatorKey const b(Vgw::vxlan_over_ipv4, Kelp::IpAddr("10.0.237.115"));
    ASSERT_EQ(a.hash(), b.hash());
    auto const row = original->physicalLocatorRawIs(Name("l"));
    for (U32 n = 1; n < 9; ++n) {  // some of which stand in front of the two
        auto const address = Kelp::IpAddr::fromHostOrder(0xC0000200 + n);
        original->remoteLocatorIs(Vgw::PhysicalLocatorKey(Vgw::vxlan_over_ipv4, address), row);
    }
    original->remoteLocatorIs(a, row);
    original->remoteLocatorIs(b, row);
    Peers peers;
    peers.reader.copy = copy;
    peers.source.out().hasLiveBufferIs(false);
    auto const adapter = peers.source.send(original);
    peers.source.out().hasLiveBufferIs(true);
    auto const standsInFrontOfA = [&] {
        auto const* const flow = adapter->StreamAdapter::flowOut();
        return flow && flow->attrId() == Vgw::HwVtepOvsdb::RemoteLocatorAttr::id &&
               flow->bookmark() &&
               *static_cast<Vgw::PhysicalLocatorKey const*>(flow->bookmark()) == a;
    };
    while (!standsInFrontOfA()) ASSERT_TRUE(peers.source.demuxer->serveFlows(1));
    original->remoteLocatorDel(a);
    original->remoteLocatorIs(a, row);
    peers.settle();
    EXPECT_EQ(copy->remoteLocators(), 10U);
    EXPECT_TRUE(copy->remoteLocator(a));
    EXPECT_TRUE(copy->remoteLocator(b));
}

TEST(TiedFlags, OfATieThatTakesManyTurnsEachGoesOnce) {
    constexpr U32 count = 1500;
    auto const original = make<Knot>(Name("knot"));
    auto const copy = make<Knot>(Name("knot"));
    for (U32 n = 0; n < count; ++n) original->flagIs(tag(n), true);
    Peers peers(1);
    peers.mount(original, copy);
    EXPECT_EQ(copy->flags(), count);
    auto const frames = peers.reader.demuxer->counters().framesIn;
    EXPECT_GE(frames, count);
    EXPECT_LT(frames, count + 20) << "markers and empty attributes";
}

// Processor time of the turns, a record each, in which so many keys of one tie go.
double secondsOfTurns(std::size_t count) {
    auto const original = make<Knot>(Name("knot"));
    for (U32 n = 0; n < count; ++n) original->flagIs(tag(n), true);
    Peers peers;
    peers.source.out().hasLiveBufferIs(false);
    peers.source.send(original);
    peers.source.out().hasLiveBufferIs(true);
    std::size_t turns = 0;
    double const seconds = timeOf([&] {
        for (; peers.source.demuxer->serveFlows(1); ++turns) takeBytes(peers.source.out());
    });
    EXPECT_GE(turns, count);
    return seconds;
}

TEST(TiedFlags, TurnsOfATieTakeTimeByItsKeysAndNotByTheirSquare) {
    expectLinearCost(Settings::volume(2000, 500, 500), secondsOfTurns);
}

}  // namespace
