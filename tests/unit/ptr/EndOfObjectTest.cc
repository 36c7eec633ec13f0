#include <tests/unit/ptr/Counted.h>

#include <gtest/gtest.h>

namespace {

class EndOfObject : public testing::Test {
  protected:
    EndOfObject() {
        Counted::ends = 0;
        Counted::living = 0;
    }
    ~EndOfObject() override { EXPECT_EQ(Counted::living, 0); }
};

TEST_F(EndOfObject, ZeroReferencesIsToldOnceWithTrue) {
    Counted::endArgument = false;
    { auto const ptr = Qor::make<Counted>(); }
    EXPECT_EQ(Counted::ends, 1);
    EXPECT_TRUE(Counted::endArgument);
}

TEST_F(EndOfObject, ReferencesTakenAndDroppedWhileItIsToldHaveNoEffect) {
    auto ptr = Qor::make<Counted>();
    Counted* const raw = ptr.ptr();
    ptr->onZero = [raw] {
        for (int i = 0; i < 3; ++i) {
            Counted::Ptr const a(raw);
            Counted::Ptr const b(a);
        }
    };
    ptr = nullptr;
    EXPECT_EQ(Counted::ends, 1);
}

TEST_F(EndOfObject, ReferencesTakenAndDroppedInTheDestructorHaveNoEffect) {
    auto ptr = Qor::make<Counted>();
    Counted* const raw = ptr.ptr();
    int destructions = 0;
    ptr->onDestruction = [raw, &destructions] {
        ++destructions;
        Counted::Ptr const a(raw);
        Counted::Ptr const b(raw);
    };
    ptr = nullptr;
    EXPECT_EQ(Counted::ends, 1);
    EXPECT_EQ(destructions, 1);
}

TEST_F(EndOfObject, ReferenceTakenWhileItIsToldLetsItLive) {
    auto ptr = Qor::make<Counted>();
    Counted* const raw = ptr.ptr();
    Counted::Ptr kept;
    ptr->onZero = [raw, &kept] { kept = raw; };
    ptr = nullptr;
    ASSERT_EQ(Counted::living, 1);
    EXPECT_EQ(kept->qorRefWord(), 1U);
    EXPECT_EQ(Counted::ends, 1);
    kept->onZero = nullptr;
    kept = nullptr;
    EXPECT_EQ(Counted::living, 0);
    EXPECT_EQ(Counted::ends, 2);
}

TEST_F(EndOfObject, ObjectMayBeSavedFromItsEndAgainAndAgain) {
    auto ptr = Qor::make<Counted>();
    Counted* const raw = ptr.ptr();
    Counted::Ptr kept;
    raw->onZero = [raw, &kept] { kept = raw; };
    ptr = nullptr;
    for (int i = 0; i < 10; ++i) {
        Counted::Ptr const dropped = std::move(kept);
    }
    EXPECT_EQ(Counted::ends, 11);
    ASSERT_EQ(Counted::living, 1);
    raw->onZero = nullptr;
    kept = nullptr;
}

TEST_F(EndOfObject, SavedMarkedObjectKeepsItsMark) {
    auto ptr = Qor::make<Counted>();
    Counted* const raw = ptr.ptr();
    Counted::Ptr kept;
    raw->qorMarkedForDeletionIs(true);
    raw->onZero = [raw, &kept] { kept = raw; };
    ptr = nullptr;
    EXPECT_EQ(kept->qorRefWord(), 0x80000001U);
    raw->onZero = nullptr;
    kept = nullptr;
}

TEST_F(EndOfObject, MadeNondestructingWhileItIsToldStays) {
    auto ptr = Qor::make<Counted>();
    Counted* const raw = ptr.ptr();
    raw->onZero = [raw] { raw->isNondestructingIs(true); };
    ptr = nullptr;
    ASSERT_EQ(Counted::living, 1);
    EXPECT_EQ(raw->qorRefWord(), 0x1F000000U);
    raw->onZero = nullptr;
    raw->isNondestructingIs(false);
    { Counted::Ptr const last(raw); }
    EXPECT_EQ(Counted::living, 0);
}

TEST_F(EndOfObject, NondestructingOnAndOffWhileItIsToldEndsIt) {
    auto ptr = Qor::make<Counted>();
    Counted* const raw = ptr.ptr();
    raw->onZero = [raw] {
        raw->isNondestructingIs(true);
        raw->isNondestructingIs(false);
    };
    ptr = nullptr;
    EXPECT_EQ(Counted::ends, 1);
}

TEST_F(EndOfObject, SavedAfterNondestructingOnAndOffHasAPlainCount) {
    auto ptr = Qor::make<Counted>();
    Counted* const raw = ptr.ptr();
    Counted::Ptr kept;
    raw->onZero = [raw, &kept] {
        raw->isNondestructingIs(true);
        raw->isNondestructingIs(false);
        kept = raw;
    };
    ptr = nullptr;
    ASSERT_EQ(Counted::living, 1);
    EXPECT_EQ(kept->qorRefWord(), 1U);
    raw->onZero = nullptr;
    kept = nullptr;
}

TEST_F(EndOfObject, EndingIsVisibleFromTheTellingToTheDestructor) {
    auto ptr = Qor::make<Counted>();
    Counted* const raw = ptr.ptr();
    EXPECT_FALSE(raw->qorIsEnding());
    bool told = false;
    bool destroyed = false;
    raw->onZero = [&] { told = raw->qorIsEnding(); };
    raw->onDestruction = [&] { destroyed = raw->qorIsEnding(); };
    ptr = nullptr;
    EXPECT_TRUE(told);
    EXPECT_TRUE(destroyed);
}

TEST_F(EndOfObject, ObjectsThatHoldEachOtherInTurnEndOneAfterTheOther) {
    struct Chain : Counted {
        Qor::Ptr<Chain> next;
    };
    Qor::Ptr<Chain> head;
    for (int i = 0; i < 1000; ++i) {
        auto link = Qor::make<Chain>();
        link->next = std::move(head);
        head = std::move(link);
    }
    EXPECT_EQ(Counted::living, 1000);
    head = nullptr;
    EXPECT_EQ(Counted::ends, 1000);
}

TEST_F(EndOfObject, ObjectOutsideTheHeapMayBeCountedWhileItStands) {
    Counted object;
    {
        Counted::Ptr const a(&object);
        Counted::Ptr const b(a);
        EXPECT_EQ(object.qorRefs(), 3U);
    }
    EXPECT_EQ(object.qorRefs(), 1U);
}

}  // namespace
