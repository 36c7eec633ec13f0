// Trees in two peers under random changes, random room and random cuts: at rest every copy equals
// its source, and both equal a naive model. VGW_SEED=n repeats one run.
#include "TreeModel.h"

#include <tests/support/SessionPair.h>
#include <tests/support/Settings.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>

namespace {

using Qor::make;
using Qor::Name;
using Qor::NboAttrLog::MountId;
using Qor::NboAttrLog::Session;

// Both ends of one connection.
struct Link : SessionPair {
    Link(Qor::Ptr<Qor::Dir> const& root, Vgw::Status::Ptr const& copy, bool writable,
         Qor::U32 blocks) {
        Session::Config agents;
        agents.peerMayWrite = true;
        agents.ringBlocks = blocks;
        Session::Config readers;
        readers.ringBlocks = blocks;
        connect(root, agents, readers);
        reader->mount("/vgw/status", writable, copy);
    }
    void settle() {
        roomIs(~std::size_t{0});
        SessionPair::settle();
    }
};

struct World {
    Qor::Ptr<Qor::Dir> root = make<Qor::Dir>(Name("vgw"));
    Vgw::Status::Ptr original = Vgw::statusFactory(Name("status"));
    Vgw::Status::Ptr copy = Vgw::statusFactory(Name("status"));

    World() { root->entryIs(Name("status"), original); }
    std::unique_ptr<Link> connect(bool writable, Qor::U32 blocks) const {
        return std::make_unique<Link>(root, copy, writable, blocks);
    }
};

void expectAudited(Link const& link) {
    EXPECT_EQ(link.agent->demuxer().flows(), 0U);
    EXPECT_FALSE(link.agent->demuxer().hasFlowsIn());
    EXPECT_FALSE(link.reader->demuxer().hasFlowsIn());
    EXPECT_EQ(link.reader->demuxer().openText(), 0U);
    EXPECT_EQ(link.agent->demuxer().adapters(), link.reader->demuxer().adapters());
}

// One script: the source changes, the connection has all kinds of room, and is cut at times.
void runScript(std::uint64_t seed) {
    World world;
    ChangingTree tree(world.original, seed);
    for (std::uint64_t i = tree.below(30); i > 0; --i) tree.step();
    auto const blocks = static_cast<Qor::U32>(1 + tree.below(8));
    auto link = world.connect(false, blocks);
    for (std::uint64_t turns = 20 + tree.below(60); turns > 0; --turns) {
        for (std::uint64_t i = tree.below(8); i > 0; --i) tree.step();
        constexpr std::size_t rooms[] = {0, 1, 7, 100, 5000, 40000, 1U << 20};
        link->roomIs(rooms[tree.below(std::size(rooms))]);
        link->turn();
        if (tree.below(25) == 0) {
            link->near.cut();
            link->turn();
            link = world.connect(false, blocks);
        }
        ASSERT_EQ(difference(tree.model(), linesOf(*world.original)), "");
    }
    link->settle();
    ASSERT_EQ(link->closed(), "");
    ASSERT_EQ(difference(tree.model(), linesOf(*world.copy)), "");
    expectAudited(*link);
}

// The copy changes, one writer at a time.
void runWriters(std::uint64_t seed) {
    World world;
    auto link = world.connect(true, 8);
    link->settle();
    auto const first = std::make_unique<ChangingTree>(world.original, seed);
    link->settle();
    ChangingTree second(world.copy, seed + 1);
    for (std::uint64_t i = 0; i < 60; ++i) {
        second.step();
        if (first->below(3) == 0) link->turn();
    }
    link->settle();
    ASSERT_EQ(link->closed(), "");
    ASSERT_EQ(difference(second.model(), linesOf(*world.original)), "");
    ASSERT_EQ(difference(second.model(), linesOf(*world.copy)), "");
}

template <class Run>
void manySeeds(std::uint64_t count, Run const& run) {
    char const* const given = std::getenv("VGW_SEED");
    std::uint64_t const from = given ? std::strtoull(given, nullptr, 10) : 1;
    for (std::uint64_t seed = from; seed < from + (given ? 1 : count); ++seed) {
        run(seed);
        if (testing::Test::HasFailure()) {
            std::printf("VGW_SEED=%llu\n", static_cast<unsigned long long>(seed));
            return;
        }
    }
}

TEST(Convergence, CopyEqualsItsSourceForEveryRoomAndEveryCut) {
    manySeeds(Settings::volume(400, 150, 40), runScript);
    ;
}

TEST(Convergence, SourceEqualsTheCopyThatIsWritten) {
    manySeeds(Settings::volume(100, 50, 15), runWriters);
    ;
}

}  // namespace
