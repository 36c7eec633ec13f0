// Rows whose keys have one hash. The compiled class keeps them in the order of their insertion, a
// described one in that of their fields; whether both hold the same does not depend on it.
#include "Described.h"
#include "Tree.h"

#include <qor/attrlog/session/StateDigest.h>
#include <qor/dynamic/AnyValue.h>

#include <vgw/VgwTypes.h>

#include <gtest/gtest.h>

namespace {

using Qor::make;
using Qor::Name;
using Qor::Ptr;
using Qor::String8;
using Qor::NboAttrLog::stateDigest;
using Vgw::PhysicalLocatorKey;

// The first two have one hash.
constexpr char const* addresses[] = {"10.0.237.115", "10.1.19.59", "192.0.2.1", "192.0.2.2"};

PhysicalLocatorKey keyOf(char const* address) {
    return PhysicalLocatorKey(Vgw::vxlan_over_ipv4, Kelp::IpAddr(address));
}

constexpr Qor::AttributeId remoteLocator = 268;

// The texts of the keys behind each page, up to the last one.
std::vector<std::string> pagesOf(Qor::Entity& database, Qor::U32 most) {
    std::vector<std::string> result;
    String8 from;
    do {
        auto const page = stateDigest(database, {"", remoteLocator, from, most});
        from = page.next;
        result.push_back(Tree::plain(from.view()) + "/" + std::to_string(page.rows));
    } while (!from.empty());
    return result;
}

TEST(TiedRows, OfACompiledAndADescribedClassStandInOneOrderOfPages) {
    auto const compiled = make<Vgw::HwVtepOvsdb>(Name("db"));
    auto const described = Described::twin("Vgw::HwVtepOvsdb").newInstance(Name("db"));
    auto const wrapper = Tree::wrapperOf(described);
    auto const& attribute = *described->fwkType()->attr(remoteLocator);
    auto const row = compiled->physicalLocatorRawIs(Name("l"));
    auto const twin = Described::twin("Vgw::PhysicalLocator").newInstance(Name("l"));
    for (auto const* const address : {addresses[1], addresses[0], addresses[2], addresses[3]}) {
        auto const text = valueToStrep(keyOf(address));
        compiled->remoteLocatorIs(keyOf(address), row);
        wrapper->attributeOp(remoteLocator, Tree::OpId::opSet,
                             Tree::valueOf(*attribute.keyType(), Described::renamed(text.view())),
                             Tree::wrapperOf(twin));
    }
    for (Qor::U32 most = 1; most < 5; ++most) {
        EXPECT_EQ(pagesOf(*compiled, most), pagesOf(*described, most)) << most << " rows a page";
    }
}

// So keys of a described collection never tie, although its key's class is compiled in.
TEST(TiedRows, ValuesOfAnyTypeThatDifferAreInAnOrder) {
    auto const a = keyOf(addresses[0]);
    auto const b = keyOf(addresses[1]);
    ASSERT_EQ(a.hash(), b.hash());
    ASSERT_FALSE(a < b || b < a);
    auto const& steps = *Qor::QorType::type(Name("Vgw::PhysicalLocatorKey"))->valueSteps();
    Qor::AnyValue const first(steps, &a);
    Qor::AnyValue const other(steps, &b);
    EXPECT_NE(first < other, other < first);
    EXPECT_FALSE(first < first);
}

}  // namespace
