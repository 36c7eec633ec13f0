#include <ovsdb/schema/ColumnType.h>

#include <array>

namespace Ovsdb {
namespace {

constexpr std::array<std::string_view, 5> names{"integer", "real", "boolean", "string", "uuid"};

}  // namespace

std::string_view atomTypeName(AtomType type) { return names.at(static_cast<std::size_t>(type)); }

std::optional<AtomType> atomTypeOf(std::string_view name) {
    for (std::size_t i = 0; i < names.size(); ++i)
        if (names[i] == name) return static_cast<AtomType>(i);
    return std::nullopt;
}

std::string ColumnType::text() const {
    std::string atom(atomTypeName(key));
    switch (shape) {
        case Shape::one:
            return atom;
        case Shape::optional:
            return "optional " + atom;
        case Shape::set:
            return "set of " + atom;
        case Shape::map:
            return "map of " + atom + " to " + std::string(atomTypeName(value));
    }
    return atom;
}

}  // namespace Ovsdb
