// What an end still owes, or has sent in part, when the other's word comes.
#include "Peers.h"

#include <qor/attrlog/dir/DirAdapter.h>
#include <vgw/attrlog/HwVtepOvsdb.h>
#include <vgw/attrlog/LogicalSwitch.h>
#include <vgw/attrlog/PhysicalSwitch.h>
#include <vgw/attrlog/Status.h>

#include <gtest/gtest.h>

#include <string>

namespace {

using Qor::Dir;
using Qor::make;
using Qor::Name;
using Qor::String8;
using Vgw::LogicalSwitch;

// Two ends of which one is out of room when it is told so.
template <class Top>
class OwedCrossing : public testing::Test {
  protected:
    OwedCrossing() { peers.mount(original, copy); }

    void copyHasRoomIs(bool has) { peers.reader.out().hasLiveBufferIs(has); }
    // Nothing goes the other way meanwhile.
    void copyHearsOfTheOriginals() { carry(peers.source, peers.reader); }
    void settle() {
        copyHasRoomIs(true);
        peers.settle();
        EXPECT_EQ(peers.source.failure + peers.reader.failure, String8());
        EXPECT_EQ(peers.source.demuxer->adapters(), peers.reader.demuxer->adapters());
        EXPECT_EQ(peers.source.demuxer->flows() + peers.reader.demuxer->flows(), 0U);
    }

