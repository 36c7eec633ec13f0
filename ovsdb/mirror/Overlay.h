#ifndef OVSDB_MIRROR_OVERLAY_H
#define OVSDB_MIRROR_OVERLAY_H

// What rows of the model hold beside the database, where somebody writes the database through the
// model: what he has written and the database does not have yet. It goes into a row before that is
// shown, so that the row itself never changes there and back. Rows of Physical_Switch,
// Physical_Port, Logical_Binding_Stats and the local MAC tables may hold something.

#include <ovsdb/schema/MirroredTables.h>
#include <ovsdb/store/Uuid.h>
#include <vgw/tables/OvsdbDataModel.h>

namespace Ovsdb {

class Overlay {
  public:
    virtual ~Overlay() = default;
    /// Whether there is something of that row.
    virtual bool covers(Table table, Uuid const& uuid) const = 0;
    /// Whether a MAC row has been taken out, so that it does not stand in its directory.
    virtual bool hides(Table table, Uuid const& uuid) const = 0;
    /// Puts it into a row that nobody sees yet, and that is what the database says.
    virtual void put(Table table, Uuid const& uuid, Vgw::OvsdbDataModel& staged) const = 0;
};

}  // namespace Ovsdb

#endif
