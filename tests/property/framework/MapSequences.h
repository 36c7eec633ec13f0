// All sequences of operations on a small map with an iterator on each of its first members. The
// operations are: to put in or take out one of four members, to step an iterator, to delete through
// one. Depth first, each sequence from the beginning, so that no state is shared.
#ifndef TESTS_PROPERTY_FRAMEWORK_MAP_SEQUENCES_H
#define TESTS_PROPERTY_FRAMEWORK_MAP_SEQUENCES_H

#include <tests/property/framework/Random.h>
#include <tests/property/framework/SmallNode.h>

#include <gtest/gtest.h>

#include <array>
#include <string>

namespace Sample {

inline constexpr int memberCount = 4;

/// One run: the map, its members and iterators, and what each iterator owes and has met.
template <class Node>
class SequenceRun {
  public:
    using Map = typename Node::Map;
    using Key = typename Node::Key;
    using Keys = std::array<Key, memberCount>;

    SequenceRun(Keys const& keys, int present) : keys_(keys), walkCount_(present) {
        for (int i = 0; i < present; ++i) {
            put(i);
        }
        for (int i = 0; i < present; ++i) {
            stand(i);
        }
    }

    static int operations(int present) { return memberCount + 2 * present; }

    void apply(int operation) {
        if (operation < memberCount) {
            in_[operation] ? take(operation) : put(operation);
        } else if (operation < memberCount + walkCount_) {
            advance(operation - memberCount);
        } else {
            del(operation - memberCount - walkCount_);
        }
        if (map_.size() != static_cast<U32>(in_[0] + in_[1] + in_[2] + in_[3])) {
            failure_ = "size";
        }
    }
    /// Lets each iterator go to its end, and says what went wrong; empty if nothing did.
    std::string finish() {
        for (int i = 0; i < walkCount_; ++i) {
            for (int steps = 0; walks_[i].real || walks_[i].deleted; ++steps) {
                if (steps > 20) {
                    return "no end";
                }
                advance(i);
            }
            for (int member = 0; member < memberCount; ++member) {
                if (walks_[i].owes[member] && walks_[i].met[member] == 0) {
                    failure_ = "lost";
                }
            }
        }
        return failure_;
    }

  private:
    struct Walk {
        typename Map::Iterator real;
        bool deleted = false;
        std::array<int, memberCount> met{};
        std::array<bool, memberCount> owes{};
        U32 lastPlace = 0;
    };

    void put(int member) {
        auto const node = Qor::make<Node>(keys_[member], static_cast<U32>(member));
        map_.newMember(node, node->fwkHash());
        in_[member] = true;
        for (int i = 0; i < walkCount_; ++i) {
            walks_[i].met[member] = 0;  // another one under the same key: it may be met, or not
        }
    }
    void take(int member) {
        if (!map_.memberDel(keys_[member])) {
            failure_ = "not there";
        }
        left(member);
    }
    void left(int member) {
        in_[member] = false;
        for (int i = 0; i < walkCount_; ++i) {
            walks_[i].owes[member] = false;
        }
    }
    // On the member that is the i-th of the map now.
    void stand(int i) {
        Walk& walk = walks_[i];
        typename Map::IteratorConst at(&map_);
        for (int skip = 0; skip < i; ++skip) {
            ++at;
        }
        walk.real = typename Map::Iterator(&map_, at.key());
        for (; at; ++at) {
            walk.owes[at->number] = true;
        }
        meet(walk);
    }
    void advance(int i) {
        Walk& walk = walks_[i];
        if (walk.real || walk.deleted) {
            ++walk.real;
            walk.deleted = false;
            meet(walk);
        }
    }
    void del(int i) {
        Walk& walk = walks_[i];
        if (!walk.real || walk.deleted) {
            return;
        }
        U32 const number = walk.real->number;
        bool const its = map_.contains(*walk.real.member());
        walk.real.del();
        walk.deleted = true;
        if (its) {
            left(static_cast<int>(number));
        }
    }
    void meet(Walk& walk) {
        if (!walk.real) {
            return;
        }
        if (++walk.met[walk.real->number] > 1) {
            failure_ = "met twice";
        }
        if (walk.real->fwkHash() < walk.lastPlace || !map_.contains(*walk.real.member())) {
            failure_ = "out of place";
        }
        walk.lastPlace = walk.real->fwkHash();
    }

    Keys keys_;
    int walkCount_;
    Map map_;
    std::array<bool, memberCount> in_{};
    std::array<Walk, memberCount> walks_;
    std::string failure_;
};

/// Runs every sequence of exactly `length` operations, which are also all shorter ones.
template <class Node>
void runAllSequences(typename SequenceRun<Node>::Keys const& keys, int present, int length) {
    int const operations = SequenceRun<Node>::operations(present);
    std::array<int, 8> sequence{};
    for (;;) {
        std::string failure;
        {
            SequenceRun<Node> run(keys, present);
            for (int i = 0; i < length; ++i) {
                run.apply(sequence[static_cast<std::size_t>(i)]);
            }
            failure = run.finish();
        }
        if (!failure.empty() || Node::living != 0) {
            std::string text;
            for (int i = 0; i < length; ++i) {
                text += ' ' + std::to_string(sequence[static_cast<std::size_t>(i)]);
            }
            FAIL() << failure << ", " << Node::living << " members left, with " << present
                   << " members, after" << text;
        }
        int at = length - 1;
        while (at >= 0 && ++sequence[static_cast<std::size_t>(at)] == operations) {
            sequence[static_cast<std::size_t>(at--)] = 0;
        }
        if (at < 0) {
            return;
        }
    }
}

/// The length that this build can afford with so many members at the beginning.
inline int affordableLength(int present) {
    constexpr std::array<int, memberCount + 1> withSanitizer{6, 6, 5, 5, 4};
    return workShare > 1 ? withSanitizer[static_cast<std::size_t>(present)] : 6;
}

}  // namespace Sample

#endif
