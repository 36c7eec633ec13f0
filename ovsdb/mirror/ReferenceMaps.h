#ifndef OVSDB_MIRROR_REFERENCE_MAPS_H
#define OVSDB_MIRROR_REFERENCE_MAPS_H

// The container's reference collections, each a function of the rows:
//
//     physicalSwitch    a switch's name -> the switch
//     physicalLocator   every IPv4 address of a locator -> the locator
//     remoteLocator     the same under the locator's key, unless the address is a tunnel_ip of ours
//
// When several rows share a key, a locator without tunnel_key is before one with, then the lowest
// uuid. A step first says which keys may have changed; then what is no longer referred to is
// removed, before its row is, and what is new is entered, after its row was. Keys that only change
// their row are set in place.

#include <kelp/IpAddr.h>
#include <ovsdb/mirror/Graph.h>
#include <vgw/tables/HwVtepOvsdb.h>

#include <map>
#include <set>
#include <string>
#include <tuple>

namespace Ovsdb {

class ReferenceMaps {
  public:
    explicit ReferenceMaps(Vgw::HwVtepOvsdb& database) : database_(database) {}

    // What changed. A null row: the switch is gone. A locator leaves before it changes, and enters
    // after it has.
    void switchIs(Uuid const& uuid, Row const* before, Row const* after);
    void locatorLeaves(LocatorNode& node);
    void locatorEnters(LocatorNode& node);

    // In the order in which the mirror removes and adds.
    void removeRemoteLocators();
    void removePhysicalLocators();
    void removePhysicalSwitches();
    void addPhysicalSwitches();
    void addPhysicalLocators();
    void addRemoteLocators();

  private:
    // The order in which rows of one address are preferred.
    struct Before {
        bool operator()(LocatorNode const* a, LocatorNode const* b) const {
            return std::tie(a->hasKey, a->uuid) < std::tie(b->hasKey, b->uuid);
        }
    };

    void tunnelIpsAre(Row const& row, int change);
    LocatorNode* chosen(Kelp::IpAddr address) const;
    bool isLocal(Kelp::IpAddr address) const { return localIps_.contains(address); }

    Vgw::HwVtepOvsdb& database_;
    std::map<std::string, std::set<Uuid>, std::less<>> switchNames_;
    std::map<Kelp::IpAddr, int> localIps_;  // how many switches have it among their tunnel_ips
    std::map<Kelp::IpAddr, std::set<LocatorNode*, Before>> locators_;
    std::set<std::string, std::less<>> dirtyNames_;
    std::set<Kelp::IpAddr> dirtyAddresses_;
};

}  // namespace Ovsdb

#endif
