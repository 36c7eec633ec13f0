#include <ovsdb/store/UpdateReader.h>

#include <ovsdb/rpc/ProtocolError.h>
#include <ovsdb/store/Datum.h>

#include <array>
#include <bitset>

namespace Ovsdb {
namespace {

using simdjson::SUCCESS;
using simdjson::dom::element;
using simdjson::dom::object;

constexpr std::size_t maxColumns = 8;

object objectOf(element value, std::string_view what) {
    object found;
    if (value.get(found) != SUCCESS) throw ProtocolError(std::string(what) + " is no object");
    return found;
}

MirroredTable const* tableNamed(std::string_view name) {
    for (MirroredTable const& table : mirroredTables())
        if (table.name == name) return &table;
    return nullptr;
}

std::size_t columnNamed(MirroredTable const& table, std::string_view name) {
    for (std::size_t i = 0; i < table.columns.size(); ++i)
        if (table.columns[i].name == name) return i;
    return maxColumns;
}

std::string rowName(MirroredTable const& table, std::string_view uuid) {
    return "row " + std::string(uuid) + " of table " + std::string(table.name);
}

}  // namespace

void UpdateReader::read(element tableUpdates, UpdateForm form) {
    for (auto const [name, rows] : objectOf(tableUpdates, "a table update")) {
        MirroredTable const* const table = tableNamed(name);
        if (table == nullptr || !plan_.has(table->table)) continue;
        readTable(*table, objectOf(rows, "the update of table " + std::string(name)), form);
    }
}

void UpdateReader::readTable(MirroredTable const& table, object rows, UpdateForm form) {
    staging_.expect(table.table, rows.size());
    for (auto const [text, update] : rows) {
        std::optional<Uuid> const uuid = Uuid::parse(text);
        if (!uuid)
            throw ProtocolError("\"" + std::string(text.substr(0, 80)) +
                                "\" is no uuid, in the update of table " + std::string(table.name));
        object change;
        if (update.get(change) != SUCCESS)
            throw ProtocolError("the update of " + rowName(table, text) + " is no object");
        try {
            readRow(table, *uuid, change, form);
        } catch (ProtocolError const& e) {
            builder_.reset();
            throw ProtocolError(rowName(table, text) + ": " + e.what());
        }
    }
}

void UpdateReader::readRow(MirroredTable const& table, Uuid const& uuid, object update,
                           UpdateForm form) {
    Row const& held = staging_.open(table.table, uuid);
    element columns;
    if (form == UpdateForm::whole) {
        if (update["new"].get(columns) == SUCCESS)
            staging_.set(build(table, objectOf(columns, "\"new\""), held, false));
        else if (update["old"].error() != SUCCESS)
            throw ProtocolError("neither \"new\" nor \"old\"");
    } else if (update["modify"].get(columns) == SUCCESS) {
        if (!held) throw ProtocolError("modified, but never seen");
        staging_.set(build(table, objectOf(columns, "\"modify\""), held, true));
    } else if (update["insert"].get(columns) == SUCCESS ||
               update["initial"].get(columns) == SUCCESS) {
        staging_.set(build(table, objectOf(columns, "\"insert\""), held, false));
    } else if (update["delete"].error() != SUCCESS) {
        throw ProtocolError("none of \"initial\", \"insert\", \"modify\", \"delete\"");
    }
}

// Modified, the held row's columns are what they were but for what is told; else columns that are
// not told have their default.
Row UpdateReader::build(MirroredTable const& table, object columns, Row const& held,
                        bool isModified) {
    std::array<element, maxColumns> cells;
    std::bitset<maxColumns> told;
    for (auto const [name, value] : columns) {
        std::size_t const column = columnNamed(table, name);
        if (column == maxColumns || !plan_.has(table.table, column)) continue;
        cells[column] = value;
        told[column] = true;
    }
    for (std::size_t i = 0; i < table.columns.size(); ++i) {
        ColumnType const& type = table.columns[i].type;
        if (!told[i]) {
            appendUntold(table, i, held, isModified);
        } else if (!isModified) {
            appendDatum(builder_.bytes(), type, cells[i]);
        } else {
            modify_.clear();
            appendDatum(modify_, type, cells[i]);
            appendModified(builder_.bytes(), type, held.column(i), modify_);
        }
        builder_.endColumn();
    }
    return builder_.take();
}

void UpdateReader::appendUntold(MirroredTable const& table, std::size_t column, Row const& held,
                                bool isModified) {
    if (held && (isModified || plan_.isGap(table.table, column)))
        builder_.bytes().append(held.column(column));
    else
        appendDefault(builder_.bytes(), table.columns[column].type);
}

}  // namespace Ovsdb
