// Keys that all fall into one bucket, whatever the number of buckets: what somebody sends who wants
// a map to be slow.
#include <tests/unit/collections/TestMember.h>

#include <gtest/gtest.h>

#include <sys/resource.h>

#include <algorithm>
#include <numeric>
#include <random>

using namespace Sample;

namespace {

using Order = std::vector<U32>;

double processorSeconds() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_utime.tv_sec) +
           static_cast<double>(usage.ru_utime.tv_usec) * 1e-6;
}

enum class Way { rising, falling, shuffled };

Order order(U32 count, Way way) {
    Order out(count);
    std::iota(out.begin(), out.end(), 0U);
    if (way == Way::falling) {
        std::reverse(out.begin(), out.end());
    } else if (way == Way::shuffled) {
        std::shuffle(out.begin(), out.end(), std::mt19937(5));
    }
    return out;
}

using KeyOf = PlaceKey (*)(U32 number);
PlaceKey keyOfItsOwnHash(U32 number) { return {number, 0}; }
PlaceKey keyOfOneHash(U32 number) { return {7, number}; }

// Adds, finds, misses, starts at and removes each of so many keys.
void useAll(U32 count, Way way, KeyOf keyOf) {
    PlaceMap map;
    Order const keysInOrder = order(count, way);
    for (U32 const i : keysInOrder) {
        ASSERT_EQ(map.member(keyOf(2 * i)), nullptr);
        add(map, keyOf(2 * i));
    }
    ASSERT_EQ(map.size(), count);
    for (U32 const i : keysInOrder) {
        PlaceNode const* const node = map.member(keyOf(2 * i));
        ASSERT_NE(node, nullptr);
        ASSERT_TRUE(map.contains(*node));
        ASSERT_EQ(map.member(keyOf(2 * i + 1)), nullptr);
        ASSERT_FALSE(map.memberDel(keyOf(2 * i + 1)));
        ASSERT_EQ(map.startAtHash(keyOf(2 * i))->fwkKey(), keyOf(2 * i));
    }
    for (U32 const i : keysInOrder) {
        if (i % 2 == 0) {
            ASSERT_TRUE(map.memberDel(keyOf(2 * i)));
        } else {
            ASSERT_TRUE(map.deleteMember(*map.member(keyOf(2 * i))));
        }
    }
    ASSERT_EQ(map.size(), 0U);
}

double leastOfThree(U32 count, Way way, KeyOf keyOf) {
    double least = 1e9;
    for (int i = 0; i < 3; ++i) {
        double const start = processorSeconds();
        useAll(count, way, keyOf);
        least = std::min(least, processorSeconds() - start);
    }
    return least;
}

// Four times as many take at most 2.3 times the time for each doubling.
void expectLinear(Way way, KeyOf keyOf) {
    double ratio = 0;
    for (int attempt = 0; attempt < 3; ++attempt) {
        ratio = leastOfThree(8'000, way, keyOf) / leastOfThree(2'000, way, keyOf);
        if (ratio <= 2.3 * 2.3) {
            return;
        }
    }
    ADD_FAILURE() << ratio << " times the time for four times the keys";
}

class MapLongChain : public testing::TestWithParam<Way> {};

TEST_P(MapLongChain, TimeGrowsWithTheNumberOfKeysAndNotWithItsSquare) {
    expectLinear(GetParam(), keyOfItsOwnHash);
}

TEST_P(MapLongChain, TimeGrowsWithTheNumberOfKeysOfOneHashAndNotWithItsSquare) {
    expectLinear(GetParam(), keyOfOneHash);
}

TEST_P(MapLongChain, WalkMeetsAllInTheOrderOfTheirKeysAlsoWhileTheyGo) {
    PlaceMap map;
    for (U32 const i : order(2'000, GetParam())) {
        add(map, i);
    }
    U32 expected = 0;
    for (PlaceMap::IteratorConst at(&map); at; ++at) {
        ASSERT_EQ(at.key().place, expected++);
        map.memberDel({at.key().place, 0});
    }
    EXPECT_EQ(expected, 2'000U);
    EXPECT_EQ(map.bucketCount(), 1U);
}

TEST_P(MapLongChain, RemovalOfAllTellsEachOnce) {
    PlaceMap map;
    for (U32 const i : order(2'000, GetParam())) {
        add(map, i);
    }
    TellingIterator<PlaceKey> walk(&map);
    walk.deleteAll();
    EXPECT_EQ(walk.told, places(order(2'000, Way::rising)));
    EXPECT_EQ(map.bucketCount(), 1U);
}

TEST_P(MapLongChain, MapThatEndsLetsAllGo) {
    int const before = PlaceNode::living;
    {
        PlaceMap map;
        for (U32 const i : order(2'000, GetParam())) {
            add(map, i);
        }
    }
    EXPECT_EQ(PlaceNode::living, before);
}

// Tied members stand in the order of their coming, however many of them share the bucket.
TEST(MapLongChainOfTies, StandsInTheOrderOfHashesAndOfComing) {
    std::mt19937 random(9);
    TiedMap map;
    std::vector<TiedKey> expected;
    for (U32 step = 0; step < 6'000; ++step) {
        if (expected.size() < 100 || (expected.size() < 600 && random() % 2 == 0)) {
            TiedKey const key{static_cast<U32>(random() % 3 + random() % 20 * 16), step};
            auto const place =
                std::upper_bound(expected.begin(), expected.end(), key,
                                 [](auto const& a, auto const& b) { return a.place < b.place; });
            expected.insert(place, key);
            add(map, key);
        } else {
            auto const gone =
                expected.begin() + static_cast<std::ptrdiff_t>(random() % expected.size());
            ASSERT_NE(map.member(*gone), nullptr);
            ASSERT_TRUE(map.memberDel(*gone));
            expected.erase(gone);
        }
        if (step % 50 == 0) {
            ASSERT_EQ(keys(map), expected);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Ways, MapLongChain,
                         testing::Values(Way::rising, Way::falling, Way::shuffled),
                         [](auto const& chosen) {
                             return chosen.param == Way::rising    ? "Rising"
                                    : chosen.param == Way::falling ? "Falling"
                                                                   : "Shuffled";
                         });

}  // namespace
