#ifndef OVSDB_MIRROR_MAC_REFS_H
#define OVSDB_MIRROR_MAC_REFS_H

// How many MAC rows give each pair of address and VNI at each locator. Several rows may give the
// same pair; the locator's row has it from the first to the last of them. A step of the mirror
// takes and drops references as it likes, and afterwards only what really came or went is told to
// the rows.

#include <kelp/EthAddr.h>
#include <kelp/Vni.h>
#include <ovsdb/mirror/Graph.h>

#include <cstdint>
#include <unordered_set>
#include <vector>

namespace Ovsdb {

struct MacRef {
    LocatorNode* locator = nullptr;
    Kelp::EthAddr mac;
    Vxlan::Vni vni;
    bool multicast = false;
    // What follows is no part of the key.
    mutable bool touched = false;
    mutable std::uint32_t count = 0;
    mutable std::uint32_t before = 0;  // at the beginning of the step

    bool operator==(MacRef const& other) const {
        return locator == other.locator && mac == other.mac && vni == other.vni &&
               multicast == other.multicast;
    }
};

class MacRefs {
  public:
    /// So many pairs are to come.
    void expect(std::size_t pairs) { refs_.reserve(pairs); }
    /// One more row gives the pair. What comes back is good until it is dropped as often as taken
    /// and the step ended.
    MacRef const* take(LocatorNode& locator, Kelp::EthAddr const& mac, Vxlan::Vni vni,
                       bool multicast);
    void drop(MacRef const* ref);

    /// Removes the pairs that no row gives any more.
    void tellGone();
    /// Adds the pairs that are given now, and ends the step.
    void tellPresent();

  private:
    struct Hash {
        std::size_t operator()(MacRef const& ref) const;
    };

    void touch(MacRef const& ref);

    std::unordered_set<MacRef, Hash> refs_;
    std::vector<MacRef const*> touched_;
};

}  // namespace Ovsdb

#endif
