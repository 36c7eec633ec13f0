// Entries of a class that one end does not know: what stood under their names gives way as to any
// other, and a copy hears of what its original leaves out.
#include "Peers.h"

#include <qor/attrlog/dir/DirAdapter.h>
#include <vgw/attrlog/HwVtepOvsdb.h>
#include <vgw/attrlog/LogicalSwitch.h>

#include <gtest/gtest.h>

#include <string>

namespace {

using Qor::Dir;
using Qor::Entity;
using Qor::make;
using Qor::Name;
using Vgw::HwVtepOvsdb;

class UnknownClass : public testing::Test {
  protected:
    struct Names {
        std::string_view known;
        std::string_view unknown;
    };

    UnknownClass() { peers.mount(original, copy); }

    // As carry(), to a peer that does not know of the class while `isLacking`.
    void go(Peer& from, Peer& to) const {
        from.demuxer->serveFlows(~Qor::U64{0});
        std::string bytes = takeBytes(from.out());
        auto const& [known, unknown] = replaced;
        for (std::size_t at = 0; isLacking && (at = bytes.find(known, at)) != std::string::npos;) {
            bytes.replace(at, known.size(), unknown);
        }
        for (std::string_view rest = bytes; !rest.empty() && !to.demuxer->hasFailed();) {
            rest.remove_prefix(to.demuxer->in()->receive(rest));
            to.demuxer->serveFrames(~std::size_t{0});
        }
    }
    void down() { go(peers.source, peers.reader); }
    void up() { go(peers.reader, peers.source); }
    void settle() {
        for (int turn = 0; turn < 10; ++turn) {
            down();
            up();
        }
        EXPECT_EQ(peers.source.failure + peers.reader.failure, Qor::String8());
        EXPECT_EQ(peers.source.demuxer->flows() + peers.reader.demuxer->flows(), 0U);
    }
    static Qor::Ptr<Entity> enter(Qor::Ptr<Dir> const& dir, Qor::Ptr<Entity> const& entity) {
        dir->entryIs(a, entity);
        return entity;
    }
    static Qor::Ptr<Entity> aDatabase() { return make<HwVtepOvsdb>(a); }
    static Qor::Ptr<Entity> aDirectory() { return make<Dir>(a); }
    Qor::U64 leftOutBy(Peer const& peer) const { return peer.demuxer->counters().unknownClasses; }

