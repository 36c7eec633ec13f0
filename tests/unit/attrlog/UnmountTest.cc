// A mount that is given back by a handler which hears of what the mount brings: the connection goes
// on, and what the copy has by then stays as it is.
#include <gtest/gtest.h>

#include <qor/attrlog/dir/DirAdapter.h>
#include <tests/support/SessionPair.h>
#include <vgw/attrlog/HwVtepOvsdb.h>
#include <vgw/attrlog/LogicalSwitch.h>

namespace {

using Qor::Dir;
using Qor::make;
using Qor::Name;
using Qor::NboAttrLog::Session;
using Vgw::HwVtepOvsdb;
using Vgw::LogicalSwitch;

// One that gives "/top".
struct Link : SessionPair {
    explicit Link(Dir::Ptr const& top) { connect(top); }
};

// Gives the first mount back, once, when `wants` says so.
template <class X>
class GivesBack : public X::Notifiee {
  public:
    explicit GivesBack(typename X::Ptr const& copy) { this->notifierIs(copy); }
    Session* session = nullptr;

  protected:
    void heard(bool wants) {
        if (wants && session) std::exchange(session, nullptr)->unmount(1);
    }
};

class OfEntries : public GivesBack<Dir> {
  public:
    using GivesBack::GivesBack;
    bool ofRemoval = false;
    void onEntry(Name name) override { heard(!ofRemoval || !notifier()->entry(name)); }
};

class OfRows : public GivesBack<HwVtepOvsdb> {
  public:
    using GivesBack::GivesBack;
    void onLogicalSwitch(Name name) override { heard(!notifier()->logicalSwitch(name)); }
};

constexpr std::array<char const*, 5> names{"a", "b", "c", "d", "e"};

TEST(Unmount, WithinTheTellingOfAnEntryLeavesTheOtherMount) {
    auto const top = make<Dir>("top");
    auto const rows = make<Dir>("rows");
    top->entryIs("rows", rows);
    top->entryIs("other", make<LogicalSwitch>("other"));
    for (char const* const name : names) rows->entryIs(name, make<LogicalSwitch>(name));
    auto const copy = make<Dir>("rows");
    auto const hearer = make<OfEntries>(copy);
    Link link(top);
    hearer->session = &*link.reader;
    link.reader->mount("/top/rows", false, copy);
    auto const other = link.reader->mount("/top/other", false, make<LogicalSwitch>("other"));
    link.turns(10);
    EXPECT_FALSE(hearer->session) << "it heard of an entry";
    EXPECT_EQ(link.reader->closed(), "");
    EXPECT_EQ(link.agent->closed(), "");
    EXPECT_TRUE(link.reader->mounted(other));
    EXPECT_EQ(link.reader->demuxer().adapters(), 1U);
}

// A copy of all, the original loses one, and the copy hears of that at the end of the next
// connection's snapshot.
template <class X, class Remove, class Hearer>
void expectTheRestToStay(Qor::Ptr<X> const& original, Qor::Ptr<X> const& copy, Remove remove,
                         Hearer const& hearer) {
    auto const top = make<Dir>("top");
    top->entryIs("x", original);
    {
        Link first(top);
        first.reader->mount("/top/x", false, copy);
        first.turns(10);
    }
    remove();
    Link second(top);
    hearer->session = &*second.reader;
    second.reader->mount("/top/x", false, copy);
    second.turns(10);
    EXPECT_FALSE(hearer->session) << "it heard of the removal";
    EXPECT_EQ(second.reader->closed(), "");
}

TEST(Unmount, WithinTheTellingOfASweptRowKeepsTheOthers) {
    auto const original = make<HwVtepOvsdb>("x");
    auto const copy = make<HwVtepOvsdb>("x");
    for (char const* const name : names) original->logicalSwitchIs(name);
    expectTheRestToStay(
        original, copy, [&] { original->logicalSwitchDel("c"); }, make<OfRows>(copy));
    EXPECT_EQ(copy->logicalSwitchs(), 4U);
}

TEST(Unmount, WithinTheTellingOfASweptEntryKeepsTheOthers) {
    auto const original = make<Dir>("x");
    auto const copy = make<Dir>("x");
    for (char const* const name : names) original->entryIs(name, make<LogicalSwitch>(name));
    auto const hearer = make<OfEntries>(copy);
    hearer->ofRemoval = true;
    expectTheRestToStay(
        original, copy, [&] { original->entryDel("c"); }, hearer);
    EXPECT_EQ(copy->entrys(), 4U);
}

}  // namespace
