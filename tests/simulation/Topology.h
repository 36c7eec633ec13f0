// What a script runs on: which processes there are, what each is, and who mounts what from whom.
#ifndef TESTS_SIMULATION_TOPOLOGY_H
#define TESTS_SIMULATION_TOPOLOGY_H

#include "Carrier.h"
#include "Knowledge.h"

#include <qor/core/Types.h>

#include <string>
#include <utility>
#include <vector>

namespace Sim {

// Who mounts a tree from whom: for each process the one it mounts from, itself for the maker.
struct Route {
    unsigned maker = 0;
    std::vector<unsigned> from;
};

// What a script runs on.
struct Topology {
    std::string name;
    unsigned processes = 0;
    std::vector<std::pair<unsigned, unsigned>> links;  // accepting, connecting
    std::vector<Route> trees;
    bool hasRelay = false;
};

std::vector<Topology> const& topologies();

// What a process is.
struct Process {
    Knowledge knowledge = Knowledge::compiled;
    bool takesTypes = false;  // on each connection, as one that has not yet
};

struct Settings {
    std::vector<Process> processes;
    bool isWritable = false;  // copies may be written
    bool areRivals = false;   // several authors write the same values
    bool hasCuts = true;
    bool hasLongTexts = true;
    bool holdsEntities = false;
    bool isTraced = false;  // on standard output
    Carried carried = Carried::inMemory;
    Qor::U32 ringBlocks = 8;
};

}  // namespace Sim

#endif
