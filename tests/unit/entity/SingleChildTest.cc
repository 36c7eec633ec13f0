#include <tests/unit/notify/TestListeners.h>

#include <gtest/gtest.h>

using namespace Sample;

namespace {

class SingleChild : public testing::Test {
  protected:
    Device::Ptr device = Qor::make<Device>("d");
    Log log;
    DeviceListener::Ptr a = listen<DeviceListener>(device, log, "a");
};

TEST_F(SingleChild, IsMadeToldAndInItsPlace) {
    auto const child = device->mainIs("m");
    EXPECT_TRUE(device->main() == child);
    EXPECT_TRUE(child->parent() == device);
    EXPECT_EQ(child->parentAttrId(), 260);
    EXPECT_EQ(log, (Log{"a:main"}));
}

TEST_F(SingleChild, OfTheSameNameStays) {
    auto const child = device->mainIs("m");
    EXPECT_TRUE(device->mainIs("m") == child);
    EXPECT_EQ(log, (Log{"a:main"}));
}

TEST_F(SingleChild, OfAnotherNameReplacesTheFirst) {
    auto const first = device->mainIs("m");
    auto const second = device->mainIs("n");
    EXPECT_FALSE(first == second);
    EXPECT_FALSE(first->parent());
    EXPECT_TRUE(device->main() == second);
    EXPECT_EQ(first->qorRefs(), 1U);
    EXPECT_EQ(log, (Log{"a:main", "a:main"}));
}

TEST_F(SingleChild, OwnerMayEndWithTheReplacedOne) {
    a->isWeakReferenceIs(true);
    device->mainIs("m")->onEnd = [this] { device = nullptr; };
    log.clear();
    device->mainIs("n");
    EXPECT_FALSE(device);
    EXPECT_EQ(log, (Log{"a:main", "a:zero", "a:main"})) << "the change, the end, the child's end";
}

TEST_F(SingleChild, DelHandsItOverAndTells) {
    auto const child = device->mainIs("m");
    EXPECT_TRUE(device->mainDel() == child);
    EXPECT_FALSE(device->main());
    EXPECT_FALSE(child->parent());
    EXPECT_EQ(log, (Log{"a:main", "a:main"}));
    EXPECT_FALSE(device->mainDel());
    EXPECT_EQ(log.size(), 2U);
}

TEST_F(SingleChild, NewLeavesTheAttributeUnset) {
    auto const child = Qor::newChild<Device::MainAttr>(*device, "m");
    EXPECT_TRUE(child->parent() == device);
    EXPECT_FALSE(device->main());
    EXPECT_TRUE(log.empty());
    child->parentIs(nullptr);
}

TEST_F(SingleChild, HandlerMayReplaceIt) {
    a->react = [this](std::string const&) {
        a->react = nullptr;
        device->mainIs("other");
    };
    auto const child = device->mainIs("m");
    EXPECT_EQ(child->name(), "m");
    EXPECT_EQ(device->main()->name(), "other");
    EXPECT_FALSE(child->parent());
}

}  // namespace
