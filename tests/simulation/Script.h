// One run of the simulation: a seed decides the topology, who writes, what is written, the order in
// which processes run, the room on the links, cuts and reconnections. Then all is let through, and
// every copy has to equal its source and the plan.
#ifndef TESTS_SIMULATION_SCRIPT_H
#define TESTS_SIMULATION_SCRIPT_H

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace Sim {

struct Volumes {
    std::uint64_t steps = 0;
    std::uint64_t changes = 0;
    std::uint64_t cuts = 0;
    std::uint64_t crashes = 0;
    std::uint64_t returns = 0;  // of processes that make trees, as they were or with nothing
    std::uint64_t remounts = 0;
    std::uint64_t bytes = 0;
    std::uint64_t described = 0;  // processes that know the classes by their descriptions alone
    std::uint64_t learnings = 0;  // mounts that were made again for a class that was met late
};

struct Outcome {
    std::string topology;
    // What went wrong, and where; empty if nothing did.
    std::string violation;
    // Of everything that happened: the same seed has the same digest.
    std::uint64_t digest = 0;
    Volumes volumes;
    // Why connections ended that the script did not cut.
    std::vector<std::string> losses;
};

struct Request {
    std::uint64_t seed = 1;
    unsigned steps = 0;       // 0: the seed decides
    bool rivals = false;      // several authors write the same values
    bool remounts = false;    // mounts are given back and made again while the connection stays
    bool ties = false;        // collections have keys that tie
    bool compiled = false;    // no process knows the classes by their descriptions alone
    bool makersStay = false;  // no process that makes a tree ends
    bool late = false;        // some processes learn of a few classes when they meet them
    bool sockets = false;     // connections are pairs of sockets, and may end by themselves
    bool isTraced = false;    // everything that happens on standard output
    // Called when the steps are over, and all is to come to rest.
    std::function<void()> onRest = nullptr;
};

Outcome runScript(Request const& request);

}  // namespace Sim

#endif
