// What an owner has when a child that it is to have can't be made.
#include "CountingNew.h"

#include <tests/unit/notify/TestListeners.h>

#include <gtest/gtest.h>

namespace {

using namespace Sample;

// Children that keep nothing of their parents.
struct Plain : Port {
    using Port::Port;
    void handleParent(Qor::Ptr<Qor::Entity> const&) override {}
};
struct Owner : Qor::Entity {
    using NotifierRoot = Owner;
    using Qor::Entity::Entity;
    struct NotifieeConst : Qor::RootNotifiee<Owner> {
        static inline constinit Qor::NotifieeKind const qorKind{
            Qor::NotifieeKind::Below{}, Qor::Entity::NotifieeConst::qorKind};
        NotifieeConst() { kindIs(qorKind); }
        void onMain() { ++told; }
        int told = 0;
    };
    struct MainAttr : Qor::ChildAttribute<Owner, 258, Plain> {
        static auto& field(auto& entity) { return entity.main; }
        static void tell(NotifieeConst& notifiee) { notifiee.onMain(); }
    };
    Qor::ListRaw<NotifieeConst>& notifierList() const noexcept { return list; }
    Qor::String8 attributeString(Qor::AttributeId) const override { return "main"; }
    Qor::Ptr<Plain> main;
    mutable Qor::ListRaw<NotifieeConst> list;
};

TEST(OwnerWithoutMemory, SingleChildStaysUntilItsReplacementIsMade) {
    auto const owner = Qor::make<Owner>("d");
    auto const first = Qor::setChild<Owner::MainAttr>(*owner, "first");
    auto const listener = Qor::make<Owner::NotifieeConst>();
    listener->notifierIs(owner);
    Qor::Name const second("second");
    Memory::failAt(1);
    EXPECT_THROW(Qor::setChild<Owner::MainAttr>(*owner, second), std::bad_alloc);
    Memory::failAt(0);
    EXPECT_EQ(owner->main, first);
    EXPECT_EQ(first->parent(), owner);
    EXPECT_EQ(first->uriPath(), "/d/main");
    EXPECT_EQ(listener->told, 0);
    Qor::setChild<Owner::MainAttr>(*owner, second);
    EXPECT_EQ(owner->main->qorName(), second);
    EXPECT_FALSE(first->parent());
    EXPECT_EQ(listener->told, 1);
    owner->main->parentIs(nullptr);
}

}  // namespace
