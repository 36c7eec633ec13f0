#include <tests/unit/collections/TestMember.h>

#include <gtest/gtest.h>

#include <set>

using namespace Sample;

namespace {

using Telling = TellingIterator<PlaceKey>;

class MapDeleteAll : public testing::Test {
  protected:
    void have(U32 count) {
        for (U32 i = 0; i < count; ++i) {
            add(map, Qor::bitReverse(i));
        }
    }
    PlaceMap map;
};

TEST_F(MapDeleteAll, RemovesAllInTheOrderOfTheMapAndTellsEachOnce) {
    have(100);
    auto const expected = keys(map);
    Telling walk(&map);
    walk.deleteAll();
    EXPECT_EQ(walk.told, expected);
    EXPECT_EQ(map.size(), 0U);
    EXPECT_FALSE(walk);
}

TEST_F(MapDeleteAll, OfAnEmptyMapTellsNothing) {
    Telling walk(&map);
    walk.deleteAll();
    EXPECT_TRUE(walk.told.empty());
    EXPECT_FALSE(map.bulkDelete());
}

TEST_F(MapDeleteAll, BeginsWhereTheIteratorStandsAndThenTakesTheRest) {
    have(4);
    auto const order = keys(map);
    Telling walk(&map);
    ++walk;
    ++walk;
    walk.deleteAll();
    EXPECT_EQ(walk.told, (std::vector<PlaceKey>{order[2], order[3], order[0], order[1]}));
    EXPECT_EQ(map.size(), 0U);
}

TEST_F(MapDeleteAll, AtTheEndTakesAll) {
    have(4);
    auto const order = keys(map);
    Telling walk(&map);
    while (walk) {
        ++walk;
    }
    walk.deleteAll();
    EXPECT_EQ(walk.told, order);
}

TEST_F(MapDeleteAll, ShrinksOnceAtItsEnd) {
    have(256);
    std::set<U32> bucketCounts;
    Telling walk(&map);
    walk.react = [&](PlaceNode&) {
        EXPECT_TRUE(map.bulkDelete());
        bucketCounts.insert(map.bucketCount());
    };
    walk.deleteAll();
    EXPECT_EQ(bucketCounts, std::set<U32>{256});
    EXPECT_EQ(map.bucketCount(), 1U);
    EXPECT_FALSE(map.bulkDelete());
}

TEST_F(MapDeleteAll, RemovesWhatIsAddedBehindMeanwhile) {
    have(4);
    Telling walk(&map);
    int more = 10;
    walk.react = [&](PlaceNode&) {
        if (more-- > 0) {
            add(map, 0xFFFFFFFF, static_cast<U32>(more));
        }
    };
    walk.deleteAll();
    EXPECT_EQ(walk.told.size(), 14U);
    EXPECT_EQ(map.size(), 0U);
}

TEST_F(MapDeleteAll, RemovesWhatIsAddedBeforeMeanwhile) {
    have(4);
    Telling walk(&map);
    int more = 10;
    walk.react = [&](PlaceNode&) {
        if (more-- > 0) {
            add(map, 0, static_cast<U32>(more) + 1);
        }
    };
    walk.deleteAll();
    EXPECT_EQ(walk.told.size(), 14U);
    EXPECT_EQ(map.size(), 0U);
}

TEST_F(MapDeleteAll, MemberThatIsAddedAgainWhileItIsToldIsToldAgain) {
    have(3);
    Telling walk(&map);
    bool again = true;
    walk.react = [&](PlaceNode& gone) {
        if (std::exchange(again, false)) {
            map.newMember(PlaceNode::Ptr(&gone), gone.fwkHash());
        }
    };
    walk.deleteAll();
    EXPECT_EQ(walk.told.size(), 4U);
    EXPECT_EQ(map.size(), 0U);
}

TEST_F(MapDeleteAll, MemberThatAHandlerRemovesIsToldOnceByThatOne) {
    have(8);
    Telling walk(&map);
    std::vector<PlaceKey> removedByHandler;
    walk.react = [&](PlaceNode&) {
        // The one on which the bulk removal stands by now.
        if (PlaceNode* const next = map.startAtHash({0, 0})) {
            removedByHandler.push_back(next->fwkKey());
            map.deleteMember(*next);
        }
    };
    walk.deleteAll();
    EXPECT_EQ(walk.told.size(), 4U);
    EXPECT_EQ(removedByHandler.size(), 4U);
    auto all = walk.told;
    all.insert(all.end(), removedByHandler.begin(), removedByHandler.end());
    std::set<U32> distinct;
    for (auto const& key : all) {
        distinct.insert(key.place);
    }
    EXPECT_EQ(distinct.size(), 8U);
}

TEST_F(MapDeleteAll, HandlerMayRemoveAllTheRest) {
    have(8);
    Telling walk(&map);
    walk.react = [&](PlaceNode&) { map.emptyAllBucketsG(PlaceMap::qorVTable()); };
    walk.deleteAll();
    EXPECT_EQ(walk.told.size(), 1U);
    EXPECT_EQ(map.size(), 0U);
}

TEST_F(MapDeleteAll, WithinItselfTellsEachOnceAndLeavesTheShrinkingToTheOuter) {
    have(64);
    Telling outer(&map);
    Telling inner(&map);
    std::set<U32> bucketCounts;
    int calls = 0;
    inner.react = [&](PlaceNode&) { bucketCounts.insert(map.bucketCount()); };
    outer.react = [&](PlaceNode&) {
        if (calls++ == 0) {
            inner.deleteAll();
            EXPECT_TRUE(map.bulkDelete());
            have(3);
        }
        bucketCounts.insert(map.bucketCount());
    };
    outer.deleteAll();
    EXPECT_EQ(inner.told.size(), 63U);
    EXPECT_EQ(outer.told.size(), 4U);
    EXPECT_EQ(bucketCounts, std::set<U32>{64});
    EXPECT_EQ(map.bucketCount(), 1U);
}

TEST_F(MapDeleteAll, AfterASingleRemovalGoesOnWithTheSuccessor) {
    have(8);
    auto const order = keys(map);
    Telling walk(&map);
    walk.del();
    walk.deleteAll();
    EXPECT_EQ(walk.told, order);
    EXPECT_EQ(map.size(), 0U);
}

TEST_F(MapDeleteAll, OtherIteratorsEnd) {
    have(8);
    PlaceMap::IteratorConst other(&map);
    ++other;
    Telling(&map).deleteAll();
    EXPECT_TRUE(other);
    ++other;
    EXPECT_FALSE(other);
}

TEST_F(MapDeleteAll, EachMemberEndsOnce) {
    int const before = PlaceNode::living;
    have(100);
    Telling(&map).deleteAll();
    EXPECT_EQ(PlaceNode::living, before);
}

}  // namespace
