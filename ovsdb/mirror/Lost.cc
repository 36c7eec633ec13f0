// What the model could not hold of the database.

#include <ovsdb/mirror/Bfd.h>
#include <ovsdb/mirror/Mirror.h>
#include <ovsdb/mirror/Values.h>
#include <ovsdb/store/Datum.h>

#include <algorithm>

namespace Ovsdb {
namespace {

using Columns = std::vector<std::string_view>;

bool losesAddress(std::string_view datum) {
    std::vector<std::string_view> const texts = textsOf(datum);
    return std::any_of(texts.begin(), texts.end(),
                       [](std::string_view text) { return !ipv4Of(text); });
}

Columns lostOfSwitch(Row const& row) {
    Columns lost;
    if (losesAddress(row.column(PhysicalSwitchColumn::managementIps)))
        lost.push_back("management_ips");
    if (losesAddress(row.column(PhysicalSwitchColumn::tunnelIps))) lost.push_back("tunnel_ips");
    return lost;
}

Columns lostOfStats(Row const& row) {
    Columns lost;
    std::span<MirroredColumn const> const columns =
        mirroredTable(Table::logicalBindingStats).columns;
    for (std::size_t i = 0; i < columns.size(); ++i)
        if (integerOf(row.column(i)) < 0) lost.push_back(columns[i].name);
    return lost;
}

Columns lostOfLogicalSwitch(Row const& row) {
    auto const key = optionalIntegerOf(row.column(LogicalSwitchColumn::tunnelKey));
    return key && !vniOf(key) ? Columns{"tunnel_key"} : Columns();
}

// A row without an address is lost whole; the address tells it.
Columns lostOfMac(Table table, Row const& row) {
    bool const multicast = table == Table::mcastMacsLocal || table == Table::mcastMacsRemote;
    bool const local = table == Table::ucastMacsLocal || table == Table::mcastMacsLocal;
    std::string_view const mac = row.column(MacColumn::mac);
    if (!(multicast ? multicastMacOf(mac) : macOf(mac))) return {"MAC"};
    std::string_view const ipaddr = row.column(MacColumn::ipaddr);
    // The local classes have no such attribute at all.
    if (!ipaddr.empty() && (local || !ipv4Of(ipaddr))) return {"ipaddr"};
    return {};
}

Columns lostOf(Table table, Row const& row) {
    switch (table) {
        case Table::physicalSwitch:
            return lostOfSwitch(row);
        case Table::logicalBindingStats:
            return lostOfStats(row);
        case Table::logicalSwitch:
            return lostOfLogicalSwitch(row);
        case Table::ucastMacsLocal:
        case Table::mcastMacsLocal:
        case Table::ucastMacsRemote:
        case Table::mcastMacsRemote:
            return lostOfMac(table, row);
        case Table::physicalLocator:
            return ipv4Of(row.column(PhysicalLocatorColumn::dstIp)) ? Columns() : Columns{"dst_ip"};
        default:
            return {};
    }
}

}  // namespace

std::vector<std::string_view> Mirror::lost(Table table, Uuid const& uuid) const {
    Row const* const row = store_.find(table, uuid);
    if (row == nullptr) return {};
    Columns lost = lostOf(table, *row);
    if (table != Table::physicalLocator) return lost;
    auto const node = graph_.locators().find(uuid);
    if (node == graph_.locators().end()) return lost;
    if (bfdOf(node->second, plan_, store_).isLost) lost.push_back("bfd");
    if (bfdStatusOf(node->second, plan_, store_).isLost) lost.push_back("bfdStatus");
    return lost;
}

std::vector<std::string> Mirror::lost() const {
    std::vector<std::string> all;
    for (MirroredTable const& table : mirroredTables())
        for (auto const& [uuid, record] : store_.rows(table.table))
            for (std::string_view const column : lost(table.table, uuid))
                all.push_back(std::string(table.name) + " " + uuid.text() + " " +
                              std::string(column));
    std::sort(all.begin(), all.end());
    return all;
}

}  // namespace Ovsdb
