#include <ovsdb/schema/Schema.h>

#include <ovsdb/rpc/ProtocolError.h>

namespace Ovsdb {
namespace {

using simdjson::dom::element;
using simdjson::dom::object;

// A <base-type>: "string", or an object with the member "type".
std::optional<AtomType> readAtomType(element base) {
    std::string_view name;
    if (base.get(name) == simdjson::SUCCESS) return atomTypeOf(name);
    if (base["type"].get(name) == simdjson::SUCCESS) return atomTypeOf(name);
    return std::nullopt;
}

std::int64_t readBound(object type, std::string_view name, std::int64_t absent) {
    element bound;
    if (type[name].get(bound) != simdjson::SUCCESS) return absent;
    std::int64_t number = 0;
    // "unlimited" is the only text that may stand here.
    return bound.get(number) == simdjson::SUCCESS ? number : 2;
}

std::optional<ColumnType> readColumnType(element type) {
    ColumnType read;
    object full;
    if (type.get(full) != simdjson::SUCCESS) {
        std::optional<AtomType> const atom = readAtomType(type);
        if (!atom) return std::nullopt;
        read.key = *atom;
        return read;
    }
    element key;
    if (full["key"].get(key) != simdjson::SUCCESS) return std::nullopt;
    std::optional<AtomType> const keyType = readAtomType(key);
    if (!keyType) return std::nullopt;
    read.key = *keyType;
    element value;
    if (full["value"].get(value) == simdjson::SUCCESS) {
        std::optional<AtomType> const valueType = readAtomType(value);
        if (!valueType) return std::nullopt;
        read.shape = Shape::map;
        read.value = *valueType;
        return read;
    }
    if (readBound(full, "max", 1) != 1)
        read.shape = Shape::set;
    else if (readBound(full, "min", 1) == 0)
        read.shape = Shape::optional;
    return read;
}

}  // namespace

Schema::Columns const* Schema::table(std::string_view table) const {
    auto const found = tables.find(table);
    return found == tables.end() ? nullptr : &found->second;
}

Schema readSchema(element schema) {
    Schema read;
    object tables;
    std::string_view text;
    if (schema["tables"].get(tables) != simdjson::SUCCESS)
        throw ProtocolError("a schema without \"tables\"");
    if (schema["name"].get(text) == simdjson::SUCCESS) read.name = text;
    if (schema["version"].get(text) == simdjson::SUCCESS) read.version = text;
    for (auto const [tableName, table] : tables) {
        object columns;
        if (table["columns"].get(columns) != simdjson::SUCCESS)
            throw ProtocolError("a schema whose table " + std::string(tableName) +
                                " has no \"columns\"");
        Schema::Columns& into = read.tables[std::string(tableName)];
        for (auto const [columnName, column] : columns) {
            element type;
            std::optional<ColumnType> columnType;
            if (column["type"].get(type) == simdjson::SUCCESS) columnType = readColumnType(type);
            into.emplace(columnName, columnType);
        }
    }
    return read;
}

}  // namespace Ovsdb
