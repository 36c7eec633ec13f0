// What users of the library rely on, written down once more by hand: every class with its
// attributes, their ids, kinds, types and defaults. A model that changes any of it breaks what is
// in use.
#ifndef TESTS_CONTRACT_MODEL_TABLE_H
#define TESTS_CONTRACT_MODEL_TABLE_H

#include <ostream>
#include <string>
#include <vector>

namespace Contract {

struct AttributeRow {
    int id;
    std::string name;
    std::string kind;
    std::string value;         // the value's type; the entity's of references and owned entities
    std::string key;           // empty for what is not keyed
    std::string defaultValue;  // as text; empty for what is keyed or an operation
    bool operator==(AttributeRow const&) const = default;
};

inline void PrintTo(AttributeRow const& row, std::ostream* out) {
    *out << row.id << " " << row.name << " : " << row.kind << " " << row.value << "[" << row.key
         << "] = " << row.defaultValue;
}

struct ClassRow {
    std::string name;
    std::string base;
    std::vector<AttributeRow> attributes;
};

/// The classes in the order of their registration.
std::vector<ClassRow> const& modelTable();

}  // namespace Contract

#endif
