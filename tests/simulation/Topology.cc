#include "Topology.h"

namespace Sim {

namespace {

// In a ring each process's tree goes all the way round to the one before it.
Topology ring(unsigned count) {
    Topology result{"ring of " + std::to_string(count), count, {}, {}, true};
    for (unsigned i = 0; i < count; ++i) result.links.emplace_back(i, (i + 1) % count);
    for (unsigned maker = 0; maker < count; ++maker) {
        Route route{maker, std::vector<unsigned>(count, maker)};
        for (unsigned i = 1; i < count; ++i) {
            route.from[(maker + i) % count] = (maker + i - 1) % count;
        }
        result.trees.push_back(route);
    }
    return result;
}

}  // namespace

std::vector<Topology> const& topologies() {
    static std::vector<Topology> const all{
        {"pair", 2, {{0, 1}}, {{0, {0, 0}}}, false},
        {"pair, both ways", 2, {{0, 1}}, {{0, {0, 0}}, {1, {1, 1}}}, false},
        {"chain of three", 3, {{0, 1}, {1, 2}}, {{0, {0, 0, 1}}}, true},
        {"chain of four", 4, {{0, 1}, {1, 2}, {2, 3}}, {{0, {0, 0, 1, 2}}}, true},
        {"star", 4, {{0, 1}, {0, 2}, {0, 3}}, {{0, {0, 0, 0, 0}}}, false},
        {"fork", 4, {{0, 1}, {1, 2}, {1, 3}}, {{0, {0, 0, 1, 1}}}, true},
        ring(3),
        ring(4),
    };
    return all;
}

}  // namespace Sim
