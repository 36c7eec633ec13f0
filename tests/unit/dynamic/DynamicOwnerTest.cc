// What an entity that is known by its description owns: its replacement, and the owner's end.
#include "Described.h"
#include "Tree.h"

#include <qor/dynamic/DynamicEntity.h>
#include <qor/tree/Dir.h>

#include <gtest/gtest.h>

#include <functional>

namespace {

using Qor::DynamicEntity;
using Qor::Name;
using Qor::Ptr;

// Calls `react` at each change.
struct Reacting : DynamicEntity::NotifieeConst {
    void onAttr(Qor::AttributeId id) override { react(id); }
    void onAttrKey(Qor::AttributeId id, Qor::DynamicKey const&) override { react(id); }
    void onZeroReferences() override {
        if (onEnd) onEnd();
    }
    std::function<void(Qor::AttributeId)> react = [](Qor::AttributeId) {};
    std::function<void()> onEnd;
};

Ptr<Reacting> heard(Ptr<Qor::Entity> const& entity) {
    auto const listener = Qor::make<Reacting>();
    listener->notifierIs(entity);
    listener->isWeakReferenceIs(true);
    return listener;
}

// The child of that name, set through a wrapper.
Ptr<Qor::Entity> child(Tree::Wrapper const& owner, char const* attribute, char const* name) {
    auto const text = "'" + std::string(name) + "'";
    auto const made = owner->attributeOp(owner->attributeId(attribute), Tree::OpId::opSet, nullptr,
                                         Tree::listOf(Tree::valueOf(*Name::_fwkType(), text)));
    return made->entity();
}

class DynamicOwner : public testing::Test {
  protected:
    Ptr<Qor::Entity> status = Described::twin("Vgw::Status").newInstance(Name("status"));
    Tree::Wrapper wrapper = Tree::wrapperOf(status);
};

TEST_F(DynamicOwner, ReplacedSingleChildEndsWhenAllIsTold) {
    std::vector<std::string> log;
    auto const first = heard(child(wrapper, "ovsdb", "first"));
    first->onEnd = [&] { log.emplace_back("end"); };
    auto const owner = heard(status);
    owner->react = [&](Qor::AttributeId) { log.emplace_back("told"); };
    child(wrapper, "ovsdb", "second");
    EXPECT_EQ(log, (std::vector<std::string>{"told", "end"}));
}

TEST_F(DynamicOwner, SingleChildWhoseReplacementIsRefusedStays) {
    auto const first = child(wrapper, "ovsdb", "first");
    std::vector<Ptr<Qor::Dir>> nested{Qor::make<Qor::Dir>(Name("0"))};
    for (int depth = 1; depth < 70; ++depth) {
        auto const inner = Qor::make<Qor::Dir>(Name(std::to_string(depth).c_str()));
        nested.back()->entryIs(inner->qorName(), inner);
        nested.push_back(inner);
    }
    nested.back()->entryIs(status->qorName(), status);
    EXPECT_THROW(child(wrapper, "ovsdb", "second"), Qor::RangeException);
    EXPECT_EQ(wrapper->attributeOp(wrapper->attributeId("ovsdb"))->entity(), first);
    EXPECT_EQ(first->parent(), status);
}

TEST_F(DynamicOwner, SingleChildThatAHandlerSetsAgainAtTheEndIsLeftWithoutAParent) {
    child(wrapper, "ovsdb", "db");
    auto const listener = heard(status);
    Ptr<Qor::Entity> kept;
    listener->react = [&, owner = status.ptr()](Qor::AttributeId) {
        if (!kept) kept = child(Tree::wrapperOf(owner), "ovsdb", "again");
    };
    wrapper = nullptr;
    status = nullptr;
    ASSERT_TRUE(kept);
    ASSERT_EQ(kept->parent().ptr(), nullptr);
    EXPECT_EQ(kept->uriPath(), "/again");
}

TEST_F(DynamicOwner, EntityThatAHandlerAddsToAnEarlierCollectionAtTheEndIsLeftWithoutAParent) {
    Ptr<Qor::Entity> db = Described::twin("Vgw::HwVtepOvsdb").newInstance(Name("db"));
    child(Tree::wrapperOf(db), "logicalSwitch", "ls");
    auto const listener = heard(db);
    Ptr<Qor::Entity> kept;
    listener->react = [&, owner = db.ptr()](Qor::AttributeId) {
        if (!kept) kept = child(Tree::wrapperOf(owner), "root", "global");
    };
    db = nullptr;
    ASSERT_TRUE(kept);
    ASSERT_EQ(kept->parent().ptr(), nullptr);
    EXPECT_EQ(kept->uriPath(), "/global");
}

}  // namespace
