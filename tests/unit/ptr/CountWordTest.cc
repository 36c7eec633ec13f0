#include <tests/unit/ptr/Counted.h>

#include <gtest/gtest.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>

namespace {

using Qor::PtrInterface;

TEST(CountWord, NewObjectHasTheBuildingCountAlone) {
    auto* const object = new Counted;
    EXPECT_EQ(object->qorRefWord(), 1U);
    EXPECT_FALSE(object->isNondestructing());
    EXPECT_FALSE(object->qorMarkedForDeletion());
    object->qorDeleteRef();
    EXPECT_EQ(Counted::living, 0);
}

TEST(CountWord, PtrFromPointerTakesAReferenceOfItsOwn) {
    auto* const object = new Counted;
    Counted::Ptr const ptr(object);
    EXPECT_EQ(object->qorRefs(), 2U);
    object->qorDeleteRef();
    EXPECT_EQ(object->qorRefs(), 1U);
    EXPECT_EQ(Counted::living, 1);
}

TEST(CountWord, AdoptTakesOverTheBuildingCount) {
    Counted::Ptr const ptr = Qor::adopt(new Counted);
    EXPECT_EQ(ptr->qorRefWord(), 1U);
}

TEST(CountWord, MarkIsBit31AndLeavesTheCount) {
    Counted::Ptr const ptr = Qor::make<Counted>();
    ptr->qorMarkedForDeletionIs(true);
    EXPECT_EQ(ptr->qorRefWord(), 0x80000001U);
    EXPECT_TRUE(ptr->qorMarkedForDeletion());
    EXPECT_LT(static_cast<Qor::I32>(ptr->qorRefWord()), 0);
    EXPECT_EQ(ptr->qorRefs(), 1U);
    ptr->qorMarkedForDeletionIs(true);
    ptr->qorMarkedForDeletionIs(false);
    EXPECT_EQ(ptr->qorRefWord(), 1U);
}

TEST(CountWord, MarkedObjectEndsWithItsLastReference) {
    Counted::ends = 0;
    Counted::Ptr ptr = Qor::make<Counted>();
    ptr->qorMarkedForDeletionIs(true);
    ptr = nullptr;
    EXPECT_EQ(Counted::ends, 1);
    EXPECT_EQ(Counted::living, 0);
}

TEST(CountWord, Bit29PlaysNoPartInTheZeroTest) {
    static int told;
    told = 0;
    auto const old = PtrInterface::weakWatchersEnd.load();
    PtrInterface::weakWatchersEnd = [](PtrInterface const*) noexcept { ++told; };
    Counted::Ptr ptr = Qor::make<Counted>();
    ptr->qorWeaklyWatchedIs(true);
    EXPECT_EQ(ptr->qorRefWord(), 0x20000001U);
    EXPECT_EQ(ptr->qorRefs(), 1U);
    ptr = nullptr;
    EXPECT_EQ(Counted::living, 0);
    EXPECT_GE(told, 1);
    PtrInterface::weakWatchersEnd = old;
}

TEST(CountWord, ZeroMaskLeavesOutTheTwoMarks) {
    EXPECT_EQ(PtrInterface::zeroMask, 0x5FFFFFFFU);
    EXPECT_EQ(PtrInterface::refsMask, 0x1FFFFFFFU);
    EXPECT_EQ(PtrInterface::zeroMask & PtrInterface::markedBit, 0U);
    EXPECT_EQ(PtrInterface::zeroMask & PtrInterface::weaklyWatchedBit, 0U);
}

TEST(CountWord, OneOfManyReferencesIsGivenUpAndTheLastIsNot) {
    auto const object = Qor::make<Counted>();
    EXPECT_TRUE(object->qorIsHeldOnce());
    EXPECT_FALSE(object->qorDeleteRefOfMany());
    EXPECT_EQ(object->qorRefWord(), 1U);
    object->qorNewRef();
    EXPECT_FALSE(object->qorIsHeldOnce());
    EXPECT_TRUE(object->qorDeleteRefOfMany());
    EXPECT_EQ(object->qorRefWord(), 1U);
}

TEST(CountWord, ReferenceOnAnObjectWithMarksIsNotGivenUpAsOneOfMany) {
    auto const object = Qor::make<Counted>();
    object->qorNewRef();
    object->qorWeaklyWatchedIs(true);
    EXPECT_FALSE(object->qorIsHeldOnce());
    EXPECT_FALSE(object->qorDeleteRefOfMany());
    EXPECT_EQ(object->qorRefs(), 2U);
    object->qorDeleteRef();
    EXPECT_TRUE(object->qorIsHeldOnce());
    object->qorWeaklyWatchedIs(false);
}

TEST(CountWord, NondestructingObjectHasTheByte1FAndIsNotCounted) {
    auto* const object = new Counted;
    object->isNondestructingIs(true);
    EXPECT_EQ(object->qorRefWord(), 0x1F000001U);
    EXPECT_TRUE(object->isNondestructing());
    {
        Counted::Ptr const a(object);
        Counted::Ptr const b(a);
        EXPECT_EQ(object->qorRefWord(), 0x1F000001U);
    }
    object->qorDeleteRef();
    object->qorDeleteRef();
    EXPECT_EQ(object->qorRefWord(), 0x1F000001U);
    EXPECT_EQ(Counted::living, 1);
    object->isNondestructingIs(false);
    EXPECT_EQ(object->qorRefs(), 1U);
    object->qorDeleteRef();
    EXPECT_EQ(Counted::living, 0);
}

TEST(CountWord, CountContinuesWhereNondestructingBegan) {
    auto* const object = new Counted;
    Counted::Ptr kept(object);
    object->isNondestructingIs(true);
    object->isNondestructingIs(true);
    object->isNondestructingIs(false);
    EXPECT_EQ(object->qorRefs(), 2U);
    EXPECT_FALSE(object->isNondestructing());
    object->qorDeleteRef();
    EXPECT_EQ(Counted::living, 1);
    kept = nullptr;
    EXPECT_EQ(Counted::living, 0);
}

TEST(CountWord, NondestructingObjectRemembersTwentyFourBitsOfItsCount) {
    auto* const object = new Counted;
    while (object->qorRefs() < 0xFFFFFF) object->qorNewRef();
    object->isNondestructingIs(true);
    object->isNondestructingIs(false);
    EXPECT_EQ(object->qorRefs(), 0xFFFFFFU);
    while (object->qorRefs() > 1) object->qorDeleteRef();
    object->qorDeleteRef();
    EXPECT_EQ(Counted::living, 0);
}

TEST(CountWordDeathTest, ObjectWithMoreReferencesThanItCouldRememberStaysDestructing) {
    auto const run = [] {
        auto* const object = new Counted;
        while (object->qorRefs() < 0x1000000) object->qorNewRef();
        object->isNondestructingIs(true);
        object->isNondestructingIs(false);
        std::fprintf(stderr, "%u references left", object->qorRefs());
        std::abort();
    };
    EXPECT_EXIT(run(), testing::KilledBySignal(SIGABRT),
                "Assertion 'fewer than 0x1000000 references' failed");
}

TEST(CountWord, WatchingLeavesANondestructingObjectNondestructing) {
    auto* const object = new Counted;
    object->isNondestructingIs(true);
    object->qorWeaklyWatchedIs(true);
    EXPECT_TRUE(object->isNondestructing());
    EXPECT_EQ(object->qorRefWord() >> 24, PtrInterface::nondestructingByte);
    object->qorWeaklyWatchedIs(false);
    EXPECT_TRUE(object->isNondestructing());
    object->isNondestructingIs(false);
    object->qorDeleteRef();
    EXPECT_EQ(Counted::living, 0);
}

TEST(CountWord, WatchedObjectStillTellsItsEndAfterItWasNondestructing) {
    static int told;
    told = 0;
    auto const old = PtrInterface::weakWatchersEnd.load();
    PtrInterface::weakWatchersEnd = [](PtrInterface const*) noexcept { ++told; };
    auto* const object = new Counted;
    object->qorWeaklyWatchedIs(true);
    object->isNondestructingIs(true);
    object->isNondestructingIs(false);
    object->qorDeleteRef();
    EXPECT_GE(told, 1);
    EXPECT_EQ(Counted::living, 0);
    PtrInterface::weakWatchersEnd = old;
}

TEST(CountWord, ManyReferencesAreCountedExactly) {
    Counted::Ptr const ptr = Qor::make<Counted>();
    constexpr Qor::U32 many = 100000;
    for (Qor::U32 i = 0; i < many; ++i) {
        ptr->qorNewRef();
    }
    EXPECT_EQ(ptr->qorRefs(), many + 1);
    for (Qor::U32 i = 0; i < many; ++i) {
        ptr->qorDeleteRef();
    }
    EXPECT_EQ(ptr->qorRefs(), 1U);
}

}  // namespace
