#include <vgwd/write/MacRequest.h>

#include <ovsdb/mirror/Values.h>
#include <ovsdb/store/Datum.h>
#include <ovsdb/store/Uuid.h>
#include <vgw/tables/McastMacsLocal.h>
#include <vgw/tables/UcastMacsLocal.h>

#include <algorithm>
#include <utility>

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

// Fails when the row is gone, or says something else: an update of no row would pass for one that
// was made.
json mustSay(Table table, std::string const& row, char const* column, std::string const& value) {
    return {{"op", "wait"},
            {"timeout", 0},
            {"table", tableName(table)},
            {"where", whereIs(row)},
            {"columns", json::array({column})},
            {"until", "=="},
            {"rows", json::array({json{{column, uuid(value)}}})}};
}

json mustBeThere(Table table, std::string const& row) { return mustSay(table, row, "_uuid", row); }

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

json newLocatorSet(json members, json& operations) {
    operations.push_back({{"op", "insert"},
                          {"table", "Physical_Locator_Set"},
                          {"row", {{"locators", {"set", std::move(members)}}}},
                          {"uuid-name", "locators"}});
    return {"named-uuid", "locators"};
}

json newLocatorSet(MacContent const& content, Vgw::HwVtepOvsdb const& database, json& operations) {
    json members = json::array();
    for (Kelp::IpAddr const address : content.vtepIps)
        members.push_back(locatorAt(address, database, operations));
    return newLocatorSet(std::move(members), operations);
}

