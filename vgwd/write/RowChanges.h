#ifndef VGWD_WRITE_ROW_CHANGES_H
#define VGWD_WRITE_ROW_CHANGES_H

// What is to be written of one row: columns as a whole, and of sets and maps single members, by
// key. Others write members of the same columns at the same time, peers through the tree and
// clients of the database beside it; who sent whole sets would take out what they put in.

#include <nlohmann/json.hpp>

#include <map>
#include <string>

namespace Vgwd {

struct Member {
    bool isThere = false;  ///< else it is taken out
    std::string text;      ///< of a map the value, as the tree has it
};

/// By the column and the key, a text or a number.
using MemberChanges = std::map<std::string, std::map<nlohmann::json, Member>>;

struct RowChanges {
    nlohmann::json columns;  ///< column to value (RFC 7047 section 5.1); null: none
    MemberChanges members;

    bool isEmpty() const { return columns.is_null() && members.empty(); }
    /// What was written later takes the place of what was written before.
    void add(RowChanges const& later) {
        if (!later.columns.is_null()) columns.update(later.columns);
        for (auto const& [column, changes] : later.members)
            for (auto const& [key, member] : changes) members[column][key] = member;
    }
};

}  // namespace Vgwd

#endif
