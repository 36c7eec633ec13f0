#include <tests/unit/notify/TestListeners.h>

#include <gtest/gtest.h>

#include <set>

using namespace Sample;

namespace {

class KeyedSetter : public testing::Test {
  protected:
    Row::Ptr row = Qor::make<Row>("r");
    Log log;
    RowListener::Ptr a = listen<RowListener>(row, log, "a");
};

TEST_F(KeyedSetter, FalseUnderAnAbsentKeyCreatesAMember) {
    row->markIs("port", false);
    EXPECT_EQ(row->marks(), 1U);
    EXPECT_FALSE(row->mark("port"));
    EXPECT_EQ(log, (Log{"a:mark(port)"}));
}

TEST_F(KeyedSetter, FalseOverTrueIsStoredAndTheMemberStays) {
    row->markIs("port", true);
    row->markIs("port", false);
    EXPECT_EQ(row->marks(), 1U);
    EXPECT_FALSE(row->mark("port"));
    EXPECT_EQ(log, (Log{"a:mark(port)", "a:mark(port)"}));
}

TEST_F(KeyedSetter, EqualValueTellsNobody) {
    row->labelIs(7, "x");
    row->labelIs(7, "x");
    row->markIs("m", true);
    row->markIs("m", true);
    EXPECT_EQ(log, (Log{"a:label(7)", "a:mark(m)"}));
}

TEST_F(KeyedSetter, AbsentKeyReadsAsTheDefault) {
    EXPECT_FALSE(row->mark("none"));
    EXPECT_EQ(row->label(9), "");
    EXPECT_EQ(row->marks(), 0U);
}

TEST_F(KeyedSetter, MemberIsThereWhenItIsTold) {
    Qor::String8 seen;
    a->react = [&](std::string const&) { seen = row->label(7); };
    row->labelIs(7, "x");
    EXPECT_EQ(seen, "x");
    row->labelIs(7, "y");
    EXPECT_EQ(seen, "y");
}

TEST_F(KeyedSetter, NewMemberAloneTellsNobody) {
    auto const member = Qor::newKeyed<Row::LabelAttr>(*row, Qor::U16{3}, Qor::String8("x"));
    EXPECT_EQ(member->qorRefs(), 2U);
    EXPECT_EQ(row->label(3), "x");
    EXPECT_TRUE(log.empty());
}

TEST_F(KeyedSetter, EmptyKeyIsAKey) {
    row->markIs("", true);
    EXPECT_TRUE(row->mark(""));
    EXPECT_EQ(log, (Log{"a:mark()"}));
}

class KeyedDel : public KeyedSetter {};

TEST_F(KeyedDel, GivesTheOldValueAndTells) {
    row->labelIs(7, "x");
    row->markIs("m", true);
    log.clear();
    EXPECT_EQ(row->labelDel(7), "x");
    EXPECT_TRUE(row->markDel("m"));
    EXPECT_EQ(log, (Log{"a:label(7)", "a:mark(m)"}));
    EXPECT_EQ(row->labels() + row->marks(), 0U);
}

TEST_F(KeyedDel, OfAnAbsentKeyGivesTheDefaultAndTellsNobody) {
    EXPECT_EQ(row->labelDel(7), "");
    EXPECT_FALSE(row->markDel("m"));
    EXPECT_TRUE(log.empty());
}

TEST_F(KeyedDel, MemberIsGoneWhenItIsTold) {
    row->labelIs(7, "x");
    Qor::U32 left = 99;
    a->react = [&](std::string const&) { left = row->labels(); };
    row->labelDel(7);
    EXPECT_EQ(left, 0U);
}

TEST_F(KeyedDel, MayBeUndoneByTheHandler) {
    row->labelIs(7, "x");
    a->react = [this](std::string const&) {
        a->react = nullptr;
        row->labelIs(7, "again");
    };
    EXPECT_EQ(row->labelDel(7), "x");
    EXPECT_EQ(row->label(7), "again");
}

class KeyedDelAll : public KeyedSetter {};

TEST_F(KeyedDelAll, TellsEachMemberOnce) {
    std::multiset<std::string> expected;
    for (Qor::U16 i = 0; i < 50; ++i) {
        row->labelIs(i, "x");
        expected.insert("a:label(" + std::to_string(i) + ")");
    }
    log.clear();
    row->labelDelAll();
    EXPECT_EQ(std::multiset<std::string>(log.begin(), log.end()), expected);
    EXPECT_EQ(row->labels(), 0U);
}

TEST_F(KeyedDelAll, TellsInTheOrderOfIteration) {
    Log expected;
    for (Qor::U16 i = 0; i < 50; ++i) {
        row->labelIs(i, "x");
    }
    for (auto const& entry : row->labelIterator()) {
        expected.push_back("a:label(" + std::to_string(entry.key) + ")");
    }
    log.clear();
    row->labelDelAll();
    EXPECT_EQ(log, expected);
}

TEST_F(KeyedDelAll, OfAnEmptyCollectionTellsNothing) {
    row->labelDelAll();
    EXPECT_TRUE(log.empty());
}

TEST_F(KeyedDelAll, RemovesAndTellsWhatHandlersAddMeanwhile) {
    for (Qor::U16 i = 0; i < 4; ++i) {
        row->labelIs(i, "x");
    }
    log.clear();
    Qor::U16 fresh = 100;
    a->react = [&](std::string const&) {
        if (fresh < 105) {
            row->labelIs(fresh++, "new");
        }
    };
    row->labelDelAll();
    EXPECT_EQ(row->labels(), 0U);
    EXPECT_EQ(log.size(), 4U + 2 * 5U);  // each that came is told as it comes and as it goes
}

TEST_F(KeyedDelAll, MemberThatAHandlerRemovesIsToldOnce) {
    for (Qor::U16 i = 0; i < 10; ++i) {
        row->labelIs(i, "x");
    }
    log.clear();
    a->react = [this](std::string const&) {
        if (auto walk = row->labelIterator()) {
            row->labelDel(walk.key());
        }
    };
    row->labelDelAll();
    std::set<std::string> const distinct(log.begin(), log.end());
    EXPECT_EQ(log.size(), 10U);
    EXPECT_EQ(distinct.size(), 10U);
}

TEST_F(KeyedDelAll, EntityMayBeDroppedByAHandler) {
    int const before = Row::living();
    for (Qor::U16 i = 0; i < 10; ++i) {
        row->labelIs(i, "x");
    }
    a->isWeakReferenceIs(true);
    a->react = [this](std::string const&) { row = nullptr; };
    row->labelDelAll();
    EXPECT_EQ(Row::living(), before - 1);
    EXPECT_EQ(log.back(), "a:zero");
}

TEST_F(KeyedDelAll, DestructionOfARowTellsNothingOfItsMembers) {
    row->labelIs(1, "x");
    row->markIs("m", true);
    a->isWeakReferenceIs(true);
    log.clear();
    row = nullptr;
    EXPECT_EQ(log, (Log{"a:zero"}));
}

TEST_F(KeyedSetter, IteratorOfTheAttributeDeletesAndTells) {
    for (Qor::U16 i = 0; i < 4; ++i) {
        row->labelIs(i, "x");
    }
    log.clear();
    for (auto walk = row->labelIterator(); walk; ++walk) {
        if (walk.key() % 2 == 0) {
            walk.del();
        }
    }
    EXPECT_EQ(log, (Log{"a:label(0)", "a:label(2)"}));
    EXPECT_EQ(row->labels(), 2U);
}

TEST_F(KeyedSetter, IteratorOfTheAttributeHoldsTheEntity) {
    int const before = Row::living();
    row->labelIs(1, "x");
    a->notifierIs(nullptr);
    {
        auto const walk = row->labelIterator();
        row = nullptr;
        EXPECT_EQ(Row::living(), before);
        EXPECT_EQ(walk.value(), "x");
    }
    EXPECT_EQ(Row::living(), before - 1);
}

}  // namespace
