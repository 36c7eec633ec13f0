#ifndef OVSDB_MIRROR_ROW_WRITER_H
#define OVSDB_MIRROR_ROW_WRITER_H

// Brings one row of the model up to date with one raw row of the database. A row that can be
// compared and copied is staged first, compared, and copied only if it differs; so whoever watches
// hears of real differences and of nothing else. What the model can't hold whole is marked in
// `invalidAttrib` of both rows; comparison and copying then keep out of it, and the part that fits
// is written by setters.
//
// What a row holds beside the database (Overlay.h) is put into the staged row.

#include <ovsdb/schema/MirroredTables.h>
#include <ovsdb/store/Row.h>
#include <vgw/tables/Global.h>
#include <vgw/tables/LogicalBindingStats.h>
#include <vgw/tables/LogicalSwitch.h>
#include <vgw/tables/Manager.h>
#include <vgw/tables/PhysicalLocator.h>
#include <vgw/tables/PhysicalLocatorSet.h>
#include <vgw/tables/PhysicalPort.h>
#include <vgw/tables/PhysicalSwitch.h>

#include <functional>
#include <string_view>

namespace Ovsdb {

/// Puts into a staged row what is beside the database.
using Staging = std::function<void(Vgw::OvsdbDataModel& staged)>;

void write(Vgw::Manager& row, Row const& raw);
void write(Vgw::Global& row, Row const& raw);
void write(Vgw::PhysicalSwitch& row, Row const& raw, Staging const& overlay);
void write(Vgw::LogicalSwitch& row, Row const& raw);
void write(Vgw::LogicalBindingStats& row, Row const& raw, Staging const& overlay);
void write(Vgw::PhysicalPort& row, Row const& raw, Staging const& overlay);
/// Its key; BFD is not in the row alone (Bfd.h).
void write(Vgw::PhysicalLocator& row, Row const& raw);
void write(Vgw::PhysicalLocatorSet& row, Row const& raw);

/// Whether writing a row that may hold something beside the database settles the mark of that
/// attribute.
bool mayBeMarked(Table table, std::string_view attribute);
/// Sets or takes off the mark that an attribute is not what the database says.
void mark(Vgw::OvsdbDataModel& row, char const* attribute, bool invalid);

}  // namespace Ovsdb

#endif
