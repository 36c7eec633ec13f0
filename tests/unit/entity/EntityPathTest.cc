#include <tests/unit/notify/TestListeners.h>

#include <gtest/gtest.h>

using namespace Sample;

namespace {

TEST(EntityPath, OfARootIsItsName) {
    auto const device = Qor::make<Device>("switch1");
    EXPECT_EQ(device->uriPath(), "/switch1");
    EXPECT_EQ(device->fullName(), "switch1");
}

TEST(EntityPath, OfAMemberNamesTheAttributeAndTheKey) {
    auto const device = Qor::make<Device>("switch1");
    EXPECT_EQ(device->portIs("ethernet1")->uriPath(), "/switch1/port/ethernet1");
    EXPECT_EQ(device->port("ethernet1")->fullName(), "switch1/port/ethernet1");
}

TEST(EntityPath, OfASingleChildNamesTheAttributeAlone) {
    auto const device = Qor::make<Device>("switch1");
    EXPECT_EQ(device->mainIs("uplink")->uriPath(), "/switch1/main");
}

TEST(EntityPath, ChangesWithTheParent) {
    auto const device = Qor::make<Device>("switch1");
    auto const port = device->portIs("ethernet1");
    device->portDel("ethernet1");
    EXPECT_EQ(port->uriPath(), "/ethernet1");
}

TEST(EntityPath, BytesThatCouldBeStructureAreWrittenInHex) {
    auto const device = Qor::make<Device>("a/b c%d?");
    EXPECT_EQ(device->uriPath(), "/a%2Fb%20c%25d%3F");
    auto const odd = Qor::make<Device>(std::string_view("\x01\xff", 2));
    EXPECT_EQ(odd->uriPath(), "/%01%FF");
}

TEST(EntityPath, PlainBytesStayAsTheyAre) {
    char const* const plain = "azAZ09-_.~:@!$'()*,+";
    EXPECT_EQ(Qor::pathElement(plain), plain);
}

TEST(EntityPath, TakesNoReferenceOnTheParents) {
    auto const device = Qor::make<Device>("switch1");
    auto const port = device->portIs("ethernet1");
    static_cast<void>(port->uriPath());
    EXPECT_EQ(device->qorRefs(), 1U);
    EXPECT_EQ(port->qorRefs(), 2U);
}

}  // namespace
