// Classes that a session meets when it has mounted already, and what it left out of them.
#include "Described.h"
#include "PlayedPeer.h"

#include <algorithm>

namespace {

using namespace Played;

class LateClasses : public Played::Peer {
  protected:
    LateClasses() {
        hello();
        link(12, U32{1}, U32{0});
        turn();
        mount = reader->mount("/dir", false);
        orphanDir(mount, dirId);
        turn();
    }
    Qor::Ptr<Qor::Dir> copy() const { return Qor::dynamicCast<Qor::Dir>(reader->mounted(mount)); }
    void announce(std::string const& key, std::string const& type, EntityId const& dir) {
        nextId += 2;
        entry(dir, key.c_str(), EntityId(peers | nextId), type.c_str());
    }
    void announce(std::string const& key, std::string const& type) { announce(key, type, dirId); }

    MountId mount = 0;
    Qor::U64 nextId = 101;
    Said const again{"unmount 1", "mount 2 /dir"};
};

// The peer takes so many, and ended the connection at the next.
TEST_F(LateClasses, MoreThanThePeerTakesQuestionsForAreAskedForInTurn) {
    constexpr U32 most = 16;
    constexpr U32 classes = 40;
    auto const name = [](U32 of) { return "T::Many" + std::to_string(of); };
    for (U32 i = 0; i < classes; ++i) announce(std::to_string(i), name(i));
    U32 asked = 1;
    U32 answered = 1;
    for (Said said = turn(); said != again; said = turn()) {
        for (auto const& one : said) {
            EXPECT_EQ(one, "describe " + std::to_string(asked + 1) + " " + name(asked - 1));
            ++asked;
        }
        ASSERT_EQ(asked - answered, std::min(most, classes + 1 - answered));
        ++answered;
        describe(answered, lamp(name(answered - 2).c_str()));
        link(12, U32{answered}, U32{1});
    }
    EXPECT_EQ(answered, classes + 1) << "mounted again once, when all are there";
    for (U32 i = 0; i < classes; ++i) EXPECT_TRUE(Qor::QorType::type(Name(name(i))));
}

TEST_F(LateClasses, WhatAnAnswerBroughtAlongIsNotAskedFor) {
    for (U32 i = 0; i < 17; ++i) announce(std::to_string(i), "T::Along" + std::to_string(i));
    EXPECT_EQ(turn().size(), 16U);
    describe(2, lamp("T::Along0"));
    describe(2, lamp("T::Along16"));
    link(12, U32{2}, U32{2});
    EXPECT_EQ(turn(), Said{});
    for (U32 number = 3; number <= 17; ++number) link(12, number, U32{0});
    EXPECT_EQ(turn(), again);
}

// It was left out for ever.
TEST_F(LateClasses, WhatOneAnswerBroughtIsMountedAgainAlthoughTheNextBringsNothing) {
    announce("x", "T::Told");
    announce("y", "T::Untold");
    EXPECT_EQ(turn(), (Said{"describe 2 T::Told", "describe 3 T::Untold"}));
    describe(2, lamp("T::Told"));
    link(12, U32{2}, U32{1});
    EXPECT_EQ(turn(), Said{});
    link(12, U32{3}, U32{0});
    EXPECT_EQ(turn(), again);
    orphanDir(2, laterDirId);
    announce("x", "T::Told", laterDirId);
    turn();
    ASSERT_TRUE(copy());
    EXPECT_TRUE(copy()->entry(Name("x")));
}

TEST_F(LateClasses, AnswerThatDoesNotBringWhatIsLackedMountsNothingAgain) {
    announce("x", "T::Wanted");
    turn();
    describe(2, lamp("T::Unwanted"));
    link(12, U32{2}, U32{1});
    EXPECT_EQ(turn(), Said{});
}

// It was left out for ever.
TEST_F(LateClasses, ClassThatBecameKnownElsewhereIsMountedAgain) {
    announce("x", "T::Elsewhere");
    turn();
    link(12, U32{2}, U32{0});
    EXPECT_EQ(turn(), Said{});
    EXPECT_FALSE(reader->wantsWrite());
    Described::take({lamp("T::Elsewhere")});
    EXPECT_TRUE(reader->wantsWrite()) << "service() is due, whether anything comes or not";
    EXPECT_EQ(turn(), again);
    EXPECT_FALSE(reader->wantsWrite());
    orphanDir(2, laterDirId);
    announce("x", "T::Elsewhere", laterDirId);
    turn();
    ASSERT_TRUE(copy());
    EXPECT_TRUE(copy()->entry(Name("x")));
    Described::take({lamp("T::NothingToIt")});
    EXPECT_FALSE(reader->wantsWrite());
    EXPECT_EQ(turn(), Said{});
}

// Each took 32 KB here, and as many on the way.
TEST_F(LateClasses, NameThatNoDescriptionCanHaveIsNotAskedFor) {
    announce("x", "T::" + std::string(253, 'x'));
    announce("y", "T::An odd one");
    EXPECT_EQ(turn(), Said{});
    announce("z", "T::" + std::string(252, 'x'));
    EXPECT_EQ(turn().size(), 1U);
    EXPECT_EQ(reader->demuxer().counters().unknownClasses, 3U);
}

// It was lost: the original's state has the last word where a copy is mounted.
TEST_F(LateClasses, WhatIsStillToBeSentOfACopyGoesBeforeItIsMountedAgain) {
    MountId const other = reader->mount("/other", true);
    orphanDir(other, EntityId(peers | 41));
    turn();
    auto const written = Qor::dynamicCast<Qor::Dir>(reader->mounted(other));
    ASSERT_TRUE(written);
    announce("x", "T::Meanwhile");
    turn();
    describe(2, lamp("T::Meanwhile"));
    link(12, U32{2}, U32{1});
    reader->demuxer().out()->hasLiveBufferIs(false);
    written->entryIs(Name("mine"), make<Qor::Dir>(Name("mine")));
    EXPECT_EQ(reader->demuxer().flows(), 1U);
    reader->demuxer().out()->hasLiveBufferIs(true);
    tellsRecords = true;
    EXPECT_EQ(turn(), (Said{"record", "record", "unmount 1", "unmount 2", "mount 3 /dir",
                            "mount 4 /other"}));
}

// The copy that it told of was not there, or not all of it.
TEST_F(LateClasses, EndOfAStateThatWasGivenBackIsNotToldOf) {
    MountId const other = reader->mount("/lamp", false);
    turn();
    orphan(other, EntityId(peers | 21), "T::Root");
    link(4, other);
    EXPECT_EQ(turn(), (Said{"describe 2 T::Root", "unmount 2"}));
    EXPECT_EQ(heard.synced, 0);
    describe(2, lamp("T::Root"));
    link(12, U32{2}, U32{1});
    link(4, mount);
    EXPECT_EQ(turn(), (Said{"unmount 1", "mount 3 /dir", "mount 4 /lamp"}));
    EXPECT_EQ(heard.synced, 0);
    orphan(4, EntityId(peers | 23), "T::Root");
    link(4, U32{4});
    turn();
    EXPECT_EQ(heard.synced, 1);
}

// It was taken for the answer to what was asked last, and what came then had nobody to go to.
TEST_F(LateClasses, RefusalThatCrossesAMountMadeAgainIsNotItsAnswer) {
    MountId const other = reader->mount("/later", false);
    announce("x", "T::Crossed");
    turn();
    describe(2, lamp("T::Crossed"));
    link(12, U32{2}, U32{1});
    EXPECT_EQ(turn(), (Said{"unmount 1", "unmount 2", "mount 3 /dir", "mount 4 /later"}));
    link(5, U32{2}, String8("/later does not exist"));
    orphanDir(4, EntityId(peers | 25));
    EXPECT_EQ(turn(), Said{});
    EXPECT_EQ(heard.refused, String8());
    EXPECT_TRUE(reader->mounted(other));
    link(5, U32{3}, String8("/dir is gone"));
    turn();
    EXPECT_EQ(heard.refused, "/dir is gone");
    EXPECT_FALSE(reader->mounted(mount));
}

}  // namespace
