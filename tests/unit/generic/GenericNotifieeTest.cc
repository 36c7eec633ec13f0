// The listener that knows no class, on a directory.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include <qor/core/Exception.h>
#include <qor/generic/GenericNotifiee.h>
#include <qor/tree/Dir.h>

namespace {

using Told = std::vector<std::string>;

class Listener : public Qor::GenericNotifiee {
  public:
    using GenericNotifiee::GenericNotifiee;
    Told told;
    void onChange(Qor::QorAttr const& attribute, Qor::GenericIf const* key) override {
        told.push_back(std::string(attribute.name().view()) + " " +
                       (key ? std::string(key->strRep().view()) : "all"));
    }
    void onChanges() override { told.push_back("several"); }
};

class GenericNotifiee : public testing::Test {
  protected:
    Qor::Ptr<Qor::Dir> const dir = Qor::make<Qor::Dir>("top");
    void put(char const* name) { dir->entryIs(name, Qor::make<Qor::Dir>(name)); }
};

TEST_F(GenericNotifiee, TellsTheAttributeAndTheKey) {
    Listener listener(dir);
    put("a");
    dir->isNondestructingIs(true);
    dir->isNondestructingIs(false);
    EXPECT_EQ(listener.told, (Told{"entry 'a'", "isNondestructing all", "isNondestructing all"}));
    EXPECT_EQ(listener.notifier(), dir);
}

TEST_F(GenericNotifiee, ReadsWhatHasChangedThroughItsWrapper) {
    Listener listener(dir);
    put("a");
    auto const at = listener.wrapper().attributeIteratorConst(258);
    EXPECT_EQ(at.value()->strRep(), "'/top/a'");
    EXPECT_TRUE(listener.wrapper().isConst());
}

TEST_F(GenericNotifiee, HearsNothingOnceItHasGone) {
    Told heard;
    {
        Listener listener(dir);
        put("a");
        heard = listener.told;
    }
    put("b");
    EXPECT_EQ(heard, (Told{"entry 'a'"}));
}

TEST_F(GenericNotifiee, MayBeLetGoOfWithinACall) {
    struct Once : Listener {
        using Listener::Listener;
        std::unique_ptr<Once>* self = nullptr;
        int* calls = nullptr;
        void onChange(Qor::QorAttr const&, Qor::GenericIf const*) override {
            ++*calls;
            self->reset();
        }
    };
    int calls = 0;
    auto once = std::make_unique<Once>(dir);
    once->self = &once;
    once->calls = &calls;
    put("a");
    put("b");
    EXPECT_EQ(calls, 1);
    EXPECT_FALSE(once);
}

TEST_F(GenericNotifiee, WithAnActivityGathersChangesUntilItsTurn) {
    Qor::ActivityManager manager;
    Listener listener(dir);
    listener.wrapper().activityIs(Qor::make<Qor::Activity>(manager, "listener"));
    put("a");
    put("b");
    EXPECT_EQ(listener.told, Told{});
    manager.runReady(100);
    EXPECT_EQ(listener.told, (Told{"entry all"}));
}

TEST_F(GenericNotifiee, OfNothingIsRefused) {
    EXPECT_THROW(Listener(nullptr), Qor::RangeException);
}

}  // namespace