    static inline Name const a{"a"};
    bool isLacking = true;
    Names replaced{"Vgw::HwVtepOvsdb", "Vgw::HwVtepOvsdX"};
    Peers peers;
    Qor::Ptr<Dir> original = make<Dir>(Name("dir"));
    Qor::Ptr<Dir> copy = make<Dir>(Name("dir"));
};

TEST_F(UnknownClass, EntryIsLeftOutAndCounted) {
    enter(original, aDatabase());
    settle();
    EXPECT_FALSE(copy->entry(a));
    EXPECT_TRUE(original->entry(a));
    EXPECT_EQ(leftOutBy(peers.reader), 1U);
}

// It was kept, and stood there for ever although it had gone at the original.
TEST_F(UnknownClass, WhatTheOriginalReplacedByItGoesAtTheCopy) {
    enter(original, aDirectory());
    settle();
    ASSERT_TRUE(copy->entry(a));
    enter(original, aDatabase());
    settle();
    EXPECT_FALSE(copy->entry(a));
    auto const last = enter(original, aDirectory());
    settle();
    ASSERT_TRUE(copy->entry(a));
    EXPECT_EQ(original->entry(a), last);
}

TEST_F(UnknownClass, WhatTheCopyMadeMeanwhileGivesWay) {
    enter(copy, aDirectory());
    auto const stays = enter(original, aDatabase());
    settle();
    EXPECT_FALSE(copy->entry(a));
    EXPECT_EQ(original->entry(a), stays);
}

TEST_F(UnknownClass, WhatTheCopyMadeAndTheOriginalTookGivesWay) {
    enter(copy, aDirectory());
    up();
    ASSERT_TRUE(original->entry(a));
    enter(original, aDatabase());
    settle();
    EXPECT_FALSE(copy->entry(a));
    EXPECT_TRUE(original->entry(a));
}

// The copy held it for ever, and nobody else did.
TEST_F(UnknownClass, CopyHearsThatItsEntryWasNotTaken) {
    enter(copy, aDatabase());
    settle();
    EXPECT_EQ(leftOutBy(peers.source), 1U);
    EXPECT_FALSE(original->entry(a));
    EXPECT_FALSE(copy->entry(a));
    auto const made = enter(copy, aDirectory());
    settle();
    EXPECT_EQ(copy->entry(a), made);
    EXPECT_TRUE(original->entry(a));
}

TEST_F(UnknownClass, WhatIsWrittenBelowAnEntryThatWasNotTakenLeadsToNothing) {
    auto const made = make<HwVtepOvsdb>(a);
    enter(copy, made);
    auto const below = made->logicalSwitchIs(Name("b"));
    up();
    below->tunnelKeyIs(8);
    below->descIs(std::string_view(std::string(40000, 'x')));
    made->logicalSwitchIs(Name("c"));
    settle();
    EXPECT_FALSE(original->entry(a));
    EXPECT_FALSE(copy->entry(a));
    EXPECT_EQ(peers.source.demuxer->openText(), 0U);
    EXPECT_FALSE(peers.source.demuxer->hasFlowsIn());
}

TEST_F(UnknownClass, WhatTheCopyReplacedByItGoesAtBothEnds) {
    enter(original, aDirectory());
    settle();
    enter(copy, aDatabase());
    settle();
    EXPECT_FALSE(original->entry(a));
    EXPECT_FALSE(copy->entry(a));
    EXPECT_EQ(peers.source.demuxer->adapters(), peers.reader.demuxer->adapters());
}

TEST_F(UnknownClass, NextEntryOfTheNameIsNotTakenForTheOneThatWasLeftOut) {
    enter(copy, aDatabase());
    up();
    auto const next = enter(copy, aDirectory());
    settle();
    EXPECT_EQ(copy->entry(a), next);
    EXPECT_TRUE(original->entry(a));
}

TEST_F(UnknownClass, OriginalsOwnStaysWhereItsAnnouncementCrossesTheCopys) {
    enter(copy, aDatabase());
    auto const stays = enter(original, aDirectory());
    settle();
    EXPECT_EQ(original->entry(a), stays);
    EXPECT_TRUE(Qor::dynamicCast<Dir>(copy->entry(a)));
    EXPECT_EQ(peers.source.demuxer->adapters(), peers.reader.demuxer->adapters());
}

TEST_F(UnknownClass, EntryThatWasNotTakenIsNotTakenLaterEither) {
    enter(copy, aDatabase());
    up();
    isLacking = false;  // the class comes while the removal is on its way
    copy->entryStateIs(a, Dir::EntryState::released);
    up();
    settle();
    EXPECT_EQ(!original->entry(a), !copy->entry(a));
    enter(copy, aDatabase());
    settle();
    EXPECT_TRUE(original->entry(a));
    EXPECT_TRUE(copy->entry(a));
}

TEST_F(UnknownClass, CopyTakesWhatItLeftOutWhenItIsAnnouncedAgain) {
    enter(original, aDatabase());
    settle();
    isLacking = false;
    original->entryStateIs(a, Dir::EntryState::released);
    settle();
    EXPECT_TRUE(copy->entry(a));
}

// The original held a row of the class above, without what the copy had beside that, and both for
// ever.
TEST_F(UnknownClass, OriginalHoldsNothingAsLessThanItsWriterMadeIt) {
    replaced = {"Vgw::LogicalSwitch", "Vgw::LogicalSwitcX"};
    enter(copy, make<Vgw::LogicalSwitch>(a));
    copy->entryIs(Name("b"), make<Vgw::LogicalSwitch>(Name("b")));
    settle();
    EXPECT_EQ(original->entrys(), 0U);
    EXPECT_EQ(copy->entrys(), 0U);
    enter(original, make<Vgw::LogicalSwitch>(a));
    settle();
    ASSERT_TRUE(copy->entry(a));
    EXPECT_EQ(copy->entry(a)->fwkType()->fullName(), "Vgw::OvsdbDataModel");
}

}  // namespace
