#include <tests/property/framework/MapSequences.h>

using namespace Sample;

namespace {

using Node = SmallNode<false>;

class SequencesOverAllBuckets : public testing::TestWithParam<int> {};

TEST_P(SequencesOverAllBuckets, LoseAndRepeatNone) {
    SequenceRun<Node>::Keys const keys{
        {{0x10000000, 0}, {0x50000000, 0}, {0x90000000, 0}, {0xD0000000, 0}}};
    runAllSequences<Node>(keys, GetParam(), affordableLength(GetParam()));
}

INSTANTIATE_TEST_SUITE_P(UpToFour, SequencesOverAllBuckets, testing::Range(0, memberCount + 1));

}  // namespace
