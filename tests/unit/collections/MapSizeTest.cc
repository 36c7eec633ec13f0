#include <tests/unit/collections/TestMember.h>

#include <gtest/gtest.h>

using namespace Sample;

namespace {

// Spread evenly over the whole range of hashes.
U32 spread(U32 i) { return Qor::bitReverse(i); }

void fill(PlaceMap& map, U32 count) {
    for (U32 i = map.size(); i < count; ++i) {
        add(map, spread(i), i);
    }
}

TEST(MapSize, EmptyMapHasOneBucket) {
    PlaceMap const map;
    EXPECT_EQ(map.size(), 0U);
    EXPECT_EQ(map.version(), 0U);
    EXPECT_EQ(map.bucketCount(), 1U);
    EXPECT_FALSE(map.bulkDelete());
}

TEST(MapSize, UpToFourMembersMakeDoWithOneBucket) {
    PlaceMap map;
    fill(map, 4);
    EXPECT_EQ(map.bucketCount(), 1U);
    fill(map, 5);
    EXPECT_EQ(map.bucketCount(), 8U);
}

TEST(MapSize, GrowsWhenThereIsMoreThanOneMemberABucket) {
    PlaceMap map;
    for (U32 buckets = 8; buckets <= 1024; buckets *= 2) {
        fill(map, buckets);
        EXPECT_EQ(map.bucketCount(), buckets) << map.size();
        fill(map, buckets + 1);
        EXPECT_EQ(map.bucketCount(), 2 * buckets) << map.size();
    }
}

TEST(MapSize, ChainsAreOneWhileThereAreFewBuckets) {
    PlaceMap map;
    fill(map, 16);
    ASSERT_EQ(map.bucketCount(), 16U);
    Qor::I32 bucket = -1;
    auto const* at = static_cast<PlaceNode const*>(map.findNextBucketG(&bucket));
    for (U32 met = 1; met < 16; ++met) {
        ASSERT_NE(at->fwkHmNext(), nullptr) << met;
        EXPECT_LT(at->fwkHash(), at->fwkHmNext()->fwkHash());
        at = at->fwkHmNext();
    }
    EXPECT_EQ(at->fwkHmNext(), nullptr);
}

TEST(MapSize, ChainsEndWithTheirBucketsWhereThereAreMany) {
    PlaceMap map;
    fill(map, 17);
    ASSERT_EQ(map.bucketCount(), 32U);
    for (PlaceMap::IteratorConst at(&map); at; ++at) {
        EXPECT_EQ(at->fwkHmNext(), nullptr) << at.key();
    }
    map.memberDel({spread(16), 16});
    while (map.size() >= 8) {
        map.memberDel({spread(map.size() - 1), map.size() - 1});
    }
    ASSERT_EQ(map.bucketCount(), 16U);
    EXPECT_NE(PlaceMap::IteratorConst(&map)->fwkHmNext(), nullptr);
}

TEST(MapSize, ShrinksWhenLessThanAQuarterOfAMemberStandsInEach) {
    PlaceMap map;
    fill(map, 64);
    ASSERT_EQ(map.bucketCount(), 64U);
    U32 i = 64;
    while (map.size() > 16) {
        --i;
        map.memberDel({spread(i), i});
    }
    EXPECT_EQ(map.bucketCount(), 64U);
    --i;
    map.memberDel({spread(i), i});
    EXPECT_EQ(map.bucketCount(), 32U);
    while (map.size() != 0) {
        --i;
        map.memberDel({spread(i), i});
        EXPECT_GE(map.size() * 4, map.bucketCount() == 1 ? 0 : map.bucketCount());
    }
    EXPECT_EQ(map.bucketCount(), 1U);
}

TEST(MapSize, NothingIsLostByGrowthAndShrinking) {
    PlaceMap map;
    fill(map, 1000);
    auto const all = keys(map);
    ASSERT_EQ(all.size(), 1000U);
    for (U32 i = 999; i >= 3; --i) {
        ASSERT_TRUE(map.memberDel({spread(i), i}));
        ASSERT_EQ(keys(map).size(), i);
    }
    EXPECT_EQ(keys(map), (std::vector<PlaceKey>{{0, 0}, {spread(2), 2}, {spread(1), 1}}));
}

TEST(MapSize, MembersOfOneBucketAloneSurviveGrowthAndShrinking) {
    // All of one hash: no doubling parts them.
    PlaceMap map;
    for (U32 i = 0; i < 100; ++i) {
        add(map, 0xFFFFFFFF, i);
    }
    EXPECT_EQ(map.bucketCount(), 128U);
    for (U32 i = 0; i < 100; ++i) {
        ASSERT_TRUE(map.memberDel({0xFFFFFFFF, i}));
        ASSERT_EQ(keys(map).size(), 99 - i);
    }
    EXPECT_EQ(map.bucketCount(), 1U);
}

TEST(MapSize, VersionCountsEveryInsertionAndRemoval) {
    PlaceMap map;
    add(map, 1);
    EXPECT_EQ(map.version(), 1U);
    add(map, 2);
    EXPECT_EQ(map.version(), 2U);
    EXPECT_EQ(map.size(), 2U);
    map.memberDel({1, 0});
    EXPECT_EQ(map.version(), 3U);
    EXPECT_EQ(map.size(), 1U);
}

TEST(MapSize, RemovalOfAnAbsentKeyChangesNothing) {
    PlaceMap map;
    add(map, 1);
    EXPECT_FALSE(map.memberDel({2, 0}));
    EXPECT_FALSE(map.memberDel({1, 7}));
    EXPECT_EQ(map.version(), 1U);
    EXPECT_EQ(map.size(), 1U);
}

TEST(MapSize, RemovedMemberIsHandedOverUnlinkedAndUncounted) {
    PlaceMap map;
    add(map, 1);
    add(map, 2);
    PlaceNode::Ptr const gone = map.memberDel({1, 0});
    ASSERT_TRUE(gone);
    EXPECT_EQ(gone->qorRefs(), 1U);
    EXPECT_EQ(gone->fwkHmNext(), nullptr);
    EXPECT_EQ(gone->fwkKey().place, 1U);
}

TEST(MapSize, MapHoldsOneReferenceOnEachMember) {
    PlaceMap map;
    std::vector<PlaceNode::Ptr> held;
    for (U32 i = 0; i < 100; ++i) {
        held.push_back(add(map, spread(i), i));
    }
    for (auto const& member : held) {
        EXPECT_EQ(member->qorRefs(), 2U);
    }
}

TEST(MapSize, DestructionReleasesEachMemberOnce) {
    int const before = PlaceNode::living;
    {
        PlaceMap map;
        fill(map, 100);
        EXPECT_EQ(PlaceNode::living, before + 100);
    }
    EXPECT_EQ(PlaceNode::living, before);
}

TEST(MapSize, DeleteMemberRemovesThatVeryMember) {
    PlaceMap map;
    auto const inside = add(map, 5);
    auto const outside = Qor::make<PlaceNode>(PlaceKey{5, 0});
    EXPECT_FALSE(map.deleteMember(*outside));
    EXPECT_EQ(map.size(), 1U);
    EXPECT_TRUE(map.contains(*inside));
    EXPECT_FALSE(map.contains(*outside));
    EXPECT_TRUE(map.deleteMember(*inside));
    EXPECT_FALSE(map.deleteMember(*inside));
    EXPECT_EQ(map.size(), 0U);
}

TEST(MapSize, RemovalDuringBulkRemovalLeavesTheBuckets) {
    PlaceMap map;
    fill(map, 64);
    map.bulkDeleteIs(true);
    for (U32 i = 2; i < 64; ++i) {
        map.memberDel({spread(i), i});
    }
    EXPECT_EQ(map.bucketCount(), 64U);
    map.bulkDeleteIs(false);
    map.maybeShrinkG(PlaceMap::qorVTable());
    EXPECT_EQ(map.bucketCount(), 8U);
    EXPECT_EQ(keys(map).size(), 2U);
}

TEST(MapSize, MemberWhoseEndRemovesOthersLeavesTheDestructionWhole) {
    int const before = PlaceNode::living;
    {
        PlaceMap map;
        fill(map, 64);
        PlaceMap* const raw = &map;
        // One in the middle takes most of those behind it with it, and the map shrinks meanwhile.
        map.member({spread(1), 1})->onEnd = [raw] {
            for (U32 i = 3; i < 60; i += 2) {
                raw->memberDel({spread(i), i});
            }
            ASSERT_LT(raw->bucketCount(), 32U);
        };
    }
    EXPECT_EQ(PlaceNode::living, before);
}

TEST(MapSize, MemberWhoseEndAddsOthersLeavesTheDestructionWhole) {
    int const before = PlaceNode::living;
    {
        PlaceMap map;
        fill(map, 64);
        PlaceMap* const raw = &map;
        map.member({spread(63), 63})->onEnd = [raw] {
            for (U32 i = 0; i < 200; ++i) {
                add(*raw, i, 1000 + i);
            }
        };
    }
    EXPECT_EQ(PlaceNode::living, before);
}

}  // namespace
