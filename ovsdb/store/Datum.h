#ifndef OVSDB_STORE_DATUM_H
#define OVSDB_STORE_DATUM_H

// The value of one column as bytes, in one form for each value, so that equal bytes are equal
// values:
//
//     integer, real   8 bytes, most significant first     one        the atom
//     boolean         1 byte                              optional   nothing, or a 1 and the atom
//     uuid            16 bytes, most significant first    set        elements, ascending by bytes
//     string          its bytes                           map        key and value, ascending by
//     key
//
// In sets and maps a string has its length before it (4 bytes, most significant first). Values come
// as the server sends them (RFC 7047 section 5.1): a set of one may be the bare atom, an optional
// is the atom or the empty set. What isn't of the column's type raises ProtocolError.

#include <ovsdb/schema/ColumnType.h>
#include <ovsdb/store/Uuid.h>

#include <simdjson.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Ovsdb {

void appendDatum(std::string& out, ColumnType const& type, simdjson::dom::element value);
/// What a row has in a column that nobody wrote (RFC 7047 section 5.2.1).
void appendDefault(std::string& out, ColumnType const& type);
/// The value after a "modify" of update2 or update3 (ovsdb-server(7), section 4.1.14): symmetric
/// difference of sets and maps, where a key that both have takes the new value; else the new value
/// itself.
void appendModified(std::string& out, ColumnType const& type, std::string_view old,
                    std::string_view modify);

// Reading one column.
std::int64_t integerOf(std::string_view datum);
std::optional<std::int64_t> optionalIntegerOf(std::string_view datum);
inline Uuid uuidOf(std::string_view datum) { return Uuid::fromBytes(datum); }

// Walks a set or a map; views into the datum.
class DatumItems {
  public:
    DatumItems(ColumnType const& type, std::string_view datum)
        : rest_(datum), key_(type.key), value_(type.value), map_(type.shape == Shape::map) {}

    /// False at the end. The item is then key() and, in a map, value().
    bool next();
    std::string_view key() const { return keyText_; }
    std::string_view value() const { return valueText_; }
    /// Key and value as they are encoded.
    std::string_view encoded() const { return encoded_; }

  private:
    std::string_view take(AtomType type);

    std::string_view rest_;
    std::string_view keyText_;
    std::string_view valueText_;
    std::string_view encoded_;
    AtomType key_;
    AtomType value_;
    bool map_;
};

std::vector<Uuid> uuidsOf(std::string_view datum);
std::vector<std::string_view> textsOf(std::string_view datum);

}  // namespace Ovsdb

#endif
