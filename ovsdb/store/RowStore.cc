#include <ovsdb/store/RowStore.h>

#include <ovsdb/rpc/ProtocolError.h>

#include <algorithm>
#include <utility>

namespace Ovsdb {

Row const* RowStore::find(Table table, Uuid const& uuid) const {
    Records const& records = tables_[index(table)];
    auto const found = records.find(uuid);
    return found == records.end() ? nullptr : &found->second.row;
}

std::size_t RowStore::size() const {
    std::size_t rows = 0;
    for (Records const& records : tables_) rows += records.size();
    return rows;
}

RowStore::Staging::~Staging() {
    for (Entry const& entry : entries_) {
        entry.record->second.staged = false;
        if (!entry.record->second.row)
            store_.tables_[index(entry.table)].erase(entry.record->first);
    }
}

// Never asks for fewer buckets than there are: that would lay all rows out anew.
void RowStore::Staging::expect(Table table, std::size_t rows) {
    Records& records = store_.tables_[index(table)];
    if (rows > records.bucket_count()) records.reserve(rows);
}

Row const& RowStore::Staging::open(Table table, Uuid const& uuid) {
    auto const [at, made] = store_.tables_[index(table)].try_emplace(uuid);
    if (at->second.staged)
        throw ProtocolError("row " + uuid.text() + " of table " +
                            std::string(mirroredTable(table).name) + " stands twice in one update");
    at->second.staged = true;
    entries_.push_back({table, &*at, Row()});
    return at->second.row;
}

std::vector<RowChange> RowStore::Staging::commit(bool whole, std::bitset<tableCount> kept) {
    if (whole) stageUnnamed(kept);
    std::vector<RowChange> changes;
    changes.reserve(entries_.size());
    for (Entry& entry : entries_) settle(entry, changes);
    entries_.clear();
    return changes;
}

void RowStore::Staging::stageUnnamed(std::bitset<tableCount> kept) {
    std::size_t const named = entries_.size();
    if (named == store_.size()) return;
    for (MirroredTable const& table : mirroredTables()) {
        if (kept[index(table.table)]) continue;
        for (auto& record : store_.tables_[index(table.table)])
            if (!record.second.staged) entries_.push_back({table.table, &record, Row()});
    }
    std::sort(entries_.begin() + static_cast<std::ptrdiff_t>(named), entries_.end(),
              [](Entry const& a, Entry const& b) {
                  return a.table != b.table ? a.table < b.table : a.record->first < b.record->first;
              });
}

void RowStore::Staging::settle(Entry& entry, std::vector<RowChange>& changes) {
    Record& record = entry.record->second;
    record.staged = false;
    if (entry.after == record.row) {
        if (!record.row) store_.tables_[index(entry.table)].erase(entry.record->first);
        return;
    }
    Row before = std::exchange(record.row, std::move(entry.after));
    if (record.row) {
        changes.push_back({entry.table, entry.record->first, std::move(before), &record.row});
        return;
    }
    changes.push_back({entry.table, entry.record->first, std::move(before), nullptr});
    store_.tables_[index(entry.table)].erase(changes.back().uuid);
}

}  // namespace Ovsdb
