#ifndef OVSDB_SCHEMA_SCHEMA_H
#define OVSDB_SCHEMA_SCHEMA_H

// What a server says its database looks like: the reply to get_schema (RFC 7047 section 3.2,
// <database-schema>), kept as tables, columns and types. A column whose type can't be read is kept
// without one, so that a schema of later times is not refused for a column that nobody wants.

#include <ovsdb/schema/ColumnType.h>

#include <simdjson.h>

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace Ovsdb {

struct Schema {
    using Columns = std::map<std::string, std::optional<ColumnType>, std::less<>>;

    std::string name;
    std::string version;
    std::map<std::string, Columns, std::less<>> tables;

    Columns const* table(std::string_view table) const;
};

/// Raises ProtocolError when this is no database schema.
Schema readSchema(simdjson::dom::element schema);

}  // namespace Ovsdb

#endif
