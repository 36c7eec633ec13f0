// Random operations on a map whose keys tie: ordered by their hashes alone. What is checked needs
// no model of the order within a tie: each member that is there from the beginning of a walk to its
// end is met once, none twice unless it left and came again, and the places ascend.
#include <tests/property/framework/Random.h>
#include <tests/property/framework/SmallNode.h>

#include <gtest/gtest.h>

#include <array>
#include <map>

using namespace Sample;

namespace {

using TiedNode = SmallNode<true>;
using TiedMap = TiedNode::Map;

// What one walk has met, and what it has to meet.
struct Audit {
    std::map<U32, int> met;       // by number of the member
    std::map<U32, int> expected;  // that were there at the beginning and have not left
    U32 lastPlace = 0;
};

class TiesWorld {
  public:
    explicit TiesWorld(std::uint64_t seed) : random_(seed) {}
    ~TiesWorld() {
        for (auto& walk : walks_) {
            walk.real = TiedMap::Iterator();
        }
    }

    void step() {
        U32 const what = random_.below(100);
        auto& walk = walks_[random_.below(static_cast<U32>(walks_.size()))];
        if (what < 30) {
            insert();
        } else if (what < 48) {
            remove(random_.below(static_cast<U32>(members_.size() + 1)));
        } else if (what < 60) {
            removeUnder(walk);
        } else if (what < 64) {
            delAt(walk);
        } else if (what < 65 && random_.oneIn(4)) {
            begin(walk);  // in the middle of its way
        } else {
            advance(walk);
        }
    }

  private:
    struct Walk {
        TiedMap::Iterator real;
        Audit audit;
        bool deleted = false;
        bool placed = false;
    };

    void insert() {
        if (members_.size() >= 24) {
            return;
        }
        U32 const number = ++numbers_;
        auto const node =
            Qor::make<TiedNode>(TiedNode::Key{random_.below(3) * 0x50000000, number}, number);
        map_.newMember(node, node->fwkHash());
        members_.push_back(node);
        ASSERT_EQ(map_.size(), members_.size());
    }
    void remove(std::size_t index) {
        if (index >= members_.size()) {
            return;
        }
        auto const node = members_[index];
        forget(index);
        ASSERT_TRUE(map_.memberDel(node->fwkKey()));
    }
    void forget(std::size_t index) {
        for (auto& walk : walks_) {
            walk.audit.expected.erase(members_[index]->number);
        }
        members_.erase(members_.begin() + static_cast<std::ptrdiff_t>(index));
    }
    std::size_t indexOf(TiedNode const* node) const {
        std::size_t i = 0;
        while (i < members_.size() && members_[i].ptr() != node) {
            ++i;
        }
        return i;
    }
    void removeUnder(Walk& walk) {
        if (walk.real) {
            remove(indexOf(walk.real.member().ptr()));
        }
    }
    void delAt(Walk& walk) {
        if (!walk.real || walk.deleted) {
            return;
        }
        std::size_t const index = indexOf(walk.real.member().ptr());
        if (index < members_.size()) {
            forget(index);
        }
        walk.real.del();
        walk.deleted = true;
        ASSERT_EQ(map_.size(), members_.size());
    }
    void begin(Walk& walk) {
        if (walk.placed && random_.oneIn(2)) {
            walk.real.reset();
        } else {
            walk.real = TiedMap::Iterator(&map_);
        }
        walk.placed = true;
        walk.deleted = false;
        walk.audit = Audit();
        for (auto const& member : members_) {
            walk.audit.expected[member->number] = 1;
        }
        meet(walk);
    }
    void advance(Walk& walk) {
        if (!walk.real && !walk.deleted) {
            for (auto const& [number, times] : walk.audit.expected) {
                ASSERT_EQ(walk.audit.met[number], times) << "member " << number;
            }
            begin(walk);
            return;
        }
        ++walk.real;
        walk.deleted = false;
        meet(walk);
    }
    void meet(Walk& walk) {
        if (walk.real) {
            TiedNode const& node = *walk.real.member();
            ASSERT_EQ(++walk.audit.met[node.number], 1) << "member " << node.number;
            ASSERT_GE(node.fwkHash(), walk.audit.lastPlace);
            walk.audit.lastPlace = node.fwkHash();
        }
    }

    Random random_;
    U32 numbers_ = 0;
    TiedMap map_;
    std::vector<Qor::Ptr<TiedNode>> members_;
    std::array<Walk, 3> walks_;
};

TEST(MapTiesModel, EachThatStaysIsMetOnceUnderAnyInterleaving) {
    constexpr int operations = 3'000'000 / workShare;
    auto const seed = testSeed();
    SCOPED_TRACE(seedNote(seed));
    {
        TiesWorld world(seed);
        for (int i = 0; i < operations; ++i) {
            world.step();
            if (testing::Test::HasFatalFailure()) {
                FAIL() << "in operation " << i;
            }
        }
    }
    EXPECT_EQ(TiedNode::living, 0);
}

}  // namespace
