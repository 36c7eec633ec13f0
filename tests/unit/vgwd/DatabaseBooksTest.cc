#include "../../ovsdb/MirrorUnderTest.h"

#include <tests/support/LinearCost.h>
#include <vgwd/agent/DatabaseBooks.h>

#include <gtest/gtest.h>

namespace Vgwd {
namespace {

// What the books of a message of so many tunnels cost, of which `each` end in one locator.
double costOfTunnels(unsigned size, unsigned each) {
    constexpr unsigned locators = 1'000'000;
    nlohmann::json schema = Ovsdb::fullSchema();
    for (char const* const column : {"bfd", "bfd_status"})
        schema["tables"]["Physical_Locator"]["columns"].erase(column);
    Ovsdb::MirrorUnderTest mirror(schema);
    DatabaseBooks books(Qor::make<DatabaseReport>("database"), mirror.mirror());
    nlohmann::json rows;
    for (unsigned i = 0; i < size; ++i) {
        unsigned const locator = locators + i / each;
        rows["Physical_Locator"][Ovsdb::uuidText(locator)] = {{"insert", nlohmann::json::object()}};
        rows["Tunnel"][Ovsdb::uuidText(i)] = {{"insert", {{"remote", Ovsdb::ref(locator)}}}};
    }
    mirror.update(rows);
    return timeOf([&] { books.step(mirror.changes()); });
}

TEST(DatabaseBooks, TunnelsToOneLocatorAreNotEachLookedAtForEachOther) {
    double const together = leastOf(3, [] { return costOfTunnels(4000, 4000); });
    double const apart = leastOf(3, [] { return costOfTunnels(4000, 10); });
    // Were each looked at for all others, it would be tens of times as much.
    EXPECT_LT(together, 3 * apart);
}

}  // namespace
}  // namespace Vgwd
