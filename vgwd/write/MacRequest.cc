#include <vgwd/write/MacRequest.h>

#include <ovsdb/store/Uuid.h>
#include <vgw/tables/McastMacsLocal.h>
#include <vgw/tables/UcastMacsLocal.h>

#include <algorithm>

namespace Vgwd {
namespace {

using nlohmann::json;
using Ovsdb::Table;

bool isMulticast(Table table) { return table == Table::mcastMacsLocal; }

std::string tableName(Table table) { return std::string(Ovsdb::mirroredTable(table).name); }

json uuid(std::string_view text) { return {"uuid", text}; }

json whereIs(std::string const& row) {
    return json::array({json::array({"_uuid", "==", uuid(row)})});
}

// Fails when the row is gone: an update of no row would pass for one that was made.
json mustBeThere(Table table, std::string const& row) {
    return {{"op", "wait"},
            {"timeout", 0},
            {"table", tableName(table)},
            {"where", whereIs(row)},
            {"columns", json::array({"_uuid"})},
            {"until", "=="},
            {"rows", json::array({json{{"_uuid", uuid(row)}}})}};
}

// The locator of that address; made by the transaction if there is none.
json locatorAt(Kelp::IpAddr address, Vgw::HwVtepOvsdb const& database, json& operations) {
    if (auto const there = database.physicalLocator(address)) return uuid(there->qorName().view());
    std::string const name = "locator" + std::to_string(operations.size());
    operations.push_back(
        {{"op", "insert"},
         {"table", "Physical_Locator"},
         {"row",
          {{"dst_ip", address.stringValue().view()}, {"encapsulation_type", "vxlan_over_ipv4"}}},
         {"uuid-name", name}});
    return {"named-uuid", name};
}

json locatorSetOf(MacContent const& content, Vgw::HwVtepOvsdb const& database, json& operations) {
    json members = json::array();
    for (Kelp::IpAddr const address : content.vtepIps)
        members.push_back(locatorAt(address, database, operations));
    operations.push_back({{"op", "insert"},
                          {"table", "Physical_Locator_Set"},
                          {"row", {{"locators", {"set", members}}}},
                          {"uuid-name", "locators"}});
    return {"named-uuid", "locators"};
}

json columnsOf(Table table, MacContent const& content, Vgw::HwVtepOvsdb const& database,
               json& operations) {
    json columns{{"logical_switch", uuid(content.logicalSwitch)}};
    if (isMulticast(table))
        columns["locator_set"] = locatorSetOf(content, database, operations);
    else
        columns["locator"] = locatorAt(content.vtepIps.front(), database, operations);
    return columns;
}

// The all-zero address stands for traffic to unknown destinations.
std::string macText(Table table, Kelp::EthAddr const& mac) {
    if (isMulticast(table) && mac == Kelp::EthAddr()) return "unknown-dst";
    return std::string(mac.stringValue().view());
}

json updateOf(Table table, std::string const& row, json columns) {
    return {{"op", "update"},
            {"table", tableName(table)},
            {"where", whereIs(row)},
            {"row", std::move(columns)}};
}

void insertStatistics(json const& columns, json& operations) {
    auto const found = columns.find("vlan_stats");
    if (found == columns.end()) return;
    for (json const& ofVlan : (*found)[1])
        if (json const& value = ofVlan[1]; value[0] == "named-uuid")
            operations.push_back({{"op", "insert"},
                                  {"table", tableName(Table::logicalBindingStats)},
                                  {"row", json::object()},
                                  {"uuid-name", value[1]}});
}

}  // namespace

std::optional<MacContent> macContentOf(Qor::Entity const& row) {
    if (auto const* const unicast = dynamic_cast<Vgw::UcastMacsLocal const*>(&row)) {
        MacContent content{unicast->macAddr(), std::string(unicast->logicalSwitch().view()), {}};
        if (unicast->vtepIp() != Kelp::IpAddr()) content.vtepIps.push_back(unicast->vtepIp());
        return content;
    }
    auto const* const multicast = dynamic_cast<Vgw::McastMacsLocal const*>(&row);
    if (multicast == nullptr) return std::nullopt;
    MacContent content{multicast->macAddr(), std::string(multicast->logicalSwitch().view()), {}};
    for (auto at = multicast->vtepIpIteratorConst(); at; ++at)
        if (at.value()) content.vtepIps.push_back(at.key());
    return content;
}

std::string macLacks(MacContent const& content) {
    if (content.logicalSwitch.empty()) return "logicalSwitch is not set";
    if (!Ovsdb::Uuid::parse(content.logicalSwitch)) return "logicalSwitch is no row's UUID";
    if (content.vtepIps.empty()) return "vtepIp is not set";
    return {};
}

json macInsertion(Table table, MacContent const& content, Vgw::HwVtepOvsdb const& database) {
    json operations = json::array();
    json columns = columnsOf(table, content, database, operations);
    columns["MAC"] = macText(table, content.mac);
    columns["ipaddr"] = "";
    operations.push_back(
        {{"op", "insert"}, {"table", tableName(table)}, {"row", std::move(columns)}});
    return operations;
}

json macUpdate(Table table, std::string const& row, MacContent const& content,
               Vgw::HwVtepOvsdb const& database) {
    json operations = json::array({mustBeThere(table, row)});
    json columns = columnsOf(table, content, database, operations);
    operations.push_back(updateOf(table, row, std::move(columns)));
    return operations;
}

bool makesLocators(json const& operations) {
    return std::any_of(operations.begin(), operations.end(), [](json const& operation) {
        return operation["op"] == "insert" && operation["table"] == "Physical_Locator";
    });
}

json rowRemoval(Table table, std::string const& row) {
    return json::array(
        {json{{"op", "delete"}, {"table", tableName(table)}, {"where", whereIs(row)}}});
}

json rowUpdate(Table table, std::string const& row, json columns) {
    json operations = json::array({mustBeThere(table, row)});
    insertStatistics(columns, operations);
    operations.push_back(updateOf(table, row, std::move(columns)));
    return operations;
}

}  // namespace Vgwd
