#include <tests/unit/collections/TestMember.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

// Keys that are ordered by their hash alone: 100.1 and 100.2 are neither less nor greater.

using namespace Sample;

namespace {

constexpr U32 tie = 100;

class MapTies : public testing::Test {
  protected:
    MapTies() {
        add(map, TiedKey{5, 0});
        for (U32 id = 1; id <= 4; ++id) {
            add(map, TiedKey{tie, id});
        }
        add(map, TiedKey{0xF0000000, 0});
    }
    std::vector<TiedKey> metAfter(TiedMap::IteratorConst walk) const { return rest(walk); }
    void remove(U32 id) { ASSERT_TRUE(map.memberDel({tie, id})); }

    TiedMap map;
};

TEST_F(MapTies, AllStayAndEachIsFound) {
    EXPECT_EQ(map.size(), 6U);
    for (U32 id = 1; id <= 4; ++id) {
        ASSERT_NE(map.member({tie, id}), nullptr);
        EXPECT_EQ(map.member({tie, id})->fwkKey().id, id);
    }
    EXPECT_EQ(map.member({tie, 9}), nullptr);
}

TEST_F(MapTies, AWalkMeetsEachOnce) {
    EXPECT_EQ(keys(map), (std::vector<TiedKey>{
                             {5, 0}, {tie, 1}, {tie, 2}, {tie, 3}, {tie, 4}, {0xF0000000, 0}}));
}

TEST_F(MapTies, RemovalTakesTheOneWithTheKey) {
    remove(2);
    EXPECT_EQ(keys(map),
              (std::vector<TiedKey>{{5, 0}, {tie, 1}, {tie, 3}, {tie, 4}, {0xF0000000, 0}}));
}

TEST_F(MapTies, EachThatStaysIsMetOnceWhicheverOneIsRemovedUnderTheIterator) {
    for (U32 stand = 1; stand <= 4; ++stand) {
        for (U32 gone = 1; gone <= 4; ++gone) {
            TiedMap fresh;
            for (U32 id = 1; id <= 4; ++id) {
                add(fresh, TiedKey{tie, id});
            }
            std::vector<U32> met;
            for (TiedMap::IteratorConst walk(&fresh); walk; ++walk) {
                met.push_back(walk.key().id);
                if (met.size() == stand) {
                    fresh.memberDel({tie, gone});
                }
            }
            std::vector<U32> expected;
            for (U32 id = 1; id <= 4; ++id) {
                if (id != gone || id <= stand) {
                    expected.push_back(id);
                }
            }
            EXPECT_EQ(met, expected) << "on " << stand << ", without " << gone;
        }
    }
}

TEST_F(MapTies, OneThatIsAddedToTheTieIsMetOnce) {
    TiedMap::IteratorConst walk(&map);
    ++walk;
    ++walk;
    ASSERT_EQ(walk.key().id, 2U);
    add(map, TiedKey{tie, 9});
    EXPECT_EQ(metAfter(walk),
              (std::vector<TiedKey>{{tie, 2}, {tie, 3}, {tie, 4}, {tie, 9}, {0xF0000000, 0}}));
}

TEST_F(MapTies, CurrentThatIsRemovedWithAllBeforeItLosesNone) {
    TiedMap::IteratorConst walk(&map);
    ++walk;
    ++walk;
    ++walk;
    ASSERT_EQ(walk.key().id, 3U);
    remove(1);
    remove(2);
    remove(3);
    ++walk;
    EXPECT_EQ(metAfter(walk), (std::vector<TiedKey>{{tie, 4}, {0xF0000000, 0}}));
}

TEST_F(MapTies, ChangesBetweenAllStepsLoseAndRepeatNone) {
    std::vector<TiedKey> met;
    U32 fresh = 100;
    for (TiedMap::IteratorConst walk(&map); walk; ++walk) {
        met.push_back(walk.key());
        add(map, TiedKey{1, fresh++});  // before all: the place is found anew at each step
    }
    EXPECT_EQ(met, (std::vector<TiedKey>{
                       {5, 0}, {tie, 1}, {tie, 2}, {tie, 3}, {tie, 4}, {0xF0000000, 0}}));
}

TEST_F(MapTies, IteratorFromATiedKeyMeetsThoseBehindIt) {
    TiedMap::IteratorConst walk(&map, TiedKey{tie, 3});
    EXPECT_EQ(metAfter(walk), (std::vector<TiedKey>{{tie, 3}, {tie, 4}, {0xF0000000, 0}}));
    remove(3);
    ++walk;
    EXPECT_EQ(metAfter(walk), (std::vector<TiedKey>{{tie, 4}, {0xF0000000, 0}}));
}

TEST_F(MapTies, ResetForgetsWhatWasMet) {
    TiedMap tied;
    for (U32 id = 1; id <= 3; ++id) {
        add(tied, TiedKey{tie, id});
    }
    TiedMap::IteratorConst walk(&tied);
    ++walk;
    walk.reset();
    add(tied, TiedKey{tie, 4});
    EXPECT_EQ(rest(walk), (std::vector<TiedKey>{{tie, 1}, {tie, 2}, {tie, 3}, {tie, 4}}));
}

TEST_F(MapTies, DelRemovesEachOfATieOnce) {
    TellingIterator<TiedKey> walk(&map);
    for (; walk; ++walk) {
        walk.del();
    }
    EXPECT_EQ(walk.told.size(), 6U);
    EXPECT_EQ(map.size(), 0U);
}

TEST_F(MapTies, DelOfOneLeavesTheOthersToBeMet) {
    TellingIterator<TiedKey> walk(&map);
    ++walk;
    walk.react = [this](TiedNode&) { add(map, TiedKey{tie, 8}); };
    walk.del();
    ++walk;
    EXPECT_EQ(rest(walk),
              (std::vector<TiedKey>{{tie, 2}, {tie, 3}, {tie, 4}, {tie, 8}, {0xF0000000, 0}}));
}

TEST_F(MapTies, WhatTheTellingOfTheLastOfATieAddsToItIsNotMet) {
    TellingIterator<TiedKey> walk(&map, TiedKey{tie, 1});
    for (int i = 0; i < 3; ++i) {
        ++walk;
    }
    ASSERT_EQ(walk.key().id, 4U);
    walk.react = [this](TiedNode&) { add(map, TiedKey{tie, 8}); };
    walk.del();
    ++walk;
    EXPECT_EQ(rest(walk), (std::vector<TiedKey>{{0xF0000000, 0}}));
}

TEST_F(MapTies, DeleteAllTellsEachOnceAlsoWhenAHandlerRemovesOthers) {
    TellingIterator<TiedKey> walk(&map);
    std::set<U32> removed;
    walk.react = [&](TiedNode&) {
        if (TiedNode* const other = map.member({tie, 3})) {
            removed.insert(other->fwkKey().id);
            map.deleteMember(*other);
        }
    };
    walk.deleteAll();
    EXPECT_EQ(walk.told.size(), 5U);
    EXPECT_EQ(removed, std::set<U32>{3});
    EXPECT_EQ(map.size(), 0U);
}

TEST_F(MapTies, GrowthKeepsATieTogether) {
    for (U32 i = 0; i < 1000; ++i) {
        add(map, TiedKey{i << 20, i + 50});
    }
    std::vector<U32> ids;
    for (TiedKey const& key : keys(map)) {
        if (key.place == tie) {
            ids.push_back(key.id);
        }
    }
    EXPECT_EQ(ids, (std::vector<U32>{1, 2, 3, 4}));
}

}  // namespace
