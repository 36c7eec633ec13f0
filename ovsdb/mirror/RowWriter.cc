#include <ovsdb/mirror/RowWriter.h>

#include <ovsdb/mirror/Values.h>
#include <ovsdb/store/Datum.h>

#include <algorithm>
#include <array>
#include <span>

namespace Ovsdb {
namespace {

constexpr ColumnType vlanToUuid{Shape::map, AtomType::integer, AtomType::uuid};

template <class X>
Qor::Ptr<X> stagedFor(X const& row) {
    return Qor::make<X>(row.name());
}

template <class X>
void adopt(X& row, Qor::Ptr<X> const& staged) {
    if (!row.isEqualTo(staged)) row.clone(staged);
}

struct Addresses {
    std::vector<Kelp::IpAddr> held;
    bool lost = false;  // some are not IPv4
};

Addresses addressesOf(std::string_view datum) {
    Addresses addresses;
    for (std::string_view const text : textsOf(datum)) {
        if (auto const address = ipv4Of(text))
            addresses.held.push_back(*address);
        else
            addresses.lost = true;
    }
    return addresses;
}

// By setters, for a column that is marked.
void adoptManagementIps(Vgw::PhysicalSwitch& row, Vgw::PhysicalSwitch const& staged) {
    for (auto at = row.mgmtIpIterator(); at; ++at)
        if (!staged.mgmtIp(at.key())) at.del();
    for (auto at = staged.mgmtIpIteratorConst(); at; ++at) row.mgmtIpIs(at.key(), true);
}

void adoptTunnelIps(Vgw::PhysicalSwitch& row, Vgw::PhysicalSwitch const& staged) {
    for (auto at = row.tunnelIpIterator(); at; ++at)
        if (!staged.tunnelIp(at.key())) at.del();
    for (auto at = staged.tunnelIpIteratorConst(); at; ++at) row.tunnelIpIs(at.key(), true);
}

// The schema keeps VLANs within 0 to 4095; a server that doesn't has none of ours.
std::vector<std::pair<Qor::U16, Uuid>> vlansOf(std::string_view datum) {
    std::vector<std::pair<Qor::U16, Uuid>> vlans;
    for (DatumItems at(vlanToUuid, datum); at.next();) {
        std::int64_t const vlan = integerOf(at.key());
        if (vlan >= 0 && vlan <= 4095)
            vlans.emplace_back(static_cast<Qor::U16>(vlan), uuidOf(at.value()));
    }
    return vlans;
}

std::uint64_t counterOf(Vgw::LogicalBindingStats& row, char const* attribute,
                        std::string_view datum) {
    std::int64_t const count = integerOf(datum);
    mark(row, attribute, count < 0);
    return count < 0 ? 0 : static_cast<std::uint64_t>(count);
}

}  // namespace

bool mayBeMarked(Table table, std::string_view attribute) {
    static constexpr std::array<std::string_view, 2> addresses{"mgmtIp", "tunnelIp"};
    static constexpr std::array<std::string_view, 4> counters{"inBytes", "inPackets", "outBytes",
                                                              "outPackets"};
    std::span<std::string_view const> marked;
    if (table == Table::physicalSwitch) marked = addresses;
    if (table == Table::logicalBindingStats) marked = counters;
    return std::find(marked.begin(), marked.end(), attribute) != marked.end();
}

void mark(Vgw::OvsdbDataModel& row, char const* attribute, bool invalid) {
    if (invalid)
        row.invalidAttribIs(attribute, true);
    else
        row.invalidAttribDel(attribute);
}

void write(Vgw::Manager& row, Row const& raw) {
    Vgw::Manager::Ptr const staged = stagedFor(row);
    staged->targetIs(raw.column(ManagerColumn::target));
    adopt(row, staged);
}

void write(Vgw::Global& row, Row const& raw) {
    Vgw::Global::Ptr const staged = stagedFor(row);
    for (Uuid const& uuid : uuidsOf(raw.column(GlobalColumn::switches)))
        staged->pSwitchIs(textOf(uuid), true);
    for (Uuid const& uuid : uuidsOf(raw.column(GlobalColumn::managers)))
        staged->managerIs(textOf(uuid), true);
    adopt(row, staged);
}

void write(Vgw::PhysicalSwitch& row, Row const& raw, Staging const& overlay) {
    Vgw::PhysicalSwitch::Ptr const staged = stagedFor(row);
    Addresses const management = addressesOf(raw.column(PhysicalSwitchColumn::managementIps));
    Addresses const tunnel = addressesOf(raw.column(PhysicalSwitchColumn::tunnelIps));
    staged->displayNameIs(raw.column(PhysicalSwitchColumn::name));
    staged->descIs(raw.column(PhysicalSwitchColumn::description));
    for (Uuid const& uuid : uuidsOf(raw.column(PhysicalSwitchColumn::ports)))
        staged->portIs(textOf(uuid), true);
    for (std::string_view const fault : textsOf(raw.column(PhysicalSwitchColumn::faultStatus)))
        staged->faultIs(fault, true);
    for (Kelp::IpAddr const address : management.held) staged->mgmtIpIs(address, true);
    for (Kelp::IpAddr const address : tunnel.held) staged->tunnelIpIs(address, true);
    overlay(*staged);
    for (Vgw::PhysicalSwitch* const marked : {staged.ptr(), &row}) {
        mark(*marked, "mgmtIp", management.lost);
        mark(*marked, "tunnelIp", tunnel.lost);
    }
    adopt(row, staged);
    if (management.lost) adoptManagementIps(row, *staged);
    if (tunnel.lost) adoptTunnelIps(row, *staged);
}

void write(Vgw::LogicalSwitch& row, Row const& raw) {
    Vgw::LogicalSwitch::Ptr const staged = stagedFor(row);
    std::optional<std::int64_t> const key =
        optionalIntegerOf(raw.column(LogicalSwitchColumn::tunnelKey));
    std::optional<Vxlan::Vni> const vni = vniOf(key);
    staged->displayNameIs(raw.column(LogicalSwitchColumn::name));
    staged->descIs(raw.column(LogicalSwitchColumn::description));
    if (vni) staged->tunnelKeyIs(vni->value());
    mark(row, "tunnelKey", key && !vni);
    row.clone(staged);
}

void write(Vgw::LogicalBindingStats& row, Row const& raw, Staging const& overlay) {
    using namespace LogicalBindingStatsColumn;
    Vgw::LogicalBindingStats::Ptr const staged = stagedFor(row);
    staged->inBytesIs(counterOf(row, "inBytes", raw.column(bytesFromLocal)));
    staged->inPacketsIs(counterOf(row, "inPackets", raw.column(packetsFromLocal)));
    staged->outBytesIs(counterOf(row, "outBytes", raw.column(bytesToLocal)));
    staged->outPacketsIs(counterOf(row, "outPackets", raw.column(packetsToLocal)));
    overlay(*staged);
    row.inBytesIs(staged->inBytes());
    row.inPacketsIs(staged->inPackets());
    row.outBytesIs(staged->outBytes());
    row.outPacketsIs(staged->outPackets());
}

void write(Vgw::PhysicalPort& row, Row const& raw, Staging const& overlay) {
    Vgw::PhysicalPort::Ptr const staged = stagedFor(row);
    staged->displayNameIs(raw.column(PhysicalPortColumn::name));
    staged->descIs(raw.column(PhysicalPortColumn::description));
    for (auto const& [vlan, uuid] : vlansOf(raw.column(PhysicalPortColumn::vlanBindings)))
        staged->vlanBindingIs(vlan, textOf(uuid));
    for (auto const& [vlan, uuid] : vlansOf(raw.column(PhysicalPortColumn::vlanStats)))
        staged->vlanStatIs(vlan, textOf(uuid));
    for (std::string_view const fault : textsOf(raw.column(PhysicalPortColumn::faultStatus)))
        staged->faultIs(fault, true);
    overlay(*staged);
    adopt(row, staged);
}

void write(Vgw::PhysicalLocator& row, Row const& raw) {
    std::optional<Kelp::IpAddr> const address = ipv4Of(raw.column(PhysicalLocatorColumn::dstIp));
    mark(row, "key", !address);
    row.keyIs(address ? Vgw::PhysicalLocatorKey(Vgw::EncapsulationType::vxlan_over_ipv4, *address)
                      : Vgw::PhysicalLocatorKey());
}

void write(Vgw::PhysicalLocatorSet& row, Row const& raw) {
    Vgw::PhysicalLocatorSet::Ptr const staged = stagedFor(row);
    for (Uuid const& uuid : uuidsOf(raw.column(PhysicalLocatorSetColumn::locators)))
        staged->locatorIs(textOf(uuid), true);
    adopt(row, staged);
}

}  // namespace Ovsdb
