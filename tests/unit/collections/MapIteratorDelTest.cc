#include <tests/unit/collections/TestMember.h>

#include <gtest/gtest.h>

using namespace Sample;

namespace {

using Telling = TellingIterator<PlaceKey>;

class MapIteratorDel : public testing::Test {
  protected:
    MapIteratorDel() {
        for (U32 i = 1; i <= 4; ++i) {
            add(map, i << 28);
        }
    }
    static std::vector<PlaceKey> ats(std::vector<U32> list) {
        for (U32& i : list) {
            i <<= 28;
        }
        return places(list);
    }
    PlaceMap map;
};

TEST_F(MapIteratorDel, RemovesAndTellsTheCurrent) {
    Telling walk(&map);
    ++walk;
    walk.del();
    EXPECT_EQ(walk.told, ats({2}));
    EXPECT_EQ(keys(map), ats({1, 3, 4}));
}

TEST_F(MapIteratorDel, TheStepThatFollowsGoesToTheSuccessor) {
    Telling walk(&map);
    ++walk;
    walk.del();
    ++walk;
    EXPECT_EQ(walk.key().place, 3U << 28);
    ++walk;
    EXPECT_EQ(walk.key().place, 4U << 28);
}

TEST_F(MapIteratorDel, EachMemberCanBeRemovedInALoop) {
    Telling walk(&map);
    for (; walk; ++walk) {
        walk.del();
    }
    EXPECT_EQ(walk.told, ats({1, 2, 3, 4}));
    EXPECT_EQ(map.size(), 0U);
}

TEST_F(MapIteratorDel, TwiceAtOnePlaceRemovesOne) {
    Telling walk(&map);
    walk.del();
    walk.del();
    EXPECT_EQ(walk.told, ats({1}));
    EXPECT_EQ(map.size(), 3U);
}

TEST_F(MapIteratorDel, AtTheEndDoesNothing) {
    Telling walk(&map, {0xF0000000, 0});
    walk.del();
    EXPECT_TRUE(walk.told.empty());
    EXPECT_EQ(map.size(), 4U);
}

TEST_F(MapIteratorDel, MemberThatIsGoneAlreadyIsNotTold) {
    Telling walk(&map);
    map.memberDel({1U << 28, 0});
    walk.del();
    EXPECT_TRUE(walk.told.empty());
    ++walk;
    EXPECT_EQ(rest(walk), ats({2, 3, 4}));
}

TEST_F(MapIteratorDel, AnotherMemberOfTheSameKeyIsLeft) {
    Telling walk(&map);
    map.memberDel({1U << 28, 0});
    add(map, 1U << 28);
    walk.del();
    EXPECT_TRUE(walk.told.empty());
    EXPECT_EQ(map.size(), 4U);
}

TEST_F(MapIteratorDel, LeavesNoBookmarkUntilTheNextStep) {
    Telling walk(&map);
    EXPECT_TRUE(walk.hasBookmark());
    walk.del();
    EXPECT_FALSE(walk.hasBookmark());
    ++walk;
    EXPECT_TRUE(walk.hasBookmark());
}

TEST_F(MapIteratorDel, WhatTheTellingAddsInFrontOfTheNextMemberIsNotMet) {
    Telling walk(&map);
    walk.react = [this](PlaceNode&) { add(map, (1U << 28) + 1); };
    walk.del();
    ++walk;
    EXPECT_EQ(rest(walk), ats({2, 3, 4}));
    EXPECT_EQ(map.size(), 4U);
}

TEST_F(MapIteratorDel, WhatTheTellingAddsBehindTheNextMemberIsMet) {
    Telling walk(&map);
    walk.react = [this](PlaceNode&) { add(map, (2U << 28) + 1); };
    walk.del();
    ++walk;
    EXPECT_EQ(walk.key().place, 2U << 28);
    EXPECT_EQ(rest(walk).size(), 4U);
}

TEST_F(MapIteratorDel, WhatTheTellingOfTheLastOneAddsIsNotMet) {
    Telling walk(&map, {4U << 28, 0});
    walk.react = [this](PlaceNode&) { add(map, 5U << 28); };
    walk.del();
    ++walk;
    EXPECT_FALSE(walk);
    EXPECT_EQ(map.size(), 4U);
}

TEST_F(MapIteratorDel, WhatTheTellingRemovesIsNotMet) {
    Telling walk(&map);
    walk.react = [this](PlaceNode&) {
        map.memberDel({2U << 28, 0});
        map.memberDel({3U << 28, 0});
    };
    walk.del();
    ++walk;
    EXPECT_EQ(rest(walk), ats({4}));
}

TEST_F(MapIteratorDel, RemovedMemberMayBeAddedAgainWhileItIsTold) {
    Telling walk(&map);
    walk.react = [this](PlaceNode& gone) { map.newMember(PlaceNode::Ptr(&gone), gone.fwkHash()); };
    walk.del();
    EXPECT_EQ(map.size(), 4U);
    ++walk;
    EXPECT_EQ(rest(walk), ats({2, 3, 4}));
}

TEST_F(MapIteratorDel, ResetForgetsTheRemoval) {
    Telling walk(&map);
    ++walk;
    walk.del();
    walk.reset();
    EXPECT_EQ(rest(walk), ats({1, 3, 4}));
    EXPECT_TRUE(walk.hasBookmark());
    walk.del();
    EXPECT_EQ(walk.told, ats({2, 1}));
}

TEST_F(MapIteratorDel, OtherIteratorsGoOnFromTheRemovedMember) {
    PlaceMap::IteratorConst other(&map);
    ++other;
    Telling walk(&map);
    ++walk;
    walk.del();
    ++walk;
    walk.del();
    ++other;
    EXPECT_EQ(rest(other), ats({4}));
}

TEST_F(MapIteratorDel, ManyRemovalsShrinkTheBuckets) {
    for (U32 i = 0; i < 1000; ++i) {
        add(map, i, i + 1);
    }
    U32 const before = map.bucketCount();
    Telling walk(&map);
    for (; walk; ++walk) {
        walk.del();
    }
    EXPECT_EQ(walk.told.size(), 1004U);
    EXPECT_EQ(before, 1024U);
    EXPECT_EQ(map.bucketCount(), 1U);
}

}  // namespace
