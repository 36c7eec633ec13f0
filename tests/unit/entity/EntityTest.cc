#include <tests/unit/notify/TestListeners.h>

#include <gtest/gtest.h>

using namespace Sample;

namespace {

TEST(Entity, IsBornWithoutAParent) {
    auto const port = Qor::make<Port>("ethernet1");
    EXPECT_EQ(port->name(), "ethernet1");
    EXPECT_FALSE(port->parent());
    EXPECT_EQ(port->parentAttrId(), 0);
    EXPECT_EQ(port->qorRefWord(), 1U);
}

TEST(Entity, NameMayBeEmpty) {
    auto const row = Qor::make<Row>("");
    EXPECT_EQ(row->name().length(), 0U);
}

TEST(Entity, ParentIsNotCounted) {
    auto const device = Qor::make<Device>("d");
    auto const port = Qor::make<Port>("p");
    port->parentIs(device);
    EXPECT_EQ(device->qorRefs(), 1U);
    EXPECT_TRUE(port->parent() == device);
    port->parentIs(nullptr);
    EXPECT_FALSE(port->parent());
}

TEST(Entity, HandleParentIsCalledForAChangeAlone) {
    auto const device = Qor::make<Device>("d");
    auto const port = Qor::make<Port>("p");
    port->parentIs(nullptr);
    EXPECT_TRUE(port->parents.empty());
    port->parentIs(device);
    port->parentIs(device);
    port->parentIs(nullptr);
    port->parentIs(nullptr);
    EXPECT_EQ(port->parents, (std::vector<Qor::Entity*>{device.ptr(), nullptr}));
}

TEST(Entity, AttributeStringTriesTheOwnIdsThenTheBases) {
    auto const port = Qor::make<Port>("p");
    EXPECT_EQ(port->attributeString(386), "speed");
    EXPECT_EQ(port->attributeString(258), "mode");
    EXPECT_EQ(port->attributeString(260), "label");
    EXPECT_EQ(port->attributeString(999), "unknown");
    EXPECT_EQ(Qor::make<Row>("r")->attributeString(386), "unknown");
}

TEST(Entity, AttributesOfACollectionAreKnown) {
    auto const device = Qor::make<Device>("d");
    EXPECT_TRUE(device->qorIsCollection(258));
    EXPECT_TRUE(device->qorIsCollection(259));
    EXPECT_FALSE(device->qorIsCollection(260));
    EXPECT_FALSE(device->qorIsCollection(999));
}

TEST(Entity, EndsWithItsLastReference) {
    int const before = Port::living();
    auto port = Qor::make<Port>("p");
    Qor::Ptr<Qor::Entity> held(port);
    port = nullptr;
    EXPECT_EQ(Port::living(), before + 1);
    held = nullptr;
    EXPECT_EQ(Port::living(), before);
}

TEST(Entity, EndIsToldAndMayBeUndoneByAReference) {
    int const before = Port::living();
    auto port = Qor::make<Port>("p");
    Port* const raw = port.ptr();
    Port::Ptr saved;
    raw->onEnd = [&] {
        saved = raw;
        raw->onEnd = nullptr;
    };
    port = nullptr;
    EXPECT_EQ(Port::living(), before + 1);
    saved = nullptr;
    EXPECT_EQ(Port::living(), before);
}

}  // namespace
