#include <modelc/check/Spelling.h>

#include <gtest/gtest.h>

namespace {

TEST(Spelling, OfAnAttributeFollowsFromItsName) {
    Modelc::Spelling const spelling("vlanBinding");
    EXPECT_EQ(spelling.setter(), "vlanBindingIs");
    EXPECT_EQ(spelling.builder(), "newVlanBinding");
    EXPECT_EQ(spelling.remover(), "vlanBindingDel");
    EXPECT_EQ(spelling.allRemover(), "vlanBindingDelAll");
    EXPECT_EQ(spelling.notifier(), "vlanBindingNotify");
    EXPECT_EQ(spelling.count(), "vlanBindings");
    EXPECT_EQ(spelling.handler(), "onVlanBinding");
    EXPECT_EQ(spelling.immediateHandler(), "onVlanBindingqorImmediate");
    EXPECT_EQ(spelling.memberClass(), "QorVlanBinding");
    EXPECT_EQ(spelling.iteratorClass(), "VlanBindingIterator");
    EXPECT_EQ(spelling.iteratorConstClass(), "VlanBindingIteratorConst");
    EXPECT_EQ(spelling.memberIteratorClass(), "QorVlanBindingIterator");
}

TEST(Spelling, OfASingleSmallLetterInFrontIsKept) {
    Modelc::Spelling const spelling("pSwitch");
    EXPECT_EQ(spelling.handler(), "onPSwitch");
    EXPECT_EQ(spelling.memberClass(), "QorPSwitch");
}

TEST(Spelling, OfAFactoryBeginsSmall) {
    EXPECT_EQ(Modelc::lowerFirst("HwVtepOvsdb"), "hwVtepOvsdb");
}

TEST(Spelling, OfAnIncludeGuardPartsTheWords) {
    EXPECT_EQ(Modelc::includeGuard("vgw/tables/HwVtepOvsdb.h"), "VGW_TABLES_HW_VTEP_OVSDB_H");
    EXPECT_EQ(Modelc::includeGuard("a-b/C2D.h"), "A_B_C2_D_H");
}

}  // namespace
