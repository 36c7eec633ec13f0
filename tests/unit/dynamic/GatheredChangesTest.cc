// What a wrapper over a dynamic entity hears when its activity gathers the changes.
#include "Described.h"
#include "Tree.h"

#include <gtest/gtest.h>

#include <functional>

namespace {

using Qor::GenericIf;
using Told = std::vector<std::string>;

class Teller : public GenericIf::Watcher {
  public:
    Told take() { return std::exchange(told_, {}); }
    void onAttribute(GenericIf& wrapper, Qor::AttributeId id, GenericIf::PtrConst& key) override {
        std::string const name(wrapper.attributeString(id).charPtr());
        told_.push_back(name + (key ? std::string(" ") + key->strRep().charPtr() : ""));
    }
    void onNotification(GenericIf&) override {
        told_.push_back("all");
        if (onAll) std::exchange(onAll, nullptr)();
    }

    std::function<void()> onAll;

  private:
    Told told_;
};

Tree::Wrapper valueOf(char const* type, char const* text) {
    return Tree::valueOf(*Qor::QorType::type(type), text);
}

class GatheredChanges : public testing::Test {
  protected:
    GatheredChanges() {
        wrapper_->watcherIs(&teller_);
        queue();
    }
    ~GatheredChanges() override { wrapper_->watcherIs(nullptr); }

    void queue() { wrapper_->activityIs(Qor::make<Qor::Activity>(manager_, "gathering")); }
    void flag(char const* attribute, char const* key) {
        auto const id = wrapper_->attributeId(attribute);
        wrapper_->attributeOp(id, Tree::OpId::opSet, valueOf("Qor::String8", key),
                              valueOf("bool", "true"));
    }
    void one(char const* name) {
        wrapper_->attributeOp(wrapper_->attributeId(name), Tree::OpId::opSet, nullptr,
                              valueOf("Qor::String8", "'text'"));
    }
    Told run() {
        manager_.runReady(100);
        return teller_.take();
    }

    Qor::ActivityManager manager_;
    Teller teller_;
    Qor::Ptr<Qor::Entity> const entity_ =
        Described::twin(*Qor::QorType::type("Vgw::PhysicalSwitch")).newInstance("row");
    Tree::Wrapper const wrapper_ = Tree::wrapperOf(entity_);
};

TEST_F(GatheredChanges, PendingKeyIsNotLostToAnotherThatChangesInTheTurn) {
    teller_.onAll = [this] { flag("port", "'k2'"); };
    one("desc");
    flag("port", "'k1'");
    EXPECT_EQ(run(), (Told{"all", "port 'k2'", "port"}));
}

TEST_F(GatheredChanges, NewActivityDropsThePendingKeys) {
    flag("port", "'dropped'");
    flag("fault", "'dropped'");
    queue();
    flag("port", "'k'");
    EXPECT_EQ(run(), Told{"port 'k'"}) << "one key, not two";
    one("desc");
    flag("port", "'l'");
    EXPECT_EQ(run(), (Told{"all", "port 'l'"})) << "and no other's";
}

}  // namespace
