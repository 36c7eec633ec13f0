#include <tests/unit/collections/TestMember.h>

#include <qor/collections/Members.h>

#include <gtest/gtest.h>

using namespace Sample;

namespace {

class MapIterator : public testing::Test {
  protected:
    // Members at the places 0x10000000, 0x20000000 and so on.
    void have(U32 count) {
        for (U32 i = 1; i <= count; ++i) {
            add(map, at(i));
        }
    }
    static U32 at(U32 i) { return i << 28; }
    void remove(U32 i) { ASSERT_TRUE(map.memberDel({at(i), 0})); }
    static std::vector<PlaceKey> ats(std::vector<U32> list) {
        for (U32& i : list) {
            i = at(i);
        }
        return places(list);
    }

    PlaceMap map;
};

TEST_F(MapIterator, WithoutAMapIsAtItsEnd) {
    PlaceMap::IteratorConst walk;
    EXPECT_FALSE(walk);
    ++walk;
    walk.reset();
    EXPECT_FALSE(walk);
    EXPECT_FALSE(walk.hasBookmark());
}

TEST_F(MapIterator, OfAnEmptyMapIsAtItsEnd) {
    PlaceMap::IteratorConst walk(&map);
    EXPECT_FALSE(walk);
    ++walk;
    EXPECT_FALSE(walk);
}

TEST_F(MapIterator, HoldsTheMemberItStandsOnFromItsRemovalOn) {
    have(2);
    PlaceMap::IteratorConst walk(&map);
    PlaceNode* const first = walk.operator->();
    EXPECT_EQ(first->qorRefs(), 1U);
    {
        auto const removed = map.memberDel({at(1), 0});
        EXPECT_EQ(first->qorRefs(), 2U);
    }
    EXPECT_EQ(first->qorRefs(), 1U);
    int const living = PlaceNode::living;
    ++walk;
    EXPECT_EQ(PlaceNode::living, living - 1);
}

TEST_F(MapIterator, EachIteratorOnARemovedMemberHoldsItOnItsOwn) {
    have(2);
    PlaceMap::IteratorConst walk(&map);
    PlaceMap::IteratorConst other(&map);
    PlaceMap::IteratorConst elsewhere(&map);
    ++elsewhere;
    auto const removed = map.memberDel({at(1), 0});
    EXPECT_EQ(removed->qorRefs(), 3U);
    PlaceMap::IteratorConst const copy(other);
    EXPECT_EQ(removed->qorRefs(), 4U);
    other = elsewhere;
    EXPECT_EQ(removed->qorRefs(), 3U);
    walk.reset();
    EXPECT_EQ(removed->qorRefs(), 2U);
    EXPECT_EQ(walk.key().place, at(2));
}

TEST_F(MapIterator, OutlivesItsMap) {
    int const living = PlaceNode::living;
    PlaceMap::IteratorConst atFirst;
    PlaceMap::IteratorConst atEnd;
    {
        PlaceMap other;
        add(other, at(1));
        add(other, at(2));
        atFirst = PlaceMap::IteratorConst(&other);
        atEnd = PlaceMap::IteratorConst(&other, {at(3), 0});
    }
    EXPECT_EQ(PlaceNode::living, living + 1);
    EXPECT_EQ(atFirst.key().place, at(1));
    PlaceMap::IteratorConst copy(atFirst);
    ++copy;
    EXPECT_FALSE(copy);
    atFirst.reset();
    EXPECT_FALSE(atFirst);
    EXPECT_FALSE(atEnd);
    EXPECT_EQ(PlaceNode::living, living);
}

TEST_F(MapIterator, EndOfARemovedMemberMayRemoveItsSuccessor) {
    have(3);
    PlaceMap::IteratorConst walk(&map);
    walk->onEnd = [&] { remove(2); };
    remove(1);
    ++walk;
    EXPECT_EQ(walk.key().place, at(2));
    ++walk;
    EXPECT_EQ(rest(walk), ats({3}));
}

TEST_F(MapIterator, InsertionBeforeTheCurrentIsNotSeen) {
    have(3);
    PlaceMap::IteratorConst walk(&map);
    ++walk;
    add(map, at(1) + 5);
    add(map, 0);
    EXPECT_EQ(rest(walk), ats({2, 3}));
}

TEST_F(MapIterator, InsertionAfterTheCurrentIsSeenOnce) {
    have(3);
    PlaceMap::IteratorConst walk(&map);
    ++walk;
    add(map, at(2) + 5);
    add(map, at(9));
    EXPECT_EQ(rest(walk), places({at(2), at(2) + 5, at(3), at(9)}));
}

TEST_F(MapIterator, InsertionAtEachStepAfterTheCurrentIsSeen) {
    have(1);
    PlaceMap::IteratorConst walk(&map);
    for (U32 i = 2; i <= 15; ++i) {
        add(map, at(i));
        ++walk;
        ASSERT_TRUE(walk);
        EXPECT_EQ(walk.key().place, at(i));
    }
    ++walk;
    EXPECT_FALSE(walk);
}

TEST_F(MapIterator, RemovedCurrentLeadsToItsSuccessor) {
    have(4);
    PlaceMap::IteratorConst walk(&map);
    ++walk;
    remove(2);
    EXPECT_EQ(walk.key().place, at(2));
    ++walk;
    EXPECT_EQ(rest(walk), ats({3, 4}));
}

TEST_F(MapIterator, RemovedCurrentAndSuccessorsLeadToWhatIsLeft) {
    have(6);
    PlaceMap::IteratorConst walk(&map);
    ++walk;
    remove(2);
    remove(3);
    remove(1);
    remove(4);
    ++walk;
    EXPECT_EQ(rest(walk), ats({5, 6}));
}

TEST_F(MapIterator, RemovedCurrentThatIsAddedAgainIsNotMetAgain) {
    have(3);
    PlaceMap::IteratorConst walk(&map);
    ++walk;
    remove(2);
    add(map, at(2));
    ++walk;
    EXPECT_EQ(rest(walk), ats({3}));
}

TEST_F(MapIterator, RemovedLastLeadsToTheEnd) {
    have(2);
    PlaceMap::IteratorConst walk(&map);
    ++walk;
    remove(2);
    ++walk;
    EXPECT_FALSE(walk);
}

TEST_F(MapIterator, AllRemovedLeadsToTheEnd) {
    have(8);
    PlaceMap::IteratorConst walk(&map);
    map.emptyAllBucketsG(PlaceMap::qorVTable());
    EXPECT_TRUE(walk);
    ++walk;
    EXPECT_FALSE(walk);
}

TEST_F(MapIterator, MemberThatMovedToAnotherMapLeadsOnInThisOne) {
    have(3);
    PlaceMap other;
    PlaceMap::IteratorConst walk(&map);
    ++walk;
    auto const moved = map.memberDel({at(2), 0});
    add(other, at(2) + 1);
    other.newMember(moved, moved->fwkHash());
    ++walk;
    EXPECT_EQ(rest(walk), ats({3}));
}

TEST_F(MapIterator, DoublingDuringAWalkDoesNotDisturbIt) {
    have(8);
    PlaceMap::IteratorConst walk(&map);
    std::vector<PlaceKey> met;
    U32 extra = 0;
    for (; walk; ++walk) {
        met.push_back(walk.key());
        U32 const before = map.bucketCount();
        while (map.bucketCount() == before && extra < 4000) {
            add(map, 1, extra++);  // all before what is met
        }
    }
    EXPECT_EQ(met, ats({1, 2, 3, 4, 5, 6, 7, 8}));
    EXPECT_GE(map.bucketCount(), 1024U);
}

TEST_F(MapIterator, ShrinkingDuringAWalkDoesNotDisturbIt) {
    have(8);
    for (U32 i = 0; i < 1000; ++i) {
        add(map, 1, i);
    }
    PlaceMap::IteratorConst walk(&map, {at(1), 0});
    std::vector<PlaceKey> met;
    U32 extra = 1000;
    for (; walk; ++walk) {
        met.push_back(walk.key());
        for (U32 const stop = extra > 130 ? extra - 130 : 0; extra > stop;) {
            ASSERT_TRUE(map.memberDel({1, --extra}));
        }
    }
    EXPECT_EQ(met, ats({1, 2, 3, 4, 5, 6, 7, 8}));
    EXPECT_LE(map.bucketCount(), 32U);
}

TEST_F(MapIterator, ResetGoesBackToTheFirst) {
    have(3);
    PlaceMap::IteratorConst walk(&map);
    ++walk;
    ++walk;
    ++walk;
    EXPECT_FALSE(walk);
    add(map, 5);
    walk.reset();
    EXPECT_EQ(rest(walk).size(), 4U);
}

TEST_F(MapIterator, CopiesWalkOnTheirOwn) {
    have(3);
    PlaceMap::IteratorConst walk(&map);
    PlaceMap::IteratorConst copy(walk);
    ++walk;
    EXPECT_EQ(rest(copy), ats({1, 2, 3}));
    copy = walk;
    EXPECT_EQ(rest(copy), ats({2, 3}));
}

TEST_F(MapIterator, AtItsEndStaysThere) {
    have(1);
    PlaceMap::IteratorConst walk(&map);
    ++walk;
    add(map, at(5));
    ++walk;
    EXPECT_FALSE(walk);
}

TEST_F(MapIterator, BookmarkIsAKeyThatIsNotTheEmptyOne) {
    using Member = Qor::ValueMember<Qor::U16, bool>;
    Qor::HashMap<Member, Qor::U16> vlans;
    for (Qor::U16 const vlan : {Qor::U16{0}, Qor::U16{7}}) {
        auto const member = Qor::make<Member>(vlan, true);
        vlans.newMember(member, member->fwkHash());
    }
    Qor::HashMap<Member, Qor::U16>::IteratorConst walk(&vlans);
    EXPECT_EQ(walk.key(), 0);
    EXPECT_FALSE(walk.hasBookmark());
    ++walk;
    EXPECT_EQ(walk.key(), 7);
    EXPECT_TRUE(walk.hasBookmark());
    ++walk;
    EXPECT_FALSE(walk.hasBookmark());
}

TEST_F(MapIterator, OutlivesTheRemovalOfAMemberThatNobodyElseHolds) {
    have(1);
    int const living = PlaceNode::living;
    {
        PlaceMap::IteratorConst const walk(&map);
        remove(1);
        EXPECT_EQ(PlaceNode::living, living);
        EXPECT_EQ(walk.key().place, at(1));
    }
    EXPECT_EQ(PlaceNode::living, living - 1);
}

TEST_F(MapIterator, LooksAheadAtTheTwoMembersThatFollow) {
    for (U32 const count : {0U, 1U, 2U, 3U, 4U, 5U, 9U, 15U}) {
        have(count);
        for (PlaceMap::IteratorConst walk(&map); walk; ++walk) {
            PlaceMap::IteratorConst other = walk;
            auto const [next, later] = walk.ahead();
            ++other;
            EXPECT_TRUE(!next || next == other.operator->());
            if (next) ++other;
            EXPECT_TRUE(!later || later == other.operator->());
        }
        for (U32 i = 1; i <= count; ++i) remove(i);
    }
}

TEST_F(MapIterator, OnAMemberThatWasRemovedLooksAheadAtNothing) {
    have(3);
    PlaceMap::IteratorConst const walk(&map);
    EXPECT_TRUE(walk.ahead()[0]);
    remove(1);
    EXPECT_FALSE(walk.ahead()[0]);
}

}  // namespace
