#ifndef OVSDB_SCHEMA_MONITOR_PLAN_H
#define OVSDB_SCHEMA_MONITOR_PLAN_H

// Which of the mirrored tables and columns a server's schema really has, and therefore what is
// asked of it: one unknown name would fail a whole monitor. What is missing, or has another type
// than the model needs, is told by name; the rest is mirrored.
//
// A table or column that every version has, and one of a type that can't be read, is a gap: what
// is held of it from an earlier schema is kept, since nobody can tell what became of it, and the
// copy is not whole. Whatever else is missing comes and goes with versions: its rows go with it,
// and the column reads as its default.

#include <ovsdb/schema/MirroredTables.h>
#include <ovsdb/schema/Schema.h>

#include <nlohmann/json_fwd.hpp>

#include <array>
#include <bitset>
#include <cstdint>
#include <string>
#include <vector>

namespace Ovsdb {

class MonitorPlan {
  public:
    MonitorPlan() = default;
    explicit MonitorPlan(Schema const& schema);

    bool has(Table table) const { return columns_[index(table)] != 0; }
    bool has(Table table, std::size_t column) const {
        return (columns_[index(table)] >> column & 1) != 0;
    }

    /// What is held is kept, for it can't be followed.
    bool isGap(Table table) const { return gapTables_[index(table)]; }
    bool isGap(Table table, std::size_t column) const {
        return (gapColumns_[index(table)] >> column & 1) != 0;
    }
    std::bitset<tableCount> gapTables() const { return gapTables_; }
    /// What all gaps are, in words; empty while there is none.
    std::string const& gap() const { return gap_; }

    /// One line for each table or column that is missed, as "table Tunnel is missing from the
    /// schema".
    std::vector<std::string> const& complaints() const { return complaints_; }
    /// Version of the schema, as "1.7.0"; empty when it doesn't tell.
    std::string const& version() const { return version_; }

    /// The <monitor-requests> of a monitor of any kind, with the columns by name.
    nlohmann::json requests() const;

    /// Same tables and columns: a copy kept from the one can be carried on under the other.
    bool sameColumns(MonitorPlan const& other) const { return columns_ == other.columns_; }

  private:
    void addTable(MirroredTable const& table, Schema const& schema);
    void addColumn(MirroredTable const& table, std::size_t column, Schema::Columns const& columns);
    void addGap(std::string const& complaint);

    std::array<std::uint32_t, tableCount> columns_{};  // bit n: column n is there
    std::bitset<tableCount> gapTables_;
    std::array<std::uint32_t, tableCount> gapColumns_{};
    std::string gap_;
    std::vector<std::string> complaints_;
    std::string version_;
};

}  // namespace Ovsdb

#endif
