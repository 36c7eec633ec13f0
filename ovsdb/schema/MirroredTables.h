#ifndef OVSDB_SCHEMA_MIRRORED_TABLES_H
#define OVSDB_SCHEMA_MIRRORED_TABLES_H

// The tables and columns of hardware_vtep (vtep(5)) that have a place in the model. A column is
// known everywhere else by its table and its position here, whatever the server's schema has.
//
// The schema grew: BFD columns stand in Physical_Locator up to 1.2.0 and in Tunnel from 1.3.0 on,
// fault columns came with 1.1.0, a locator's tunnel_key with 1.5.0. A column that a known version
// lacks is `since` or `until` told, and missed without a word; any other one that is missing is
// reported.

#include <ovsdb/schema/ColumnType.h>

#include <array>
#include <cstddef>
#include <span>
#include <string_view>

namespace Ovsdb {

// In the order in which rows are added; they are removed in the reverse one.
enum class Table : unsigned char {
    manager,
    global,
    physicalSwitch,
    logicalSwitch,
    logicalBindingStats,
    physicalPort,
    physicalLocator,
    tunnel,
    physicalLocatorSet,
    ucastMacsLocal,
    mcastMacsLocal,
    ucastMacsRemote,
    mcastMacsRemote,
};
inline constexpr std::size_t tableCount = 13;

constexpr std::size_t index(Table table) { return static_cast<std::size_t>(table); }

struct MirroredColumn {
    std::string_view name;
    ColumnType type;
    bool always = true;  ///< every version of the schema has it
};

struct MirroredTable {
    Table table;
    std::string_view name;
    std::span<MirroredColumn const> columns;
    bool always = true;
};

/// All of them, in the order of Table.
std::span<MirroredTable const> mirroredTables();
MirroredTable const& mirroredTable(Table table);

// Positions of the columns.
namespace ManagerColumn {
enum : std::size_t { target };
}
namespace GlobalColumn {
enum : std::size_t { managers, switches };
}
namespace PhysicalSwitchColumn {
enum : std::size_t { name, description, ports, managementIps, tunnelIps, faultStatus };
}
namespace LogicalSwitchColumn {
enum : std::size_t { name, description, tunnelKey };
}
namespace LogicalBindingStatsColumn {
enum : std::size_t { bytesFromLocal, packetsFromLocal, bytesToLocal, packetsToLocal };
}
namespace PhysicalPortColumn {
enum : std::size_t { name, description, vlanBindings, vlanStats, faultStatus };
}
namespace PhysicalLocatorColumn {
enum : std::size_t { encapsulationType, dstIp, tunnelKey, bfd, bfdStatus };
}
namespace TunnelColumn {
enum : std::size_t { remote, bfdParams, bfdStatus };
}
namespace PhysicalLocatorSetColumn {
enum : std::size_t { locators };
}
namespace MacColumn {
/// `locator` is the locator set in the multicast tables.
enum : std::size_t { mac, logicalSwitch, locator, ipaddr };
}  // namespace MacColumn

}  // namespace Ovsdb

#endif
