// What a tree is to hold, kept beside the entities by those who change it; it shares no code with
// them. One plan a tree: all its authors write to it.
//
// The names of entities tell who may do what: 's' and a number stays for good, and is shared; a
// letter of an author's ('a' the one who has the source) and a number comes and goes as that author
// likes, with all that is below.
#ifndef TESTS_SIMULATION_PLAN_H
#define TESTS_SIMULATION_PLAN_H

#include "Picture.h"

#include <set>

namespace Sim {

struct Plan {
    Lines lines;
    // Who wrote a line last.
    std::map<std::string, unsigned> authors;
    // How often an entity was removed at the source, or a key or value there, by path.
    std::map<std::string, unsigned> removals;
    // Where references stand: row, field, number of the key.
    struct Place {
        std::string row;
        Qor::AttributeId field = 0;
        unsigned key = 0;
    };
    std::map<std::string, Place> references;
    // Lines that need not be what their author made them: written before a copy was in step, or on
    // their way when a connection was cut.
    std::set<std::string> unsure;
    // The last number that was given to a value.
    std::uint64_t number = 0;
    // Tells each change on standard output.
    bool isTraced = false;

    void set(std::string const& line, std::string text, unsigned author);
    void trace(unsigned author, std::string const& what) const;
    // The row and all below.
    void eraseRow(std::string const& row);
    // A connection is cut: what the source does not hold yet may get lost.
    void cutAt(Lines const& source);
    // A mount is given back: what is on its way still arrives, and what was to follow it does not.
    void unmountedAt(Lines const& source, bool isSomethingOnItsWay);
    // Whether nothing but its author's word decides about a line that somebody wrote.
    bool isSure(std::string const& line) const;
    // Takes over what the source holds of what others than its author wrote, where that is unsure.
    void adopt(Lines const& source);
    // Those lines that are sure, of rows that one author alone writes.
    Lines sureOf(Lines const& all) const;
};

// Whose entities stand at or above that path: an author's number, or `shared`.
inline constexpr unsigned shared = ~0U;
unsigned ownerOf(std::string const& row);

}  // namespace Sim

#endif
