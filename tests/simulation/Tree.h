// A tree as it stands in all processes, with who writes to it and who watches it.
#ifndef TESTS_SIMULATION_TREE_H
#define TESTS_SIMULATION_TREE_H

#include "Author.h"
#include "Topology.h"
#include "Watch.h"

namespace Sim {

// One tree in all processes.
struct Tree {
    Route route;
    Plan plan;
    std::vector<Qor::Dir::Ptr> tops;  // by process
    std::vector<Shape const*> dirs;   // by process
    std::vector<Author> authors;      // by process, the maker's number is 0
    std::vector<Watch> watches;
    std::vector<bool> inStep;  // has had all that the maker had, since the last cut on the way
    std::vector<bool> astray;  // may hold what somebody who came back knows no more, or lack it
    Qor::Dir::Ptr kept;        // what the maker comes back with; null: nothing
    std::string path;
    Row top(unsigned process) const { return {EntityPtr(tops[process]), dirs[process]}; }
    Row keptTop() const { return {EntityPtr(kept), dirs[route.maker]}; }
};

}  // namespace Sim

#endif
