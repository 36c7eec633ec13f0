// What a tree holds, as text: a line for each entity, value, key and reference, under its path.
#ifndef TESTS_SIMULATION_PICTURE_H
#define TESTS_SIMULATION_PICTURE_H

#include "Shape.h"

namespace Sim {

struct Row {
    EntityPtr entity;
    Shape const* shape = nullptr;
};

struct Picture {
    Lines lines;
    std::map<std::string, Row> rows;
};

// The directory at the top of a process's tree.
Picture pictureOf(Row const& top);

// The entities that a row owns, by their paths.
std::vector<std::pair<std::string, Row>> ownedBy(Row const& row, std::string const& path);
// The row at a path of pictureOf(), or an empty one.
Row rowAt(Row const& top, std::string const& path);

// How a line tells a reference.
std::string referenceTo(std::string const& path);
inline constexpr char const* nowhere = "-> nowhere";

// The first difference, shortened; empty if there is none.
std::string difference(Lines const& wanted, Lines const& there);

// The number that a fresh value bears, 0 if it bears none.
std::uint64_t numberIn(std::string const& text);

}  // namespace Sim

#endif
