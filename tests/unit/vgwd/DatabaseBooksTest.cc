#include "../../ovsdb/MirrorUnderTest.h"

#include <vgwd/agent/DatabaseBooks.h>

#include <gtest/gtest.h>

#include <ctime>

namespace Vgwd {
namespace {

double processorSeconds() {
    timespec now{};
    ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

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
    double const begin = processorSeconds();
    books.step(mirror.changes());
    return processorSeconds() - begin;
}

TEST(DatabaseBooks, TunnelsToOneLocatorAreNotEachLookedAtForEachOther) {
    costOfTunnels(1000, 10);
    // Each locator is lost, as it has no address, and told.
    EXPECT_LT(costOfTunnels(4000, 4000), costOfTunnels(4000, 10));
}

}  // namespace
}  // namespace Vgwd
