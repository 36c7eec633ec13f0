#include <tests/unit/notify/TestListeners.h>

#include <gtest/gtest.h>

using namespace Sample;

namespace {

class ReferenceSetter : public testing::Test {
  protected:
    Device::Ptr device = Qor::make<Device>("d");
    Port::Ptr p = Qor::make<Port>("p");
    Port::Ptr q = Qor::make<Port>("q");
    Log log;
    DeviceListener::Ptr a = listen<DeviceListener>(device, log, "a");
};

TEST_F(ReferenceSetter, CountsTheTargetAndLeavesItsPlaceInTheTree) {
    device->uplinkIs("u", p);
    EXPECT_EQ(p->qorRefs(), 2U);
    EXPECT_FALSE(p->parent());
    EXPECT_TRUE(device->uplink("u") == p);
    EXPECT_EQ(log, (Log{"a:uplink(u)"}));
}

TEST_F(ReferenceSetter, SameTargetTellsNobody) {
    device->uplinkIs("u", p);
    device->uplinkIs("u", p);
    EXPECT_EQ(log, (Log{"a:uplink(u)"}));
    EXPECT_EQ(p->qorRefs(), 2U);
}

TEST_F(ReferenceSetter, OtherTargetReplacesTheFirst) {
    device->uplinkIs("u", p);
    auto const member = device->qorUplink("u");
    device->uplinkIs("u", q);
    EXPECT_EQ(p->qorRefs(), 1U);
    EXPECT_EQ(q->qorRefs(), 2U);
    EXPECT_TRUE(device->qorUplink("u") == member);
    EXPECT_EQ(log, (Log{"a:uplink(u)", "a:uplink(u)"}));
}

TEST_F(ReferenceSetter, NullDeletesThePresentMember) {
    device->uplinkIs("u", p);
    device->uplinkIs("u", nullptr);
    EXPECT_EQ(device->uplinks(), 0U);
    EXPECT_EQ(p->qorRefs(), 1U);
    EXPECT_EQ(log, (Log{"a:uplink(u)", "a:uplink(u)"}));
}

TEST_F(ReferenceSetter, NullUnderAnAbsentKeyTellsNobody) {
    device->uplinkIs("u", nullptr);
    EXPECT_EQ(device->uplinks(), 0U);
    EXPECT_TRUE(log.empty());
}

TEST_F(ReferenceSetter, AbsentKeyReadsAsNull) {
    EXPECT_FALSE(device->uplink("u"));
    EXPECT_FALSE(device->qorUplink("u"));
}

TEST_F(ReferenceSetter, DelGivesTheOldTarget) {
    device->uplinkIs("u", p);
    EXPECT_TRUE(device->uplinkDel("u") == p);
    EXPECT_FALSE(device->uplinkDel("u"));
    EXPECT_EQ(log, (Log{"a:uplink(u)", "a:uplink(u)"}));
}

TEST_F(ReferenceSetter, DelAllTellsEach) {
    for (char const* key : {"a", "b", "c"}) {
        device->uplinkIs(key, p);
    }
    log.clear();
    device->uplinkDelAll();
    EXPECT_EQ(log.size(), 3U);
    EXPECT_EQ(p->qorRefs(), 1U);
}

TEST_F(ReferenceSetter, RemovalFromTheOwningCollectionLeavesTheReference) {
    auto const owned = device->portIs("x");
    device->uplinkIs("u", owned);
    device->portDel("x");
    EXPECT_TRUE(device->uplink("u") == owned);
}

TEST_F(ReferenceSetter, ReplacedTargetMayEndAndReachBack) {
    auto const other = Qor::make<Port>("other");
    auto dying = Qor::make<Port>("dying");
    dying->onEnd = [this] { device->uplinkDelAll(); };
    device->uplinkIs("u", dying);
    dying = nullptr;
    device->uplinkIs("u", other);
    EXPECT_EQ(device->uplinks(), 0U);
    EXPECT_EQ(other->qorRefs(), 1U);
}

TEST_F(ReferenceSetter, OwnerMayEndWithWhatItsReferenceIsTakenFrom) {
    for (Port::Ptr const& next : {Qor::make<Port>("next"), Port::Ptr()}) {
        device = Qor::make<Device>("d");
        a = listen<DeviceListener>(device, log, "a");
        a->isWeakReferenceIs(true);
        auto dying = Qor::make<Port>("dying");
        dying->onEnd = [this] { device = nullptr; };
        device->uplinkIs("u", dying);
        dying = nullptr;
        log.clear();
        device->uplinkIs("u", next);
        EXPECT_FALSE(device);
        EXPECT_EQ(log, (Log{"a:uplink(u)", "a:zero"})) << "the change is told before the end";
    }
}

TEST_F(ReferenceSetter, DestructionOfTheOwnerTellsNothingOfReferences) {
    device->uplinkIs("u", p);
    a->isWeakReferenceIs(true);
    log.clear();
    device = nullptr;
    EXPECT_EQ(log, (Log{"a:zero"}));
    EXPECT_EQ(p->qorRefs(), 1U);
}

}  // namespace