json newLocatorSet(MacChanges const& changes, LocatorSet const& there,
                   Vgw::HwVtepOvsdb const& database, json& operations) {
    std::set<Kelp::IpAddr> const known = there.addresses();
    json members = json::array();
    for (auto const& [row, address] : there.members) {
        auto const changed = address ? changes.vtepIps.find(*address) : changes.vtepIps.end();
        if (changed == changes.vtepIps.end() || changed->second) members.push_back(uuid(row));
    }
    for (auto const& [address, isThere] : changes.vtepIps)
        if (isThere && !known.contains(address))
            members.push_back(locatorAt(address, database, operations));
    return newLocatorSet(std::move(members), operations);
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

// Of a map's VLANs; others than these can't be in the database.
bool mayBeThere(json const& key) { return !key.is_number() || key <= 4095; }

// The value of a map's member; a row that it only names by a name is made.
json valueOf(json const& key, Member const& member, json& operations) {
    if (Ovsdb::Uuid::parse(member.text)) return uuid(member.text);
    std::string const name = "vlan" + key.dump();
    operations.push_back({{"op", "insert"},
                          {"table", tableName(Table::logicalBindingStats)},
                          {"row", json::object()},
                          {"uuid-name", name}});
    return {"named-uuid", name};
}

// What a map holds under a key stays when something is inserted there, so that goes out first.
void mutateMembers(std::string const& column, std::map<json, Member> const& members,
                   json& mutations, json& operations) {
    json gone = json::array();
    json come = json::array();
    bool const isMap = column == "vlan_stats";
    for (auto const& [key, member] : members) {
        if ((isMap || !member.isThere) && mayBeThere(key)) gone.push_back(key);
        if (member.isThere)
            come.push_back(isMap ? json::array({key, valueOf(key, member, operations)}) : key);
    }
    if (!gone.empty()) mutations.push_back({column, "delete", {"set", gone}});
    if (!come.empty()) mutations.push_back({column, "insert", {isMap ? "map" : "set", come}});
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

std::string macLacks(MacChanges const& changes, LocatorSet const& there) {
    if (changes.logicalSwitch && changes.logicalSwitch->empty()) return "logicalSwitch is not set";
    if (changes.logicalSwitch && !Ovsdb::Uuid::parse(*changes.logicalSwitch))
        return "logicalSwitch is no row's UUID";
    bool const hasVtep =
        changes.vtepIps.empty() ||
        std::any_of(changes.vtepIps.begin(), changes.vtepIps.end(),
                    [](auto const& changed) { return changed.second; }) ||
        std::any_of(there.members.begin(), there.members.end(), [&](auto const& member) {
            return !member.second || !changes.vtepIps.contains(*member.second);
        });
    if (!hasVtep || (changes.vtepIp && *changes.vtepIp == Kelp::IpAddr()))
        return "vtepIp is not set";
    return {};
}

void MacChanges::add(MacChanges const& later) {
    if (later.logicalSwitch) logicalSwitch = later.logicalSwitch;
    if (later.vtepIp) vtepIp = later.vtepIp;
    for (auto const& [address, isThere] : later.vtepIps) vtepIps[address] = isThere;
}

std::set<Kelp::IpAddr> LocatorSet::addresses() const {
    std::set<Kelp::IpAddr> addresses;
    for (auto const& [row, address] : members)
        if (address) addresses.insert(*address);
    return addresses;
}

LocatorSet locatorSetOf(Ovsdb::RowStore const& rows, Table table, std::string const& row) {
    auto const name = Ovsdb::Uuid::parse(row);
    Ovsdb::Row const* const mac = isMulticast(table) && name ? rows.find(table, *name) : nullptr;
    if (mac == nullptr) return {};
    Ovsdb::Uuid const uuid = Ovsdb::uuidOf(mac->column(Ovsdb::MacColumn::locator));
    LocatorSet set{uuid.text(), {}};
    Ovsdb::Row const* const found = rows.find(Table::physicalLocatorSet, uuid);
    if (found == nullptr) return set;
    for (Ovsdb::Uuid const& member :
         Ovsdb::uuidsOf(found->column(Ovsdb::PhysicalLocatorSetColumn::locators))) {
        Ovsdb::Row const* const locator = rows.find(Table::physicalLocator, member);
        set.members[member.text()] =
            locator ? Ovsdb::ipv4Of(locator->column(Ovsdb::PhysicalLocatorColumn::dstIp))
                    : std::nullopt;
    }
    return set;
}

json macInsertion(Table table, MacContent const& content, Vgw::HwVtepOvsdb const& database,
                  std::string const& row) {
    json operations = json::array();
    json columns{{"logical_switch", uuid(content.logicalSwitch)}};
    if (isMulticast(table))
        columns["locator_set"] = newLocatorSet(content, database, operations);
    else
        columns["locator"] = locatorAt(content.vtepIps.front(), database, operations);
    columns["MAC"] = macText(table, content.mac);
    columns["ipaddr"] = "";
    json insertion{{"op", "insert"}, {"table", tableName(table)}, {"row", std::move(columns)}};
    if (!row.empty()) insertion["uuid"] = row;
    operations.push_back(std::move(insertion));
    return operations;
}

json macUpdate(Table table, std::string const& row, MacChanges const& changes,
               LocatorSet const& there, Vgw::HwVtepOvsdb const& database) {
    json operations = json::array({mustBeThere(table, row)});
    json columns = json::object();
    if (changes.logicalSwitch) columns["logical_switch"] = uuid(*changes.logicalSwitch);
    if (changes.vtepIp) columns["locator"] = locatorAt(*changes.vtepIp, database, operations);
    if (!changes.vtepIps.empty()) {
        operations.push_back(mustSay(table, row, "locator_set", there.uuid));
        columns["locator_set"] = newLocatorSet(changes, there, database, operations);
    }
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

json rowUpdate(Table table, std::string const& row, RowChanges const& changes) {
    json operations = json::array({mustBeThere(table, row)});
    json mutations = json::array();
    for (auto const& [column, members] : changes.members)
        mutateMembers(column, members, mutations, operations);
    if (!changes.columns.is_null()) operations.push_back(updateOf(table, row, changes.columns));
    if (!mutations.empty())
        operations.push_back({{"op", "mutate"},
                              {"table", tableName(table)},
                              {"where", whereIs(row)},
                              {"mutations", mutations}});
    return operations;
}

}  // namespace Vgwd
