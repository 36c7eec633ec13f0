#include <vgwd/write/WrittenValue.h>

#include <ovsdb/store/Uuid.h>
#include <vgw/tables/LogicalBindingStats.h>
#include <vgw/tables/PhysicalPort.h>
#include <vgw/tables/PhysicalSwitch.h>

#include <algorithm>
#include <cstdint>
#include <limits>

namespace Vgwd {
namespace {

using nlohmann::json;
using Ovsdb::Table;

template <class Walk, class Text>
json setOf(Walk walk, Text const& text) {
    json members = json::array();
    for (; walk; ++walk)
        if (walk.value()) members.push_back(text(walk.key()));
    return {"set", members};
}

json faults(auto const& row) {
    return setOf(row.faultIteratorConst(), [](Qor::String8 const& key) { return key.view(); });
}

template <class Walk>
json addresses(Walk walk) {
    return setOf(std::move(walk),
                 [](Kelp::IpAddr key) { return std::string(key.stringValue().view()); });
}

json statistics(Vgw::PhysicalPort const& row) {
    json rows = json::array();
    for (auto at = row.vlanStatIteratorConst(); at; ++at) {
        std::string const text(at.value().view());
        json const value = Ovsdb::Uuid::parse(text)
                               ? json{"uuid", text}
                               : json{"named-uuid", "vlan" + std::to_string(at.key())};
        rows.push_back(json::array({at.key(), value}));
    }
    return {"map", rows};
}

WrittenValue refusal(Qor::Entity const& row, Qor::AttributeId attribute) {
    return {{}, {}, std::string(row.attributeString(attribute).view()) + " may not be written"};
}

// A column of which the row holds only a part would lose the rest.
WrittenValue switchAddresses(Vgw::PhysicalSwitch const& row, bool isTunnel) {
    if (row.invalidAttrib(isTunnel ? "tunnelIp" : "mgmtIp"))
        return {{}, {}, "the database has addresses there that are not told here"};
    if (isTunnel) return {"tunnel_ips", addresses(row.tunnelIpIteratorConst()), {}};
    return {"management_ips", addresses(row.mgmtIpIteratorConst()), {}};
}

WrittenValue written(Vgw::PhysicalSwitch const& row, Qor::AttributeId attribute) {
    switch (attribute) {
        case Vgw::PhysicalSwitch::DescAttr::id:
            return {"description", row.desc().view(), {}};
        case Vgw::PhysicalSwitch::MgmtIpAttr::id:
            return switchAddresses(row, false);
        case Vgw::PhysicalSwitch::TunnelIpAttr::id:
            return switchAddresses(row, true);
        case Vgw::PhysicalSwitch::FaultAttr::id:
            return {"switch_fault_status", faults(row), {}};
        default:
            return refusal(row, attribute);
    }
}

WrittenValue written(Vgw::PhysicalPort const& row, Qor::AttributeId attribute) {
    switch (attribute) {
        case Vgw::PhysicalPort::DescAttr::id:
            return {"description", row.desc().view(), {}};
        case Vgw::PhysicalPort::FaultAttr::id:
            return {"port_fault_status", faults(row), {}};
        case Vgw::PhysicalPort::VlanStatAttr::id:
            return {"vlan_stats", statistics(row), {}};
        default:
            return refusal(row, attribute);
    }
}

WrittenValue counter(char const* column, std::uint64_t count) {
    constexpr auto most = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
    if (count > most) return {{}, {}, "the database counts to " + std::to_string(most)};
    return {column, count, {}};
}

WrittenValue written(Vgw::LogicalBindingStats const& row, Qor::AttributeId attribute) {
    switch (attribute) {
        case Vgw::LogicalBindingStats::InBytesAttr::id:
            return counter("bytes_from_local", row.inBytes());
        case Vgw::LogicalBindingStats::InPacketsAttr::id:
            return counter("packets_from_local", row.inPackets());
        case Vgw::LogicalBindingStats::OutBytesAttr::id:
            return counter("bytes_to_local", row.outBytes());
        case Vgw::LogicalBindingStats::OutPacketsAttr::id:
            return counter("packets_to_local", row.outPackets());
        default:
            return refusal(row, attribute);
    }
}

bool holdsZeroByte(json const& value) {
    if (value.is_string())
        return value.get_ref<std::string const&>().find('\0') != std::string::npos;
    return value.is_structured() && std::any_of(value.begin(), value.end(), holdsZeroByte);
}

// Why the database can't be told the value; empty if it can. A server hangs up on a zero byte, and
// bytes that are not UTF-8 can't be written as JSON (RFC 8259, section 8.1).
std::string whyNotText(json const& value) {
    if (holdsZeroByte(value)) return " holds a zero byte, which the database does not take";
    try {
        static_cast<void>(value.dump());
    } catch (json::type_error const&) {
        return " holds bytes that are not UTF-8";
    }
    return {};
}

WrittenValue valueOf(Qor::Entity const& row, Qor::AttributeId attribute) {
    if (auto const* const found = dynamic_cast<Vgw::PhysicalSwitch const*>(&row))
        return written(*found, attribute);
    if (auto const* const found = dynamic_cast<Vgw::PhysicalPort const*>(&row))
        return written(*found, attribute);
    return written(static_cast<Vgw::LogicalBindingStats const&>(row), attribute);
}

}  // namespace

std::optional<Table> writableTable(Qor::Entity const& row) {
    if (dynamic_cast<Vgw::PhysicalSwitch const*>(&row)) return Table::physicalSwitch;
    if (dynamic_cast<Vgw::PhysicalPort const*>(&row)) return Table::physicalPort;
    if (dynamic_cast<Vgw::LogicalBindingStats const*>(&row)) return Table::logicalBindingStats;
    return std::nullopt;
}

WrittenValue writtenValue(Qor::Entity const& row, Qor::AttributeId attribute) {
    WrittenValue result = valueOf(row, attribute);
    if (!result.refusal.empty()) return result;
    std::string const why = whyNotText(result.value);
    if (!why.empty()) result.refusal = std::string(row.attributeString(attribute).view()) + why;
    return result;
}

}  // namespace Vgwd
