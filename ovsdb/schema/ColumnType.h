#ifndef OVSDB_SCHEMA_COLUMN_TYPE_H
#define OVSDB_SCHEMA_COLUMN_TYPE_H

// The type of a column, as far as values are concerned (RFC 7047 section 3.2, <type>): one atom, an
// optional one, a set or a map. Ranges, enumerations and what a uuid refers to are the server's
// business.

#include <optional>
#include <string>
#include <string_view>

namespace Ovsdb {

enum class AtomType : unsigned char { integer, real, boolean, string, uuid };
enum class Shape : unsigned char { one, optional, set, map };

struct ColumnType {
    Shape shape = Shape::one;
    AtomType key = AtomType::string;    ///< of the atom, the elements, or the map's keys
    AtomType value = AtomType::string;  ///< of the map's values; string elsewhere

    bool operator==(ColumnType const&) const = default;
    /// As "set of uuid", "map of integer to uuid".
    std::string text() const;
};

std::string_view atomTypeName(AtomType type);
std::optional<AtomType> atomTypeOf(std::string_view name);

}  // namespace Ovsdb

#endif
