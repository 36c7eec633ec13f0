// What a peer has written into a row, as the database is to have it.
#include <vgwd/write/WrittenValue.h>

#include <vgw/tables/PhysicalPort.h>
#include <vgw/tables/PhysicalSwitch.h>

#include <gtest/gtest.h>

namespace Vgwd {
namespace {

using Vgw::PhysicalPort;
using Vgw::PhysicalSwitch;

constexpr std::string_view withZero("a\0b", 3);

TEST(WrittenValue, OfATextIsTheText) {
    auto const port = Qor::make<PhysicalPort>("p");
    port->descIs("a \u00b5 \\u0000");
    WrittenValue const value = writtenValue(*port, PhysicalPort::DescAttr::id);
    EXPECT_EQ(value.refusal, "");
    EXPECT_EQ(value.column, "description");
    EXPECT_EQ(value.value, "a \u00b5 \\u0000");
}

TEST(WrittenValue, TextThatIsNotUtf8IsRefused) {
    auto const port = Qor::make<PhysicalPort>("p");
    port->descIs("a\xff");
    EXPECT_EQ(writtenValue(*port, PhysicalPort::DescAttr::id).refusal,
              "desc holds bytes that are not UTF-8");
}

TEST(WrittenValue, ZeroByteIsRefused) {
    auto const device = Qor::make<PhysicalSwitch>("s");
    device->descIs(withZero);
    EXPECT_EQ(writtenValue(*device, PhysicalSwitch::DescAttr::id).refusal,
              "desc holds a zero byte, which the database does not take");
}

TEST(WrittenValue, OfASetOrMapIsHeardByKey) {
    auto const port = Qor::make<PhysicalPort>("p");
    for (auto const attribute : {PhysicalPort::FaultAttr::id, PhysicalPort::VlanStatAttr::id}) {
        WrittenValue const value = writtenValue(*port, attribute);
        EXPECT_EQ(value.column, "");
        EXPECT_EQ(value.refusal, "");
    }
}

}  // namespace
}  // namespace Vgwd
