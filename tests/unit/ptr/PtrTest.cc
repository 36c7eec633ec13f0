#include <qor/core/ValidPtr.h>

#include <tests/unit/ptr/Counted.h>

#include <gtest/gtest.h>

#include <type_traits>

namespace {

class Derived : public Counted {};
class Other : public Counted {};

static_assert(sizeof(Counted::Ptr) == sizeof(void*));
static_assert(std::is_convertible_v<Qor::Ptr<Derived>, Counted::Ptr>);
static_assert(std::is_convertible_v<Counted::Ptr, Qor::Ptr<Counted const>>);
static_assert(!std::is_convertible_v<Qor::Ptr<Counted const>, Counted::Ptr>);
static_assert(!std::is_convertible_v<Counted::Ptr, Qor::Ptr<Derived>>);
static_assert(std::is_nothrow_move_constructible_v<Counted::Ptr>);

TEST(Ptr, DefaultIsNull) {
    Counted::Ptr const ptr;
    EXPECT_FALSE(ptr);
    EXPECT_EQ(ptr.ptr(), nullptr);
    EXPECT_TRUE(ptr == nullptr);
}

TEST(Ptr, CopyTakesAndDestructionGivesUp) {
    Counted::Ptr const ptr = Qor::make<Counted>();
    {
        Counted::Ptr const copy(ptr);
        EXPECT_EQ(ptr->qorRefs(), 2U);
        EXPECT_TRUE(copy == ptr);
    }
    EXPECT_EQ(ptr->qorRefs(), 1U);
}

TEST(Ptr, AssignmentTakesTheNewBeforeItGivesUpTheOld) {
    Counted::Ptr next = Qor::make<Counted>();
    Counted* const raw = next.ptr();
    Counted::Ptr holder = Qor::make<Counted>();
    Qor::U32 refsAtTheEnd = 0;
    holder->onDestruction = [&] { refsAtTheEnd = raw->qorRefs(); };
    holder = next;
    EXPECT_EQ(refsAtTheEnd, 2U);
    EXPECT_EQ(Counted::living, 1);
}

TEST(Ptr, AssignmentHasTheNewTargetWhenTheOldOneEnds) {
    Counted::Ptr const next = Qor::make<Counted>();
    Counted::Ptr holder = Qor::make<Counted>();
    bool seen = false;
    holder->onDestruction = [&] { seen = holder == next; };
    holder = next;
    EXPECT_TRUE(seen);
}

TEST(Ptr, AssigningTheTargetOfTheOldOneKeepsItAlive) {
    // The new target is owned by the old one alone.
    struct Chain : Counted {
        Qor::Ptr<Chain> next;
    };
    Qor::Ptr<Chain> head = Qor::make<Chain>();
    head->next = Qor::make<Chain>();
    Chain* const second = head->next.ptr();
    head = head->next;
    EXPECT_EQ(head.ptr(), second);
    EXPECT_EQ(head->qorRefs(), 1U);
    EXPECT_EQ(Counted::living, 1);
}

TEST(Ptr, SelfAssignmentKeepsTheObject) {
    Counted::Ptr ptr = Qor::make<Counted>();
    Counted::Ptr& same = ptr;
    ptr = same;
    EXPECT_EQ(ptr->qorRefs(), 1U);
    ptr = std::move(same);
    ASSERT_TRUE(ptr);
    EXPECT_EQ(ptr->qorRefs(), 1U);
}

TEST(Ptr, MoveChangesNoCountAndEmptiesTheSource) {
    Counted::Ptr from = Qor::make<Counted>();
    Counted* const raw = from.ptr();
    Counted::Ptr to(std::move(from));
    EXPECT_EQ(to.ptr(), raw);
    EXPECT_EQ(from.ptr(), nullptr);
    EXPECT_EQ(raw->qorRefs(), 1U);
    Counted::Ptr third;
    third = std::move(to);
    EXPECT_EQ(raw->qorRefs(), 1U);
    EXPECT_FALSE(to);
}

TEST(Ptr, MoveFromDerivedChangesNoCount) {
    Qor::Ptr<Derived> from = Qor::make<Derived>();
    Counted::Ptr const to(std::move(from));
    EXPECT_EQ(to->qorRefs(), 1U);
    EXPECT_FALSE(from);
}

TEST(Ptr, ReleaseHandsTheReferenceOver) {
    Counted::Ptr ptr = Qor::make<Counted>();
    Counted* const raw = ptr.release();
    EXPECT_FALSE(ptr);
    EXPECT_EQ(raw->qorRefs(), 1U);
    raw->qorDeleteRef();
    EXPECT_EQ(Counted::living, 0);
}

TEST(Ptr, NullAssignmentGivesUp) {
    Counted::Ptr ptr = Qor::make<Counted>();
    ptr = nullptr;
    EXPECT_EQ(Counted::living, 0);
}

TEST(Ptr, DynamicCastGivesTheSameObjectOrNull) {
    Counted::Ptr const derived = Qor::make<Derived>();
    EXPECT_EQ(Qor::dynamicCast<Derived>(derived).ptr(), derived.ptr());
    EXPECT_FALSE(Qor::dynamicCast<Other>(derived));
    EXPECT_FALSE(Qor::dynamicCast<Derived>(Counted::Ptr()));
    EXPECT_EQ(derived->qorRefs(), 1U);
    Qor::Ptr<Counted const> const readOnly(derived);
    EXPECT_TRUE(Qor::dynamicCast<Derived const>(readOnly));
}

TEST(Ptr, EqualityComparesTargets) {
    Counted::Ptr const a = Qor::make<Counted>();
    Counted::Ptr const b = Qor::make<Counted>();
    Qor::Ptr<Counted const> const c(a);
    EXPECT_TRUE(a == c);
    EXPECT_FALSE(a == b);
    EXPECT_TRUE(a == a.ptr());
    EXPECT_TRUE(a != b);
}

TEST(ValidPtr, PassesWhatIsThere) {
    Counted::Ptr const ptr = Qor::make<Counted>();
    EXPECT_TRUE(Qor::validPtr(ptr) == ptr);
}

TEST(ValidPtr, NullRaisesTheRangeException) {
    try {
        static_cast<void>(Qor::validPtr(Counted::Ptr()));
        FAIL() << "nothing was raised";
    } catch (Qor::RangeException const& e) {
        EXPECT_STREQ(e.what(), "null ValidPtr");
        EXPECT_TRUE(e.ids().contains(Qor::Exception::rangeId));
    }
}

}  // namespace
