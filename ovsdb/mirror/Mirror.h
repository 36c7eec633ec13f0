#ifndef OVSDB_MIRROR_MIRROR_H
#define OVSDB_MIRROR_MIRROR_H

// Keeps a Vgw::HwVtepOvsdb, and the MAC rows beside it, in step with the rows of a database. Every
// value is a function of the database alone, never of the order in which it changed; every row is
// named by its uuid, and so is every reference.
//
// A step (one message of the server) goes in two passes. The first takes the changed rows into the
// graph of who refers to whom, in any order, since a reference may name a row that comes later. The
// second changes the library's rows: what goes goes first, MAC rows before the references before
// what they refer to; what comes comes in the opposite order; what is computed through other rows
// follows from the graph. Library rows are changed by their setters, so that notifiees hear each
// real difference once, and nothing when a reconnect brings the same database again.
//
// Not thread-safe. The store must be the one that the changes come from, and outlive the mirror.

#include <ovsdb/mirror/Graph.h>
#include <ovsdb/mirror/MacRefs.h>
#include <ovsdb/mirror/MacRows.h>
#include <ovsdb/mirror/Overlay.h>
#include <ovsdb/mirror/ReferenceMaps.h>
#include <ovsdb/schema/MonitorPlan.h>
#include <ovsdb/store/RowStore.h>
#include <vgw/tables/HwVtepOvsdb.h>

#include <array>
#include <string>
#include <vector>

namespace Ovsdb {

class Mirror {
  public:
    Mirror(RowStore const& store, Vgw::HwVtepOvsdb::Ptr database, MacDirectories directories);

    /// What the schema has; BFD columns may move from one table to another.
    void planIs(MonitorPlan const& plan);
    void apply(std::vector<RowChange> const& changes);

    Vgw::HwVtepOvsdb const& database() const { return *database_; }
    MacDirectories const& directories() const { return macRows_.directories(); }

    /// What the model could not hold, as "TABLE UUID COLUMN", in ascending order.
    std::vector<std::string> lost() const;
    /// The columns of one row that the model could not hold.
    std::vector<std::string_view> lost(Table table, Uuid const& uuid) const;
    /// The row that stands for one of a MAC table; null when there is none.
    Qor::Ptr<Vgw::OvsdbDataModel> macRow(Table table, Uuid const& uuid) const;
    /// Makes a row what the database says, whatever somebody else made of it. One that the database
    /// does not have is left alone.
    void restore(Table table, Uuid const& uuid);

    /// What rows hold beside the database, until it is taken back by null. It must outlive that.
    void overlayIs(Overlay const* overlay);

  private:
    void digest(RowChange const& change);
    void digestLogicalSwitch(RowChange const& change);
    void digestLocator(RowChange const& change);
    void digestTunnel(RowChange const& change);
    void digestMac(RowChange const& change);
    void touch(MacNode& node);
    void touch(LocatorNode& node);
    void touch(LocatorSetNode& node);
    void touch(LogicalSwitchNode& node);
    void touchBfd(LocatorNode& node);
    void spread();
    void remove();
    void removeRows(Table table);
    void removeRow(RowChange const& change);
    void add();
    void addRows(Table table);
    void addRow(RowChange const& change);
    void finish();

    RowStore const& store_;
    Vgw::HwVtepOvsdb::Ptr database_;
    MacRows macRows_;
    MonitorPlan plan_;
    Graph graph_;
    MacRefs refs_;
    ReferenceMaps references_;
    Overlay const* overlay_ = nullptr;

    // Of the step.
    std::array<std::vector<RowChange const*>, tableCount> changes_;
    std::vector<MacNode*> macs_;
    std::vector<LocatorNode*> locators_;
    std::vector<LocatorNode*> bfdLocators_;
    std::vector<LocatorSetNode*> sets_;
    std::vector<LogicalSwitchNode*> switches_;
};

}  // namespace Ovsdb

#endif
