#include <tests/property/framework/MapSequences.h>

using namespace Sample;

namespace {

using Node = SmallNode<false>;

class SequencesOnOneHash : public testing::TestWithParam<int> {};

TEST_P(SequencesOnOneHash, LoseAndRepeatNone) {
    SequenceRun<Node>::Keys const keys{{{7, 1}, {7, 2}, {7, 3}, {7, 4}}};
    runAllSequences<Node>(keys, GetParam(), affordableLength(GetParam()));
}

INSTANTIATE_TEST_SUITE_P(UpToFour, SequencesOnOneHash, testing::Range(0, memberCount + 1));

}  // namespace
