#include <tests/unit/collections/TestMember.h>

#include <qor/collections/Members.h>
#include <qor/core/Name.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

using namespace Sample;

namespace {

TEST(MapOrder, MapWithOneBucketUsesBucketZeroForEveryHash) {
    PlaceMap const map;
    EXPECT_EQ(map.bucketCount(), 1U);
    for (U32 const hash : {0U, 1U, 0x80000000U, 0xFFFFFFFFU}) {
        EXPECT_EQ(map.bucketIndex(hash), 0U);
    }
}

TEST(MapOrder, BucketIsTheTopBitsOfTheHash) {
    PlaceMap const two(2);
    EXPECT_EQ(two.bucketIndex(0x7FFFFFFF), 0U);
    EXPECT_EQ(two.bucketIndex(0x80000000), 1U);
    PlaceMap const sixteen(16);
    for (U32 top = 0; top < 16; ++top) {
        EXPECT_EQ(sixteen.bucketIndex(top << 28), top);
        EXPECT_EQ(sixteen.bucketIndex((top << 28) | 0x0FFFFFFF), top);
    }
}

TEST(MapOrder, MembersStandInAscendingOrderWhateverTheOrderOfInsertion) {
    std::mt19937 random(7);
    std::vector<PlaceKey> expected;
    for (U32 i = 0; i < 500; ++i) {
        expected.push_back({static_cast<U32>(random()), i});
        expected.push_back({i % 20 * 0x0CCCCCCC, i});  // many of the same place
    }
    auto inserted = expected;
    std::shuffle(inserted.begin(), inserted.end(), random);
    std::sort(expected.begin(), expected.end(), [](PlaceKey const& a, PlaceKey const& b) {
        return a.place != b.place ? a.place < b.place : a.id < b.id;
    });
    PlaceMap map;
    for (PlaceKey const& key : inserted) {
        add(map, key);
    }
    EXPECT_EQ(keys(map), expected);
}

TEST(MapOrder, OrderIsTheSameForEveryNumberOfBuckets) {
    std::vector<std::vector<PlaceKey>> walks;
    for (U32 buckets = 1; buckets <= 4096; buckets *= 4) {
        PlaceMap map(buckets);
        ASSERT_EQ(map.bucketCount(), buckets);
        std::mt19937 random(11);
        for (U32 i = 0; i < 300; ++i) {
            add(map, static_cast<U32>(random()), i);
        }
        walks.push_back(keys(map));
    }
    for (auto const& walk : walks) {
        EXPECT_EQ(walk, walks.front());
        EXPECT_EQ(walk.size(), 300U);
    }
}

TEST(MapOrder, OrderIsOfUnsignedHashes) {
    PlaceMap map;
    for (U32 const place : {0x80000000U, 0U, 0xFFFFFFFFU, 0x7FFFFFFFU, 1U}) {
        add(map, place);
    }
    EXPECT_EQ(keys(map), places({0, 1, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF}));
}

TEST(MapOrder, EqualHashesAreOrderedByKey) {
    PlaceMap map;
    for (U32 const id : {3U, 1U, 2U}) {
        add(map, 5, id);
    }
    EXPECT_EQ(keys(map), (std::vector<PlaceKey>{{5, 1}, {5, 2}, {5, 3}}));
}

TEST(MapOrder, IntegersStandInTheOrderOfTheirReversedBits) {
    using Member = Qor::ValueMember<Qor::U16, bool>;
    Qor::HashMap<Member, Qor::U16> map;
    for (Qor::U16 vlan = 0; vlan < 8; ++vlan) {
        auto const member = Qor::make<Member>(vlan, true);
        map.newMember(member, member->fwkHash());
    }
    EXPECT_EQ(keys(map), (std::vector<Qor::U16>{0, 4, 2, 6, 1, 5, 3, 7}));
}

TEST(MapOrder, TextsStandInTheOrderOfTheirReversedHashes) {
    using Member = Qor::ValueMember<Qor::String8, bool>;
    Qor::HashMap<Member, Qor::String8> map;
    for (char const* text : {"ethernet1", "ethernet2", "", "vlan", "a", "b"}) {
        auto const member = Qor::make<Member>(text, true);
        EXPECT_EQ(member->fwkHash(), Qor::rhash(Qor::String8(text)));
        map.newMember(member, member->fwkHash());
    }
    U32 last = 0;
    U32 met = 0;
    for (auto const& key : keys(map)) {
        EXPECT_LE(last, Qor::rhash(key));
        last = Qor::rhash(key);
        ++met;
    }
    EXPECT_EQ(met, 6U);
}

TEST(MapOrder, LookupFindsEveryMemberAndNothingElse) {
    PlaceMap map;
    for (U32 i = 0; i < 200; ++i) {
        add(map, i * 0x01234567, i);
    }
    for (U32 i = 0; i < 200; ++i) {
        PlaceNode const* const found = map.member({i * 0x01234567, i});
        ASSERT_NE(found, nullptr);
        EXPECT_EQ(found->fwkKey().id, i);
        EXPECT_EQ(map.member({i * 0x01234567, i + 1000}), nullptr);
    }
}

TEST(MapOrder, StartAtHashGivesTheMemberWithTheKey) {
    PlaceMap map;
    add(map, 10, 1);
    auto const middle = add(map, 10, 5);
    add(map, 10, 9);
    EXPECT_EQ(map.startAtHash({10, 5}), middle.ptr());
}

TEST(MapOrder, StartAtHashOfAnAbsentKeyGivesTheNextInTheOrder) {
    PlaceMap map;
    auto const low = add(map, 0x10000000, 5);
    auto const high = add(map, 0xF0000000, 5);
    EXPECT_EQ(map.startAtHash({0x10000000, 4}), low.ptr());
    EXPECT_EQ(map.startAtHash({0x10000000, 6}), high.ptr());
    EXPECT_EQ(map.startAtHash({0x0FFFFFFF, 9}), low.ptr());
    EXPECT_EQ(map.startAtHash({0x80000000, 0}), high.ptr());
}

TEST(MapOrder, StartAtHashPastAllMembersIsNull) {
    PlaceMap map;
    EXPECT_EQ(map.startAtHash({0, 0}), nullptr);
    add(map, 0x10000000, 5);
    add(map, 0xF0000000, 5);
    EXPECT_EQ(map.startAtHash({0xF0000000, 6}), nullptr);
    EXPECT_EQ(map.startAtHash({0xFFFFFFFF, 0}), nullptr);
    EXPECT_FALSE(PlaceMap::IteratorConst(&map, {0xFFFFFFFF, 0}));
}

TEST(MapOrder, IteratorFromAKeyMeetsTheRest) {
    PlaceMap map;
    for (U32 place = 0; place < 10; ++place) {
        add(map, place << 28);
    }
    PlaceMap::IteratorConst const from(&map, {7U << 28, 0});
    EXPECT_EQ(rest(from), places({7U << 28, 8U << 28, 9U << 28}));
    PlaceMap::IteratorConst const between(&map, {(7U << 28) + 1, 0});
    EXPECT_EQ(rest(between), places({8U << 28, 9U << 28}));
}

}  // namespace
