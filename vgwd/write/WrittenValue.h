#ifndef VGWD_WRITE_WRITTEN_VALUE_H
#define VGWD_WRITE_WRITTEN_VALUE_H

// What may be written of which row, and how it is a column of the database. These are the columns
// that the switch's side of a hardware VTEP fills (vtep(5)): descriptions, addresses, faults and
// statistics. What the controller's side fills (logical switches, remote addresses, bindings) is
// read.
//
// Sets and maps are written by key (RowMembers.h), all others as a whole.
//
// A row of statistics lives as long as a port names it for a VLAN. So a port is told to keep them
// by a text that is no row's UUID: the row comes into being in the same transaction, and its UUID
// takes the text's place.

#include <ovsdb/schema/MirroredTables.h>
#include <qor/entity/Entity.h>

#include <nlohmann/json.hpp>

#include <optional>
#include <string>
#include <string_view>

namespace Vgwd {

struct WrittenValue {
    std::string column;    ///< empty: what has changed is heard by key
    nlohmann::json value;  ///< RFC 7047 section 5.1, <value>
    std::string refusal;   ///< why it can't be written; then the others mean nothing
};

/// The table of a row whose columns may be written, MAC rows apart; none for other entities.
std::optional<Ovsdb::Table> writableTable(Qor::Entity const& row);
/// What an attribute of such a row has become. REQUIRES: writableTable(row).
WrittenValue writtenValue(Qor::Entity const& row, Qor::AttributeId attribute);
/// Makes attributes of such a row what the columns say; the counterpart of writtenValue().
/// `columns`: an object, or null.
void putColumns(Qor::Entity& row, nlohmann::json const& columns);
/// Why the database can't be told a value of that attribute; empty if it can.
std::string whyNotText(std::string_view attribute, nlohmann::json const& value);

}  // namespace Vgwd

#endif
