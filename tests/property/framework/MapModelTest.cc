// Ten million random operations on a map and its iterators, held against a sorted vector of keys.
#include <tests/property/framework/MapModel.h>
#include <tests/property/framework/SmallNode.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>

using namespace Sample;

namespace {

using Node = SmallNode<false>;
using Map = Node::Map;
using Key = Node::Key;

std::uint64_t rankOf(Key const& key) { return std::uint64_t{key.place} << 32 | key.id; }
Key keyOf(std::uint64_t rank) { return {static_cast<U32>(rank >> 32), static_cast<U32>(rank)}; }
Entry entryOf(Node const& node) { return {rankOf(node.fwkKey()), node.number}; }

class TellingWalk : public Map::Iterator {
  public:
    using Map::Iterator::Iterator;
    static inline std::vector<Entry> told;

  protected:
    using Map::Iterator::deleteNotify;
    void deleteNotify(Qor::Ptr<Node> const& member) const override {
        told.push_back(entryOf(*member));
    }
};

struct Walk {
    TellingWalk real;
    WalkModel model;
};

// Places that are spread over all buckets, and some that share their top bits.
Key spreadKey(Random& random) {
    U32 const i = random.below(96);
    return {i < 64 ? Qor::bitReverse(i) : 0x55555500U + i, random.below(3)};
}
// Places that share their top bits in two buckets, however many there are, and often all their
// bits.
Key crowdedKey(Random& random) {
    U32 const i = random.below(1500);
    return {(i % 3 == 0 ? 0x80000000U : 0U) + i % 500, random.below(3)};
}

class World {
  public:
    using AnyKey = Key (*)(Random&);
    World(std::uint64_t seed, AnyKey key) : random_(seed), key_(key) {}

    void step() {
        if (random_.oneIn(4096)) {
            growing_ = random_.below(100);
        }
        Walk& walk = walks_[random_.below(static_cast<U32>(walks_.size()))];
        U32 const what = random_.below(100);
        if (what < 34) {
            random_.below(100) < growing_ ? insert() : remove();
        } else if (what < 44) {
            look();
        } else if (what < 86) {
            ++walk.real;
            walk.model.step(model_);
        } else if (what < 90) {
            del(walk);
        } else if (what < 99 || !random_.oneIn(100)) {
            place(walk);
        } else {
            delAll(walk);
        }
        check();
    }
    // The map as a whole: the order of its members, the number of its buckets.
    void audit() const {
        std::vector<Entry> met;
        for (Map::IteratorConst at(&map_); at; ++at) {
            met.push_back(entryOf(*at.member()));
        }
        ASSERT_EQ(met, model_.all());
        U32 const buckets = map_.bucketCount();
        ASSERT_EQ(buckets & (buckets - 1), 0U);
        ASSERT_LE(map_.size(), std::max(buckets, 4U));
        ASSERT_TRUE(buckets == 1 || map_.size() * 4 >= buckets) << map_.size() << ' ' << buckets;
        ASSERT_FALSE(map_.bulkDelete());
    }

  private:
    std::uint64_t anyKey() { return rankOf(key_(random_)); }
    void insert() {
        std::uint64_t const rank = anyKey();
        if (!model_.find(rank)) {
            auto const node = Qor::make<Node>(keyOf(rank), ++numbers_);
            map_.newMember(node, node->fwkHash());
            model_.add({rank, numbers_});
        }
    }
    void remove() {
        std::uint64_t const rank =
            model_.size() && !random_.oneIn(4) ? model_.any(random_).rank : anyKey();
        auto const there = model_.find(rank);
        if (random_.oneIn(2)) {
            auto const gone = map_.memberDel(keyOf(rank));
            ASSERT_EQ(static_cast<bool>(gone), there.has_value());
            ASSERT_TRUE(!gone || entryOf(*gone) == *there);
        } else if (Node* const node = map_.member(keyOf(rank))) {
            ASSERT_TRUE(map_.deleteMember(*node));
        }
        if (there) {
            model_.del(rank);
        }
    }
    void look() {
        std::uint64_t const rank = anyKey();
        auto const there = model_.find(rank);
        Node const* const node = map_.member(keyOf(rank));
        ASSERT_EQ(node != nullptr, there.has_value());
        ASSERT_TRUE(!node || entryOf(*node) == *there);
        auto const next = model_.from(rank);
        Node const* const start = map_.startAtHash(keyOf(rank));
        ASSERT_EQ(start != nullptr, next.has_value());
        ASSERT_TRUE(!start || entryOf(*start) == *next);
    }
    void place(Walk& walk) {
        std::uint64_t const rank = anyKey();
        switch (random_.below(4)) {
            case 0:
                walk.real = TellingWalk(&map_);
                walk.model.place(model_.first());
                break;
            case 1:
                walk.real = TellingWalk(&map_, keyOf(rank));
                walk.model.place(model_.from(rank));
                break;
            case 2:
                if (walk.model.placed) {
                    walk.real.reset();
                    walk.model.place(model_.first());
                }
                break;
            default:
                walk = walks_[random_.below(static_cast<U32>(walks_.size()))];
        }
    }
    void del(Walk& walk) {
        TellingWalk::told.clear();
        walk.real.del();
        ASSERT_EQ(TellingWalk::told, walk.model.del(model_));
    }
    void delAll(Walk& walk) {
        if (walk.model.placed) {
            TellingWalk::told.clear();
            walk.real.deleteAll();
            ASSERT_EQ(TellingWalk::told, walk.model.delAll(model_));
        }
    }
    void check() const {
        ASSERT_EQ(map_.size(), model_.size());
        for (Walk const& walk : walks_) {
            ASSERT_EQ(static_cast<bool>(walk.real), walk.model.stands.has_value());
            ASSERT_TRUE(!walk.real || entryOf(*walk.real.member()) == *walk.model.stands);
        }
    }

    Random random_;
    AnyKey key_;
    U32 growing_ = 60;
    U32 numbers_ = 0;
    Map map_;
    MapModel model_;
    std::array<Walk, 4> walks_;
};

void runOperations(int operations, World::AnyKey anyKey) {
    auto const seed = testSeed();
    SCOPED_TRACE(seedNote(seed));
    {
        World world(seed, anyKey);
        for (int i = 0; i < operations; ++i) {
            world.step();
            if (i % 1024 == 0) {
                world.audit();
            }
            if (testing::Test::HasFatalFailure()) {
                FAIL() << "in operation " << i;
            }
        }
    }
    EXPECT_EQ(Node::living, 0);
}

TEST(MapModel, TenMillionOperationsGoAsInASortedVector) {
    runOperations(10'000'000 / workShare, spreadKey);
}

TEST(MapModel, OperationsOnLongChainsGoAsInASortedVector) {
    runOperations(2'000'000 / workShare, crowdedKey);
}

}  // namespace
