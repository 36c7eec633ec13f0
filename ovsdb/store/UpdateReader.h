#ifndef OVSDB_STORE_UPDATE_READER_H
#define OVSDB_STORE_UPDATE_READER_H

// Reads the <table-updates> of a monitor's reply or notification into a staging.
//
//     update   {"Logical_Switch": {U: {"old": {...}, "new": {whole row}}}}
//     update2  {"Logical_Switch": {U: {"initial"|"insert"|"modify": {...}}}}
//              {"Logical_Switch": {U: {"delete": null}}}
//
// The first is RFC 7047 section 4.1.6, and a row without "new" was deleted; the second is
// ovsdb-server(7) section 4.1.14, and update3 has the same.
// In the first form a row is whole. In the second an insert leaves out columns that have their
// default, and a modify tells the changed columns, sets and maps as differences. Tables and columns
// that nobody asked for are passed over. A column that is a gap of the plan stays what it was. What
// makes no sense raises ProtocolError, which names table and row.

#include <ovsdb/schema/MonitorPlan.h>
#include <ovsdb/store/Row.h>
#include <ovsdb/store/RowStore.h>

#include <simdjson.h>

namespace Ovsdb {

enum class UpdateForm { whole, differences };

class UpdateReader {
  public:
    UpdateReader(MonitorPlan const& plan, RowStore::Staging& staging)
        : plan_(plan), staging_(staging) {}

    void read(simdjson::dom::element tableUpdates, UpdateForm form);

  private:
    void readTable(MirroredTable const& table, simdjson::dom::object rows, UpdateForm form);
    void readRow(MirroredTable const& table, Uuid const& uuid, simdjson::dom::object update,
                 UpdateForm form);
    Row build(MirroredTable const& table, simdjson::dom::object columns, Row const& held,
              bool isModified);
    void appendUntold(MirroredTable const& table, std::size_t column, Row const& held,
                      bool isModified);

    MonitorPlan const& plan_;
    RowStore::Staging& staging_;
    RowBuilder builder_;
    std::string modify_;
};

}  // namespace Ovsdb

#endif
