#include <tests/unit/notify/TestListeners.h>

#include <gtest/gtest.h>

using namespace Sample;

namespace {

class OwningSetter : public testing::Test {
  protected:
    Device::Ptr device = Qor::make<Device>("d");
    Log log;
    DeviceListener::Ptr a = listen<DeviceListener>(device, log, "a");
};

TEST_F(OwningSetter, MakesTheEntityAndIsItsParent) {
    auto const port = device->portIs("p");
    ASSERT_TRUE(port);
    EXPECT_EQ(port->name(), "p");
    EXPECT_TRUE(port->parent() == device);
    EXPECT_EQ(port->parentAttrId(), 258);
    EXPECT_EQ(port->qorRefs(), 2U);
    EXPECT_EQ(log, (Log{"a:port(p)"}));
}

TEST_F(OwningSetter, NameThatExistsGivesTheEntityAndTellsNobody) {
    auto const port = device->portIs("p");
    EXPECT_TRUE(device->portIs("p") == port);
    EXPECT_EQ(device->ports(), 1U);
    EXPECT_EQ(log, (Log{"a:port(p)"}));
}

TEST_F(OwningSetter, EntityIsInItsPlaceWhenItIsTold) {
    bool inPlace = false;
    a->react = [&](std::string const&) {
        inPlace = device->port("p") && device->port("p")->parent() == device;
    };
    device->portIs("p");
    EXPECT_TRUE(inPlace);
}

TEST_F(OwningSetter, NewAloneTellsNobody) {
    device->newPort("p");
    EXPECT_EQ(device->ports(), 1U);
    EXPECT_TRUE(log.empty());
}

TEST_F(OwningSetter, GivesTheEntityAlsoWhenAHandlerRemovesIt) {
    a->react = [this](std::string const&) {
        a->react = nullptr;
        device->portDel("p");
    };
    auto const port = device->portIs("p");
    ASSERT_TRUE(port);
    EXPECT_FALSE(port->parent());
    EXPECT_EQ(device->ports(), 0U);
}

TEST_F(OwningSetter, AbsentNameReadsAsNull) { EXPECT_FALSE(device->port("p")); }

class OwningDel : public OwningSetter {};

TEST_F(OwningDel, ClearsTheParentBeforeItIsToldAndHandsTheEntityOver) {
    auto const port = device->portIs("p");
    log.clear();
    bool orphan = false;
    a->react = [&](std::string const&) { orphan = !port->parent(); };
    EXPECT_TRUE(device->portDel("p") == port);
    EXPECT_TRUE(orphan);
    EXPECT_EQ(port->qorRefs(), 1U);
    EXPECT_EQ(log, (Log{"a:port(p)"}));
    EXPECT_EQ(port->fwkHmNext(), nullptr);
}

TEST_F(OwningDel, OfAnAbsentNameGivesNullAndTellsNobody) {
    EXPECT_FALSE(device->portDel("p"));
    EXPECT_TRUE(log.empty());
}

TEST_F(OwningDel, EntityThatNobodyHoldsEnds) {
    int const before = Port::living();
    device->portIs("p");
    device->portDel("p");
    EXPECT_EQ(Port::living(), before);
}

TEST_F(OwningDel, AllClearsTheParentsAndTellsEach) {
    std::vector<Port::Ptr> held;
    for (char const* name : {"p", "q", "r"}) {
        held.push_back(device->portIs(name));
    }
    log.clear();
    device->portDelAll();
    EXPECT_EQ(log.size(), 3U);
    EXPECT_EQ(device->ports(), 0U);
    for (auto const& port : held) {
        EXPECT_FALSE(port->parent());
        EXPECT_EQ(port->qorRefs(), 1U);
    }
}

TEST_F(OwningDel, HandlerMayRemoveTheOneOnWhichTheBulkRemovalStands) {
    for (int i = 0; i < 10; ++i) {
        device->portIs(Qor::Name(std::to_string(i).c_str()));
    }
    log.clear();
    a->react = [this](std::string const&) {
        if (auto walk = device->portIterator()) {
            device->portDel(walk.key());
        }
    };
    device->portDelAll();
    EXPECT_EQ(log.size(), 10U);
    EXPECT_EQ(device->ports(), 0U);
}

class OwnerEnd : public OwningSetter {};

TEST_F(OwnerEnd, OwnedEntitiesGoAndAreTold) {
    int const before = Port::living();
    device->portIs("p");
    device->mainIs("m");
    a->isWeakReferenceIs(true);
    log.clear();
    device = nullptr;
    EXPECT_EQ(log, (Log{"a:zero", "a:port(p)", "a:main"}));
    EXPECT_EQ(Port::living(), before);
    EXPECT_EQ(a->qorNotifier(), nullptr);
}

TEST_F(OwnerEnd, HeldEntitiesLiveOnWithoutAParent) {
    auto const port = device->portIs("p");
    auto const main = device->mainIs("m");
    a->notifierIs(nullptr);
    device = nullptr;
    EXPECT_FALSE(port->parent());
    EXPECT_FALSE(main->parent());
    EXPECT_EQ(port->qorRefs(), 1U);
    EXPECT_EQ(main->qorRefs(), 1U);
}

TEST_F(OwnerEnd, HandlerMayAddWhileTheContentsGo) {
    int const before = Port::living();
    device->portIs("p");
    a->isWeakReferenceIs(true);
    Device* const raw = device.ptr();
    bool added = false;
    a->react = [&](std::string const& event) {
        if (event == "port(p)" && !std::exchange(added, true)) {
            raw->portIs("late");
        }
    };
    log.clear();
    device = nullptr;
    EXPECT_EQ(log, (Log{"a:zero", "a:port(p)", "a:port(late)", "a:port(late)"}));
    EXPECT_EQ(Port::living(), before);
}

// A handler that adds what the end has gone past already: nobody is told, and it has no parent.
TEST_F(OwnerEnd, SingleChildThatAHandlerSetsAgainIsLeftWithoutAParent) {
    device->mainIs("m");
    a->isWeakReferenceIs(true);
    Device* const raw = device.ptr();
    Port::Ptr kept;
    a->react = [&](std::string const& event) {
        if (event == "main" && !kept) {
            kept = raw->mainIs("again");
        }
    };
    log.clear();
    device = nullptr;
    EXPECT_EQ(log, (Log{"a:zero", "a:main", "a:main"}));
    ASSERT_TRUE(kept);
    ASSERT_EQ(kept->parent().ptr(), nullptr);
    EXPECT_EQ(kept->uriPath(), "/again");
}

TEST_F(OwnerEnd, EntityThatAHandlerAddsToAnEarlierCollectionIsLeftWithoutAParent) {
    int const before = Port::living();
    device->mainIs("m");
    a->isWeakReferenceIs(true);
    Device* const raw = device.ptr();
    Port::Ptr kept;
    a->react = [&](std::string const& event) {
        if (event == "main") {
            kept = raw->portIs("late");
            raw->portIs("later");
        }
    };
    device = nullptr;
    ASSERT_TRUE(kept);
    EXPECT_EQ(kept->parents, (std::vector<Qor::Entity*>{raw, nullptr}));
    EXPECT_EQ(kept->qorRefs(), 1U);
    EXPECT_EQ(Port::living(), before + 1);
}

TEST_F(OwnerEnd, OwnerIsDestroyedOnceThoughHandlersTakeAndDropReferences) {
    int const before = Device::living();
    device->portIs("p");
    a->isWeakReferenceIs(true);
    Device* const raw = device.ptr();
    a->react = [raw](std::string const&) { Device::Ptr const held(raw); };
    device = nullptr;
    EXPECT_EQ(Device::living(), before - 1);
}

}  // namespace
