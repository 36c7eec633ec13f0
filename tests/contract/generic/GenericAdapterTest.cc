// A wrapper's adapters, and notifiees and wrappers of a user's own, on one class.
#include <vgw/OvsdbDataTypes.h>
#include <vgw/registry/Global.h>

#include "Heard.h"

namespace Contract {
namespace {

/// A compiled class's notifiee that puts off what it hears, in the fields that it has for this.
class Queuing : public Vgw::Global::NotifieeConst {
  public:
    std::string waiting() const {
        return std::to_string(pSwitchPending_.count) + std::to_string(managerPending_.count) +
               std::to_string(invalidAttribPending_.count);
    }
    void onPSwitch(Qor::String8 key) override { qorOnAttribute(386, pSwitchPending_.note(key)); }
    void onManager(Qor::String8 key) override { qorOnAttribute(387, managerPending_.note(key)); }
    void onInvalidAttrib(Qor::String8 key) override {
        qorOnAttribute(259, invalidAttribPending_.note(key));
    }
};

TEST(CompiledNotifiee, NewActivityDropsThePendingKeysOfEachLevel) {
    Qor::ActivityManager manager;
    auto const row = Qor::make<Vgw::Global>("g");
    auto const notifiee = Qor::make<Queuing>();
    notifiee->notifierIs(row);
    notifiee->activityIs(Qor::make<Qor::Activity>(manager, "first"));
    row->pSwitchIs("a", true);
    row->managerIs("a", true);
    row->managerIs("b", true);
    row->invalidAttribIs("a", true);
    EXPECT_EQ(notifiee->waiting(), "121");
    notifiee->activityIs(nullptr);
    EXPECT_EQ(notifiee->waiting(), "000");
}

TEST(GenericAdapter, WithoutAnOwnerDoesNothing) {
    auto const row = Qor::make<Vgw::Global>("g");
    auto const adapter = Qor::make<Vgw::Global::GenericIf_::GenericIf_Adapter_>(nullptr);
    adapter->notifierIs(row);
    EXPECT_EQ(row->notifierList().count(), 1U);
    adapter->hasNotificationActiveIs(true);
    row->pSwitchIs("u", true);
    row->typeIs(Vgw::manager);
    row->invalidAttribIs("manager", true);
    EXPECT_TRUE(adapter->hasNotificationActive());
    row->zeroReferencesIs(true);
    EXPECT_FALSE(adapter->hasNotificationActive());
    EXPECT_TRUE(row->pSwitch("u"));
}

TEST(GenericAdapter, IsMarkedAsHeldUntilTheEntityEnds) {
    auto const row = Qor::make<Vgw::Global>("g");
    Wrapper const wrapper = wrapperOf(row);
    auto const* const adapter = row->notifierList().head();
    EXPECT_TRUE(adapter->hasNotificationActive());
    row->pSwitchIs("u", true);
    EXPECT_TRUE(adapter->hasNotificationActive());
    row->zeroReferencesIs(true);
    EXPECT_FALSE(adapter->hasNotificationActive());
}

TEST(GenericAdapter, IsMarkedForDeletionWithItsWrapper) {
    auto const row = Qor::make<Vgw::Global>("g");
    Wrapper const wrapper = wrapperOf(row);
    auto const* const adapter = row->notifierList().head();
    wrapper->markedForDeletionIs(true);
    EXPECT_TRUE(wrapper->qorMarkedForDeletion());
    EXPECT_TRUE(adapter->qorMarkedForDeletion());
    wrapper->markedForDeletionIs(false);
    EXPECT_FALSE(wrapper->qorMarkedForDeletion());
    EXPECT_FALSE(adapter->qorMarkedForDeletion());
    EXPECT_FALSE(row->qorMarkedForDeletion());
}

TEST(GenericAdapter, MarkThatTheWrapperHasAlreadyChangesNothing) {
    auto const row = Qor::make<Vgw::Global>("g");
    Wrapper const wrapper = wrapperOf(row);
    auto* const adapter = row->notifierList().head();
    adapter->qorMarkedForDeletionIs(true);
    wrapper->markedForDeletionIs(false);
    EXPECT_TRUE(adapter->qorMarkedForDeletion()) << "it is not asked";
    wrapper->markedForDeletionIs(true);
    adapter->qorMarkedForDeletionIs(false);
    wrapper->markedForDeletionIs(true);
    EXPECT_FALSE(adapter->qorMarkedForDeletion()) << "it is not asked";
    wrapper->markedForDeletionIs(false);
}

/// A wrapper of a user's own, which hears by itself and has no watcher.
class Hearing : public Vgw::Global::GenericIf_ {
  public:
    using GenericIf_::GenericIf_;
    void onAttribute(Qor::AttributeId id) override { told.push_back({id, ""}); }
    void onAttribute(Qor::AttributeId id, Qor::Ptr<Qor::GenericIf const>& key) override {
        told.push_back({id, wrappedText(key.ptr())});
        kept = std::move(key);
    }
    AllTold told;
    WrapperConst kept;
};

TEST(GenericWrapper, HandlersMayBeOverriddenAndTakeTheKey) {
    auto const row = Qor::make<Vgw::Global>("g");
    auto const wrapper = Qor::make<Hearing>(row, false);
    row->typeIs(Vgw::manager);
    row->pSwitchIs("u", true);
    EXPECT_EQ(wrapper->told, (AllTold{{258, ""}, {386, "'u'"}}));
    ASSERT_TRUE(wrapper->kept);
    EXPECT_EQ(wrapper->kept->strRep(), "'u'");
}

TEST(GenericAdapter, HeldBySomebodyElseOutlivesItsWrapperAndDoesNothing) {
    auto const row = Qor::make<Vgw::Global>("g");
    Wrapper wrapper = wrapperOf(row);
    Qor::Ptr<Vgw::OvsdbDataModel::NotifieeConst> const adapter(row->notifierList().head());
    wrapper = nullptr;
    EXPECT_FALSE(adapter->qorNotifier());
    EXPECT_EQ(row->notifierList().count(), 0U);
    adapter->onType();
    adapter->onInvalidAttrib("manager");
    adapter->notifierIs(row);
    row->typeIs(Vgw::manager);
    EXPECT_EQ(row->type(), Vgw::manager);
}

TEST(GenericAdapter, HandlerThatThrowsStopsNobody) {
    auto const row = Qor::make<Vgw::Global>("g");
    Wrapper const first = wrapperOf(row);
    Wrapper const second = wrapperOf(row);
    Heard thrower;
    Heard next;
    thrower.inHandler = [] { throw std::runtime_error("a handler's own"); };
    first->watcherIs(&thrower);
    second->watcherIs(&next);
    EXPECT_NO_THROW(row->typeIs(Vgw::manager));
    EXPECT_EQ(next.take(), (AllTold{{258, ""}}));
    first->watcherIs(nullptr);
    second->watcherIs(nullptr);
}

}  // namespace
}  // namespace Contract
