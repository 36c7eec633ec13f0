// A path and one above it, mounted on one connection, in each order.
#include <qor/tree/Dir.h>

#include <tests/support/SessionPair.h>
#include <vgw/attrlog/LogicalSwitch.h>
#include <vgw/attrlog/Status.h>

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <string>

namespace {

using Qor::make;
using Qor::Name;
using Qor::String8;
using Qor::NboAttrLog::MountId;
using Qor::NboAttrLog::Session;

struct HeardOfMounts : Qor::NboAttrLog::SessionListener {
    void onMounted(MountId mount, Qor::Ptr<Qor::Entity> const& entity) override {
        mounted[mount] = entity;
    }
    void onSynced(MountId mount) override { synced[mount] = true; }
    void onRefused(MountId mount, String8 const& reason) override { refused[mount] = reason; }

    std::map<MountId, Qor::Ptr<Qor::Entity>> mounted;
    std::map<MountId, bool> synced;
    std::map<MountId, String8> refused;
};

struct AskedGiver : Qor::NboAttrLog::SessionListener {
    String8 onAsked(String8 const&, bool, Qor::Entity&) override {
        ++asked;
        return {};
    }
    int asked = 0;
};

class OverlappingMounts : public testing::Test, protected SessionPair {
  protected:
    OverlappingMounts() {
        root->entryIs(Name("status"), status);
        status->ovsdbIs(Name("db"));
        Session::Config agents;
        agents.ringBlocks = 1;
        connect(root, agents);
        agent->listenerIs(&given);
        reader->listenerIs(&heard);
    }
    Vgw::LogicalSwitch::Ptr rows(unsigned count) {
        Vgw::LogicalSwitch::Ptr last;
        for (unsigned i = 0; i < count; ++i) {
            std::string const name = "ls" + std::to_string(i);
            last = status->ovsdb()->logicalSwitchIs(Name(std::string_view(name)));
            last->descIs(std::string_view(std::string(100, 'x')));
        }
        return last;
    }
    void settle() {
        for (int turn = 0; turn < 1000; ++turn) {
            reader->service(10000);
            agent->service(10000);
        }
    }
    static std::string_view path(Qor::Entity const& entity) { return entity.uriPath().view(); }

    Qor::Ptr<Qor::Dir> root = make<Qor::Dir>(Name("vgw"));
    Qor::Ptr<Vgw::Status> status = make<Vgw::Status>(Name("status"));
    HeardOfMounts heard;
    AskedGiver given;
};

TEST_F(OverlappingMounts, OneAboveAnotherIsRefusedByBothPathsAndTheOtherGoesOn) {
    MountId const below = reader->mount("/vgw/status/ovsdb", false);
    settle();
    MountId const above = reader->mount("/vgw", false);
    settle();
    EXPECT_EQ(heard.refused[above],
              "/vgw holds /vgw/status/ovsdb, which is mounted on this connection already: mount "
              "/vgw first, or on a connection of its own");
    EXPECT_EQ(given.asked, 1);
    rows(1);
    settle();
    auto const copy = Qor::dynamicCast<Vgw::HwVtepOvsdb>(heard.mounted[below]);
    ASSERT_TRUE(copy);
    EXPECT_EQ(copy->logicalSwitchs(), 1U);
    EXPECT_EQ(reader->closed(), String8());
    EXPECT_EQ(agent->closed(), String8());
}

TEST_F(OverlappingMounts, OneAboveAnotherIsMountedWhenTheOtherIsGivenBack) {
    MountId const below = reader->mount("/vgw/status/ovsdb", false);
    settle();
    reader->unmount(below);
    MountId const above = reader->mount("/vgw", false);
    MountId const again = reader->mount("/vgw/status/ovsdb", false);
    settle();
    EXPECT_TRUE(heard.refused.empty());
    auto const top = Qor::dynamicCast<Qor::Dir>(heard.mounted[above]);
    ASSERT_TRUE(top);
    auto const copy = Qor::dynamicCast<Vgw::Status>(top->entry(Name("status")));
    ASSERT_TRUE(copy);
    EXPECT_EQ(heard.mounted[again], copy->ovsdb());
    EXPECT_TRUE(heard.synced[again]);
    EXPECT_EQ(reader->closed(), String8());
}

TEST_F(OverlappingMounts, OneBelowAnotherThatIsOnItsWayIsThePartOfItsCopy) {
    auto const last = rows(5000);
    String8 const path = last->uriPath();
    MountId const above = reader->mount("/vgw", false);
    MountId const below = reader->mount(path, false);
    MountId const again = reader->mount(path, false);
    settle();
    EXPECT_TRUE(heard.refused.empty());
    auto const top = Qor::dynamicCast<Qor::Dir>(heard.mounted[above]);
    ASSERT_TRUE(top);
    auto const copy = Qor::dynamicCast<Vgw::Status>(top->entry(Name("status")));
    ASSERT_TRUE(copy && copy->ovsdb());
    EXPECT_EQ(copy->ovsdb()->logicalSwitchs(), 5000U);
    EXPECT_EQ(heard.mounted[below], copy->ovsdb()->logicalSwitch(last->name()));
    EXPECT_EQ(heard.mounted[again], heard.mounted[below]);
    EXPECT_TRUE(heard.synced[below] && heard.synced[again]);
    EXPECT_EQ(reader->closed(), String8());
}

TEST_F(OverlappingMounts, OneThatIsMountedTwiceIsToldTwice) {
    MountId const first = reader->mount("/vgw/status", false);
    MountId const second = reader->mount("/vgw/status", false);
    settle();
    EXPECT_TRUE(heard.mounted[first]);
    EXPECT_EQ(heard.mounted[first], heard.mounted[second]);
    EXPECT_TRUE(heard.synced[first] && heard.synced[second]);
}

TEST_F(OverlappingMounts, OneBelowAnotherIsKeptInStepWhenTheOtherIsGivenBack) {
    MountId const above = reader->mount("/vgw", false);
    MountId const below = reader->mount("/vgw/status/ovsdb", false);
    settle();
    reader->unmount(above);
    settle();
    rows(3);
    settle();
    auto const copy = Qor::dynamicCast<Vgw::HwVtepOvsdb>(heard.mounted[below]);
    ASSERT_TRUE(copy);
    EXPECT_EQ(copy->logicalSwitchs(), 3U);
    EXPECT_EQ(reader->closed(), String8());
}

TEST_F(OverlappingMounts, OneThatWaitsCanBeGivenBack) {
    auto const last = rows(5000);
    reader->mount("/vgw", false);
    MountId const below = reader->mount(last->uriPath(), false);
    reader->unmount(below);
    settle();
    EXPECT_FALSE(heard.mounted.contains(below));
    EXPECT_EQ(given.asked, 1);
    EXPECT_EQ(reader->closed(), String8());
}

TEST_F(OverlappingMounts, OneThatWaitsAndIsGoneByThenIsRefused) {
    auto const last = rows(5000);
    String8 const path = last->uriPath();
    reader->mount("/vgw", false);
    MountId const below = reader->mount(path, false);
    reader->service(10000);
    agent->service(10000);
    status->ovsdb()->logicalSwitchDel(last->name());
    settle();
    EXPECT_EQ(heard.refused[below], path + " does not exist");
    EXPECT_EQ(reader->closed(), String8());
}

}  // namespace
