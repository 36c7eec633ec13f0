#ifndef TESTS_OVSDB_FULL_SCHEMA_H
#define TESTS_OVSDB_FULL_SCHEMA_H

#include <ovsdb/schema/MirroredTables.h>

#include <nlohmann/json.hpp>

#include <string>

namespace Ovsdb {

// A schema with every mirrored table and column.
inline nlohmann::json fullSchema() {
    using nlohmann::json;
    json schema{{"name", "hardware_vtep"}, {"version", "1.7.0"}, {"tables", json::object()}};
    for (MirroredTable const& table : mirroredTables()) {
        json columns = json::object();
        for (MirroredColumn const& column : table.columns) {
            std::string const key(atomTypeName(column.type.key));
            json type = key;
            if (column.type.shape == Shape::optional) type = {{"key", key}, {"min", 0}, {"max", 1}};
            if (column.type.shape == Shape::set)
                type = {{"key", {{"type", key}}}, {"min", 0}, {"max", "unlimited"}};
            if (column.type.shape == Shape::map)
                type = {{"key", key},
                        {"value", std::string(atomTypeName(column.type.value))},
                        {"min", 0},
                        {"max", "unlimited"}};
            columns[std::string(column.name)] = {{"type", type}};
        }
        schema["tables"][std::string(table.name)] = {{"columns", columns}};
    }
    return schema;
}

}  // namespace Ovsdb

#endif
