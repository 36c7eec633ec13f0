// What a peer nests by classes that own their like: an owner's chain ends somewhere, as the end of
// a tree goes down it step by step.
#include <tests/memory/Pair.h>

#include <lab/nodes/Node.h>

#include <gtest/gtest.h>

namespace {

using Qor::make;
using Qor::Name;

// A tree at the other end, so many entities deep.
std::string closedAt(int depth) {
    auto const root = make<Qor::Dir>(Name("vgw"));
    auto const top = make<Lab::Node>(Name("n"));
    root->entryIs(Name("n"), top);
    auto at = top;
    for (int i = 2; i < depth; ++i) at = at->nodeIs(Name("n"));
    Memory::Pair pair(root);
    pair.reader->mount("/vgw/n", false, make<Lab::Node>(Name("n")));
    EXPECT_TRUE(pair.settle());
    return std::string(pair.reader->closed().view());
}

TEST(Depth, SixtyFourEntitiesAreTaken) { EXPECT_EQ(closedAt(64), ""); }

TEST(Depth, DeeperOnesEndTheSession) { EXPECT_EQ(closedAt(1000), "entities more than 64 deep"); }

}  // namespace
