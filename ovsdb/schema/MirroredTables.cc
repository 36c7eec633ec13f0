#include <ovsdb/schema/MirroredTables.h>

namespace Ovsdb {
namespace {

constexpr ColumnType text{Shape::one, AtomType::string, AtomType::string};
constexpr ColumnType integer{Shape::one, AtomType::integer, AtomType::string};
constexpr ColumnType uuid{Shape::one, AtomType::uuid, AtomType::string};
constexpr ColumnType maybeInteger{Shape::optional, AtomType::integer, AtomType::string};
constexpr ColumnType texts{Shape::set, AtomType::string, AtomType::string};
constexpr ColumnType uuids{Shape::set, AtomType::uuid, AtomType::string};
constexpr ColumnType vlanToUuid{Shape::map, AtomType::integer, AtomType::uuid};
constexpr ColumnType textToText{Shape::map, AtomType::string, AtomType::string};

constexpr std::array managerColumns{MirroredColumn{"target", text}};
constexpr std::array globalColumns{MirroredColumn{"managers", uuids},
                                   MirroredColumn{"switches", uuids}};
constexpr std::array physicalSwitchColumns{
    MirroredColumn{"name", text},        MirroredColumn{"description", text},
    MirroredColumn{"ports", uuids},      MirroredColumn{"management_ips", texts},
    MirroredColumn{"tunnel_ips", texts}, MirroredColumn{"switch_fault_status", texts, false}};
constexpr std::array logicalSwitchColumns{MirroredColumn{"name", text},
                                          MirroredColumn{"description", text},
                                          MirroredColumn{"tunnel_key", maybeInteger}};
constexpr std::array logicalBindingStatsColumns{
    MirroredColumn{"bytes_from_local", integer}, MirroredColumn{"packets_from_local", integer},
    MirroredColumn{"bytes_to_local", integer}, MirroredColumn{"packets_to_local", integer}};
constexpr std::array physicalPortColumns{
    MirroredColumn{"name", text}, MirroredColumn{"description", text},
    MirroredColumn{"vlan_bindings", vlanToUuid}, MirroredColumn{"vlan_stats", vlanToUuid},
    MirroredColumn{"port_fault_status", texts, false}};
constexpr std::array physicalLocatorColumns{
    MirroredColumn{"encapsulation_type", text}, MirroredColumn{"dst_ip", text},
    MirroredColumn{"tunnel_key", maybeInteger, false}, MirroredColumn{"bfd", textToText, false},
    MirroredColumn{"bfd_status", textToText, false}};
constexpr std::array tunnelColumns{MirroredColumn{"remote", uuid},
                                   MirroredColumn{"bfd_params", textToText},
                                   MirroredColumn{"bfd_status", textToText}};
constexpr std::array physicalLocatorSetColumns{MirroredColumn{"locators", uuids}};
constexpr std::array ucastColumns{MirroredColumn{"MAC", text},
                                  MirroredColumn{"logical_switch", uuid},
                                  MirroredColumn{"locator", uuid}, MirroredColumn{"ipaddr", text}};
constexpr std::array mcastColumns{
    MirroredColumn{"MAC", text}, MirroredColumn{"logical_switch", uuid},
    MirroredColumn{"locator_set", uuid}, MirroredColumn{"ipaddr", text}};

constexpr std::array<MirroredTable, tableCount> tables{
    MirroredTable{Table::manager, "Manager", managerColumns},
    MirroredTable{Table::global, "Global", globalColumns},
    MirroredTable{Table::physicalSwitch, "Physical_Switch", physicalSwitchColumns},
    MirroredTable{Table::logicalSwitch, "Logical_Switch", logicalSwitchColumns},
    MirroredTable{Table::logicalBindingStats, "Logical_Binding_Stats", logicalBindingStatsColumns},
    MirroredTable{Table::physicalPort, "Physical_Port", physicalPortColumns},
    MirroredTable{Table::physicalLocator, "Physical_Locator", physicalLocatorColumns},
    MirroredTable{Table::tunnel, "Tunnel", tunnelColumns, false},
    MirroredTable{Table::physicalLocatorSet, "Physical_Locator_Set", physicalLocatorSetColumns},
    MirroredTable{Table::ucastMacsLocal, "Ucast_Macs_Local", ucastColumns},
    MirroredTable{Table::mcastMacsLocal, "Mcast_Macs_Local", mcastColumns},
    MirroredTable{Table::ucastMacsRemote, "Ucast_Macs_Remote", ucastColumns},
    MirroredTable{Table::mcastMacsRemote, "Mcast_Macs_Remote", mcastColumns}};

}  // namespace

std::span<MirroredTable const> mirroredTables() { return tables; }

MirroredTable const& mirroredTable(Table table) { return tables.at(index(table)); }

}  // namespace Ovsdb