    Peers peers;
    Qor::Ptr<Top> original = make<Top>(Name("top"));
    Qor::Ptr<Top> copy = make<Top>(Name("top"));
};

using OwedRow = OwedCrossing<Vgw::HwVtepOvsdb>;
using OwedSingleChild = OwedCrossing<Vgw::Status>;
using OwedEntry = OwedCrossing<Dir>;

TEST_F(OwedRow, CopysRowDoesNotStayAtTheOriginalWhereAnotherOfItsNameHidItsRemoval) {
    original->logicalSwitchIs(Name("a"));
    original->logicalSwitchDel(Name("a"));
    copy->logicalSwitchIs(Name("a"));
    copyHasRoomIs(false);
    copy->logicalSwitchDel(Name("a"));
    copyHearsOfTheOriginals();
    settle();
    EXPECT_FALSE(original->logicalSwitch(Name("a")));
    EXPECT_FALSE(copy->logicalSwitch(Name("a")));
}

// The same, with a row in its place that the copy never announced.
TEST_F(OwedRow, RowThatWasReplacedBeforeItWasHeardOfDoesNotStayAtTheOriginal) {
    original->logicalSwitchIs(Name("a"));
    original->logicalSwitchDel(Name("a"));
    copy->logicalSwitchIs(Name("a"));
    copyHasRoomIs(false);
    copy->logicalSwitchDel(Name("a"));
    copy->logicalSwitchIs(Name("a"));
    copyHearsOfTheOriginals();
    settle();
    EXPECT_FALSE(original->logicalSwitch(Name("a")));
    EXPECT_FALSE(copy->logicalSwitch(Name("a")));
}

TEST_F(OwedRow, RemovalThatACopyOwesDoesNotTakeTheOriginalsRowOfThatName) {
    original->logicalSwitchIs(Name("a"))->tunnelKeyIs(7);
    copy->logicalSwitchIs(Name("a"));
    copyHasRoomIs(false);
    copy->logicalSwitchDel(Name("a"));
    copyHearsOfTheOriginals();
    settle();
    ASSERT_TRUE(original->logicalSwitch(Name("a")));
    ASSERT_TRUE(copy->logicalSwitch(Name("a")));
    EXPECT_EQ(copy->logicalSwitch(Name("a"))->tunnelKey(), 7U);
}

TEST_F(OwedSingleChild, CopysChildDoesNotStayAtTheOriginalWhereAnotherHidItsRemoval) {
    original->ovsdbIs(Name("db"));
    original->ovsdbDel();
    copy->ovsdbIs(Name("db"));
    copyHasRoomIs(false);
    copy->ovsdbDel();
    copyHearsOfTheOriginals();
    settle();
    EXPECT_FALSE(original->ovsdb());
    EXPECT_FALSE(copy->ovsdb());
}

TEST_F(OwedEntry, CopysEntryDoesNotStayAtTheOriginalWhereAnotherOfItsNameHidItsRemoval) {
    original->entryIs(Name("a"), make<LogicalSwitch>(Name("row")));
    original->entryDel(Name("a"));
    copy->entryIs(Name("a"), make<LogicalSwitch>(Name("row")));
    copyHasRoomIs(false);
    copy->entryDel(Name("a"));
    copyHearsOfTheOriginals();
    settle();
    EXPECT_FALSE(original->entry(Name("a")));
    EXPECT_FALSE(copy->entry(Name("a")));
}

TEST_F(OwedEntry, StateThatBothChangeIsTheSameAtBoth) {
    using State = Dir::EntryState;
    original->entryIs(Name("a"), make<LogicalSwitch>(Name("row")));
    peers.settle();
    original->entryStateIs(Name("a"), State::stale);
    original->entryStateIs(Name("a"), State::ready);
    copy->entryStateIs(Name("a"), State::stale);
    settle();
    EXPECT_EQ(original->entryState(Name("a")), copy->entryState(Name("a")));
}

TEST_F(OwedEntry, StateThatCrossesNothingIsNotSentBack) {
    original->entryIs(Name("a"), make<LogicalSwitch>(Name("row")));
    peers.settle();
    copy->entryStateIs(Name("a"), Dir::EntryState::stale);
    carry(peers.reader, peers.source);
    EXPECT_EQ(original->entryState(Name("a")), Dir::EntryState::stale);
    EXPECT_TRUE(peers.source.out().unsent().empty());
}

class TornText : public OwedCrossing<LogicalSwitch> {
  protected:
    static constexpr std::size_t chunk = 32800;  // one record of a long text, a little more
    static String8 longText(char letter) { return String8(std::string(40000, letter)); }
};

TEST_F(TornText, TextIsNotTwoInOneWhereEachHadSentAPart) {
    original->descIs(longText('a'));
    copy->descIs(longText('b'));
    while (!peers.reader.out().unsent().empty()) {
        auto const bytes = takeBytes(peers.reader.out());
        peers.source.demuxer->in()->receive(bytes);
        peers.source.demuxer->serveFrames(~std::size_t{0});
    }
    peers.source.demuxer->serveFlows(~Qor::U64{0});
    settle();
    EXPECT_EQ(original->desc(), longText('b'));
    EXPECT_EQ(copy->desc(), longText('b'));
}

TEST_F(TornText, TextThatIsWrittenBetweenTwoPiecesOfThePeersIsNotLost) {
    original->descIs(longText('a'));
    peers.source.demuxer->serveFlows(~Qor::U64{0});
    copy->descIs(longText('b'));
    auto const bytes = takeBytes(peers.source.out());
    auto const& in = peers.reader.demuxer->in();
    in->receive(std::string_view(bytes).substr(0, chunk));
    peers.reader.demuxer->serveFrames(~std::size_t{0});
    copy->descIs(longText('c'));
    in->receive(std::string_view(bytes).substr(chunk));
    peers.reader.demuxer->serveFrames(~std::size_t{0});
    settle();
    EXPECT_EQ(original->desc(), copy->desc());
    EXPECT_EQ(copy->desc(), longText('c'));
}

TEST_F(OwedRow, FlowIsOverWhenTheReferenceThatItWaitedForIsRemoved) {
    auto const outside = make<Vgw::PhysicalSwitch>(Name("outside"));
    original->physicalSwitchIs("owed", outside);
    peers.settle();
    ASSERT_EQ(peers.source.demuxer->flows(), 1U);
    original->physicalSwitchDel("owed");
    settle();
}

TEST_F(OwedRow, FlowIsOverWhenTheReferenceThatItWaitedForMeansWhatThePeerKnows) {
    auto const known = original->physicalSwitchRawIs(Name("known"));
    original->physicalSwitchIs("owed", make<Vgw::PhysicalSwitch>(Name("outside")));
    peers.settle();
    ASSERT_EQ(peers.source.demuxer->flows(), 1U);
    original->physicalSwitchIs("owed", known);
    settle();
    EXPECT_TRUE(copy->physicalSwitch("owed"));
}

}  // namespace
