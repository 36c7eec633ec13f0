#include <tests/property/framework/MapSequences.h>

using namespace Sample;

namespace {

using Node = SmallNode<true>;

class SequencesOnTwoTies : public testing::TestWithParam<int> {};

TEST_P(SequencesOnTwoTies, LoseAndRepeatNone) {
    SequenceRun<Node>::Keys const keys{{{7, 1}, {0x90000000, 2}, {7, 3}, {0x90000000, 4}}};
    runAllSequences<Node>(keys, GetParam(), affordableLength(GetParam()));
}

INSTANTIATE_TEST_SUITE_P(UpToFour, SequencesOnTwoTies, testing::Range(0, memberCount + 1));

}  // namespace
