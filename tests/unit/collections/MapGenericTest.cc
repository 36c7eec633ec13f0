#include <tests/unit/collections/TestMember.h>

#include <gtest/gtest.h>

using namespace Sample;

namespace {

class MapGeneric : public testing::Test {
  protected:
    MapGeneric() {
        for (U32 i = 0; i < 8; ++i) {
            held.push_back(add(map, i << 29, i));
        }
    }
    Qor::HashMapVTableGeneric const& table = PlaceMap::qorVTable();
    PlaceMap map;
    std::vector<PlaceNode::Ptr> held;
};

TEST_F(MapGeneric, NullKeyIsLessThanAny) {
    EXPECT_TRUE(table.keyLessThan(nullptr, held[0].ptr()));
    EXPECT_TRUE(table.keyLessThan(nullptr, held[7].ptr()));
}

TEST_F(MapGeneric, KeyOperationsAreTheKeys) {
    PlaceKey const key{0, 3};
    EXPECT_FALSE(table.keyLessThan(&key, held[2].ptr()));
    EXPECT_FALSE(table.keyLessThan(&key, held[3].ptr()));
    EXPECT_TRUE(table.keyLessThan(&key, held[4].ptr()));
    PlaceKey const equal{3U << 29, 3};
    EXPECT_TRUE(table.keyEquals(&equal, held[3].ptr()));
    EXPECT_FALSE(table.keyEquals(&key, held[3].ptr()));
    EXPECT_EQ(table.hash(held[3].ptr()), 3U << 29);
}

TEST_F(MapGeneric, OneTableServesAllMapsOfAType) { EXPECT_EQ(&PlaceMap::qorVTable(), &table); }

TEST_F(MapGeneric, FindNextWithNullsGivesTheFirst) {
    Qor::I32 bucket = 77;
    EXPECT_EQ(map.findNextG(table, nullptr, &bucket, nullptr), held[0].ptr());
    EXPECT_EQ(bucket, 0);
}

TEST_F(MapGeneric, FindNextOfAMemberGivesItsSuccessorAndItsBucket) {
    Qor::I32 bucket = 77;
    EXPECT_EQ(map.findNextG(table, held[3].ptr(), &bucket, &held[3]->fwkKey()), held[4].ptr());
    EXPECT_EQ(bucket, static_cast<Qor::I32>(map.bucketIndex(held[4]->fwkHash())));
}

TEST_F(MapGeneric, FindNextOfTheLastGivesNullAndBucketMinusOne) {
    Qor::I32 bucket = 77;
    EXPECT_EQ(map.findNextG(table, held[7].ptr(), &bucket, &held[7]->fwkKey()), nullptr);
    EXPECT_EQ(bucket, -1);
}

TEST_F(MapGeneric, FindNextOfARemovedMemberGoesByItsKey) {
    for (U32 const i : {3U, 4U, 5U}) {
        map.deleteMember(*held[i]);
    }
    Qor::I32 bucket = 77;
    EXPECT_EQ(map.findNextG(table, held[3].ptr(), &bucket, &held[3]->fwkKey()), held[6].ptr());
}

TEST_F(MapGeneric, FindNextOfARemovedMemberWithASuccessorOfTheSameHash) {
    auto const first = add(map, PlaceKey{5, 1});
    auto const second = add(map, PlaceKey{5, 2});
    auto const third = add(map, PlaceKey{5, 3});
    map.deleteMember(*second);
    Qor::I32 bucket = 77;
    EXPECT_EQ(map.findNextG(table, second.ptr(), &bucket, &second->fwkKey()), third.ptr());
    map.deleteMember(*third);
    EXPECT_EQ(map.findNextG(table, second.ptr(), &bucket, &second->fwkKey()), held[1].ptr());
}

TEST_F(MapGeneric, FindNextBucketPassesOverEmptyOnes) {
    for (U32 const i : {1U, 2U, 3U, 4U, 5U}) {
        map.deleteMember(*held[i]);
    }
    ASSERT_EQ(map.bucketCount(), 8U);
    Qor::I32 bucket = 0;
    EXPECT_EQ(map.findNextBucketG(&bucket), held[6].ptr());
    EXPECT_EQ(bucket, 6);
    bucket = 7;
    EXPECT_EQ(map.findNextBucketG(&bucket), nullptr);
    EXPECT_EQ(bucket, -1);
}

TEST_F(MapGeneric, FindNextInAnEmptyMapIsNull) {
    PlaceMap const empty;
    Qor::I32 bucket = 77;
    EXPECT_EQ(empty.findNextG(table, nullptr, &bucket, nullptr), nullptr);
    EXPECT_EQ(bucket, -1);
    EXPECT_EQ(empty.findNextG(table, held[0].ptr(), &bucket, &held[0]->fwkKey()), nullptr);
    EXPECT_EQ(bucket, -1);
}

TEST_F(MapGeneric, EmptyAllBucketsReleasesAllAndTheMapGoesOn) {
    map.emptyAllBucketsG(table);
    EXPECT_EQ(map.size(), 0U);
    for (auto const& member : held) {
        EXPECT_EQ(member->qorRefs(), 1U);
        EXPECT_EQ(member->fwkHmNext(), nullptr);
    }
    map.newMember(held[5], held[5]->fwkHash());
    EXPECT_EQ(keys(map).size(), 1U);
}

}  // namespace
