#ifndef OVSDB_STORE_ROW_STORE_H
#define OVSDB_STORE_ROW_STORE_H

// All mirrored rows of the database as the last message left them. One message of the server is one
// step: its rows are staged, and only when all of them were read does commit() put them in place. A
// staging that ends without commit() leaves the store as it was. What commit() gives back are the
// rows that really differ, with their old values.

#include <ovsdb/schema/MirroredTables.h>
#include <ovsdb/store/Row.h>
#include <ovsdb/store/Uuid.h>

#include <array>
#include <bitset>
#include <unordered_map>
#include <vector>

namespace Ovsdb {

struct RowChange {
    Table table;
    Uuid uuid;
    Row before;        ///< no row: it was inserted
    Row const* after;  ///< in the store; null: it was deleted
};

class RowStore {
  public:
    class Staging;
    struct Record {
        Row row;
        bool staged = false;
    };
    using Records = std::unordered_map<Uuid, Record, UuidHash>;

    /// Null when there is none.
    Row const* find(Table table, Uuid const& uuid) const;
    Records const& rows(Table table) const { return tables_[index(table)]; }
    std::size_t size() const;

  private:
    std::array<Records, tableCount> tables_;
};

class RowStore::Staging {
  public:
    explicit Staging(RowStore& store) : store_(store) {}
    Staging(Staging const&) = delete;
    Staging& operator=(Staging const&) = delete;
    ~Staging();

    /// The row as it is before this step; becomes part of the step. Raises ProtocolError when it
    /// already is.
    Row const& open(Table table, Uuid const& uuid);
    /// So many rows of the table are in the message.
    void expect(Table table, std::size_t rows);
    /// What becomes of the row opened last; left out, it is deleted.
    void set(Row row) { entries_.back().after = std::move(row); }

    /// In the order of the message; with `whole` all rows that were not staged are deleted, in
    /// ascending uuid, behind the others, but for those of the tables to be kept.
    std::vector<RowChange> commit(bool whole, std::bitset<tableCount> kept = {});

  private:
    struct Entry {
        Table table;
        Records::value_type* record;
        Row after;
    };

    void stageUnnamed(std::bitset<tableCount> kept);
    void settle(Entry& entry, std::vector<RowChange>& changes);

    RowStore& store_;
    std::vector<Entry> entries_;
};

}  // namespace Ovsdb

#endif
