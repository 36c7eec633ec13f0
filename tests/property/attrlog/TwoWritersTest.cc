// Every node of a chain of mounts writes the same attributes at random, with random room and a
// random order of service. At rest all hold the same, and nothing goes over. VGW_SEED=n repeats one
// run.
#include "TreeModel.h"

#include <tests/support/SessionPair.h>
#include <tests/support/Settings.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <vector>

namespace {

using Qor::make;
using Qor::Name;
using Qor::NboAttrLog::Session;

// A process: a tree, and random changes of it.
struct Node {
    explicit Node(std::uint64_t seed)
        : root(make<Qor::Dir>(Name("vgw"))),
          status(Vgw::statusFactory(Name("status"))),
          tree(status, seed) {
        root->entryIs(Name("status"), status);
    }
    Qor::Ptr<Qor::Dir> root;
    Vgw::Status::Ptr status;
    ChangingTree tree;
};

// One node's tree is mounted by the next.
struct WritersLink : SessionPair {
    WritersLink(Node const& source, Node const& copy, Qor::U32 blocks) {
        Session::Config gives;
        gives.peerMayWrite = true;
        gives.ringBlocks = blocks;
        Session::Config takes;
        takes.ringBlocks = blocks;
        connect(source.root, gives, takes);
        reader->mount("/vgw/status", true, copy.status);
    }
};

class Chain {
  public:
    Chain(std::uint64_t seed, std::size_t length) : random_(seed) {
        for (std::size_t i = 0; i < length; ++i) {
            nodes_.push_back(std::make_unique<Node>(seed * 16 + i));
        }
        auto const blocks = static_cast<Qor::U32>(1 + below(8));
        for (std::size_t i = 1; i < length; ++i) {
            links_.push_back(std::make_unique<WritersLink>(*nodes_[i - 1], *nodes_[i], blocks));
        }
    }

    void run() {
        if (below(2) == 0) settle();
        for (std::uint64_t turns = 10 + below(60); turns > 0; --turns) turn();
        settle();
    }

    // All nodes hold what the first does, nobody owes, and nothing goes over any more.
    void check() {
        Lines const first = linesOf(*nodes_.front()->status);
        for (std::size_t i = 1; i < nodes_.size(); ++i) {
            ASSERT_EQ(difference(first, linesOf(*nodes_[i]->status)), "")
                << "node " << i << closed();
        }
        Qor::U64 const before = moved();
        for (auto const& link : links_) {
            ASSERT_EQ(link->closed(), "");
            ASSERT_FALSE(link->agent->demuxer().hasFlowsIn());
            ASSERT_FALSE(link->reader->demuxer().hasFlowsIn());
            ASSERT_FALSE(link->agent->demuxer().owes());
            ASSERT_FALSE(link->reader->demuxer().owes());
        }
        settle();
        ASSERT_EQ(moved(), before);
    }

  private:
    std::uint64_t below(std::uint64_t limit) { return random_() % limit; }

    void turn() {
        constexpr std::size_t rooms[] = {0, 1, 60, 500, 5000, 40000, 1U << 20};
        for (std::uint64_t i = below(6); i > 0; --i) nodes_[below(nodes_.size())]->tree.step();
        WritersLink& link = *links_[below(links_.size())];
        link.near.roomIs(rooms[below(std::size(rooms))]);
        link.far.roomIs(rooms[below(std::size(rooms))]);
        for (std::uint64_t i = below(3); i > 0; --i) {
            WritersLink& served = *links_[below(links_.size())];
            (below(2) == 0 ? served.agent : served.reader)->service();
        }
    }

    std::string closed() const {
        std::string reasons;
        for (auto const& link : links_) {
            reasons += link->closed() + "; ";
            reasons += std::to_string(link->agent->demuxer().flows()) + " and ";
            reasons += std::to_string(link->reader->demuxer().flows()) + " flows; ";
        }
        return reasons;
    }

    Qor::U64 moved() const {
        Qor::U64 sum = 0;
        for (auto const& link : links_) sum += link->moved();
        return sum;
    }

    void settle() {
        for (auto const& link : links_) link->roomIs(~std::size_t{0});
        for (Qor::U64 before = ~Qor::U64{0}; before != moved();) {
            before = moved();
            for (auto const& link : links_) link->turn();
        }
    }

    std::mt19937_64 random_;
    std::vector<std::unique_ptr<Node>> nodes_;
    std::vector<std::unique_ptr<WritersLink>> links_;
};

// VGW_SEEDS=n runs so many, from VGW_SEED on.
void manyWriters(std::uint64_t count, std::size_t length) {
    std::uint64_t const from = Settings::number("VGW_SEED", 1);
    std::uint64_t const many = Settings::number("VGW_SEEDS", std::getenv("VGW_SEED") ? 1 : count);
    for (std::uint64_t seed = from; seed < from + many; ++seed) {
        Chain chain(seed, length);
        chain.run();
        chain.check();
        if (testing::Test::HasFailure()) {
            std::printf("VGW_SEED=%llu\n", static_cast<unsigned long long>(seed));
            return;
        }
    }
}

TEST(TwoWriters, BothEndsHoldTheSameAtRest) { manyWriters(Settings::volume(600, 200, 60), 2); }

TEST(TwoWriters, AllOfAChainHoldTheSameAtRest) { manyWriters(Settings::volume(300, 100, 30), 3); }

}  // namespace
