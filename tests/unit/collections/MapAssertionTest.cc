#include <tests/unit/collections/TestMember.h>

#include <gtest/gtest.h>

using namespace Sample;

namespace {

TEST(MapAssertionDeathTest, LinkingAMemberThatIsLinkedStops) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    PlaceMap map;
    auto const first = add(map, 1, 1);
    add(map, 1, 2);  // so that the first has a successor
    ASSERT_NE(first->fwkHmNext(), nullptr);
    EXPECT_EXIT(map.newMember(first, first->fwkHash()), testing::KilledBySignal(SIGABRT),
                "Qor/HashMap:328: newMember: Assertion 't->fwkHmNext\\(\\) == 0' failed\\.");
}

TEST(MapAssertionDeathTest, LinkingItIntoASecondMapStopsToo) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    PlaceMap map;
    PlaceMap other;
    auto const first = add(map, 1, 1);
    add(map, 1, 2);
    EXPECT_EXIT(other.newMember(first, first->fwkHash()), testing::KilledBySignal(SIGABRT),
                "Qor/HashMap:328: .*Assertion 't->fwkHmNext\\(\\) == 0' failed\\.");
}

}  // namespace
