// What carries the bytes between the two ends of a link, with the room that a script gives: memory,
// or a pair of sockets, whose system calls may fail.
#ifndef TESTS_SIMULATION_CARRIER_H
#define TESTS_SIMULATION_CARRIER_H

#include <qor/attrlog/session/Transport.h>

#include <cstddef>
#include <memory>
#include <utility>

namespace Sim {

class Carrier : public Qor::NboAttrLog::Transport {
  public:
    // Bytes that may wait here for being read.
    virtual void roomIs(std::size_t bytes) = 0;
    // From now on nothing goes over it, either way.
    virtual void cut() = 0;
};

enum class Carried { inMemory, overSockets };

// Two ends of one connection, which must not outlive each other.
using Carriers = std::pair<std::unique_ptr<Carrier>, std::unique_ptr<Carrier>>;
Carriers connected(Carried carried);

}  // namespace Sim

#endif
