// Listeners of a directory's copy that change it while its entries arrive.
#include <qor/attrlog/dir/DirAdapter.h>

#include <tests/support/SessionPair.h>
#include <vgw/attrlog/LogicalSwitch.h>

#include <gtest/gtest.h>

#include <memory>

namespace {

using Qor::make;
using Qor::Name;
using Qor::NboAttrLog::MountId;
using Qor::NboAttrLog::Session;

class Taker final : public Qor::Dir::Notifiee {
  public:
    void onEntry(Name name) override {
        if (name == Name("taken")) notifier()->entryDel(name);
    }
};

struct Attaching : Qor::NboAttrLog::SessionListener {
    void onMounted(MountId, Qor::Ptr<Qor::Entity> const& entity) override {
        dir = Qor::dynamicCast<Qor::Dir>(entity);
        taker = make<Taker>();
        taker->notifierIs(dir);
    }

    Qor::Ptr<Qor::Dir> dir;
    Qor::Ptr<Taker> taker;
};

TEST(EntryListener, OneThatTakesAnEntryOutWhileItArrivesEndsNoProcess) {
    auto const root = make<Qor::Dir>(Name("rows"));
    for (char const* const name : {"before", "taken", "stays"}) {
        root->entryIs(Name(name), make<Vgw::LogicalSwitch>(Name(name)));
    }
    Attaching heard;
    SessionPair pair;
    pair.connect(root);
    pair.reader->listenerIs(&heard);
    pair.reader->mount("/rows", false);
    pair.settle();
    ASSERT_TRUE(heard.dir);
    EXPECT_EQ(heard.dir->entrys(), 2U);
    EXPECT_FALSE(heard.dir->entry(Name("taken")));
    EXPECT_EQ(pair.closed(), "");
}

}  // namespace
