#include <vgwd/write/WrittenValue.h>

#include <vgw/tables/LogicalBindingStats.h>
#include <vgw/tables/PhysicalPort.h>
#include <vgw/tables/PhysicalSwitch.h>

#include <cstdint>
#include <limits>

namespace Vgwd {
namespace {

using nlohmann::json;
using Ovsdb::Table;

WrittenValue refusal(Qor::Entity const& row, Qor::AttributeId attribute) {
    return {{}, {}, std::string(row.attributeString(attribute).view()) + " may not be written"};
}

WrittenValue written(Vgw::PhysicalSwitch const& row, Qor::AttributeId attribute) {
    switch (attribute) {
        case Vgw::PhysicalSwitch::DescAttr::id:
            return {"description", row.desc().view(), {}};
        case Vgw::PhysicalSwitch::MgmtIpAttr::id:
        case Vgw::PhysicalSwitch::TunnelIpAttr::id:
        case Vgw::PhysicalSwitch::FaultAttr::id:
            return {};
        default:
            return refusal(row, attribute);
    }
}

WrittenValue written(Vgw::PhysicalPort const& row, Qor::AttributeId attribute) {
    switch (attribute) {
        case Vgw::PhysicalPort::DescAttr::id:
            return {"description", row.desc().view(), {}};
        case Vgw::PhysicalPort::FaultAttr::id:
        case Vgw::PhysicalPort::VlanStatAttr::id:
            return {};
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

void put(Vgw::LogicalBindingStats& row, std::string const& column, std::uint64_t count) {
    if (column == "bytes_from_local")
        row.inBytesIs(count);
    else if (column == "packets_from_local")
        row.inPacketsIs(count);
    else if (column == "bytes_to_local")
        row.outBytesIs(count);
    else
        row.outPacketsIs(count);
}

bool holdsZeroByte(json const& value) {
    return value.is_string() && value.get_ref<std::string const&>().find('\0') != std::string::npos;
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
    result.refusal = whyNotText(row.attributeString(attribute).view(), result.value);
    return result;
}

void putColumns(Qor::Entity& row, json const& columns) {
    for (auto const& [column, value] : columns.items()) {
        if (auto* const device = dynamic_cast<Vgw::PhysicalSwitch*>(&row))
            device->descIs(std::string_view(value.get_ref<std::string const&>()));
        else if (auto* const port = dynamic_cast<Vgw::PhysicalPort*>(&row))
            port->descIs(std::string_view(value.get_ref<std::string const&>()));
        else if (auto* const statistics = dynamic_cast<Vgw::LogicalBindingStats*>(&row))
            put(*statistics, column, value.get<std::uint64_t>());
    }
}

// A server hangs up on a zero byte, and bytes that are not UTF-8 can't be written as JSON (RFC
// 8259, section 8.1).
std::string whyNotText(std::string_view attribute, json const& value) {
    if (holdsZeroByte(value))
        return std::string(attribute) + " holds a zero byte, which the database does not take";
    try {
        static_cast<void>(value.dump());
    } catch (json::type_error const&) {
        return std::string(attribute) + " holds bytes that are not UTF-8";
    }
    return {};
}

}  // namespace Vgwd
