#include <ovsdb/mirror/ReferenceMaps.h>

#include <ovsdb/mirror/Values.h>
#include <ovsdb/store/Datum.h>

namespace Ovsdb {
namespace {

Vgw::PhysicalLocatorKey keyOf(Kelp::IpAddr address) {
    return {Vgw::EncapsulationType::vxlan_over_ipv4, address};
}

}  // namespace

void ReferenceMaps::switchIs(Uuid const& uuid, Row const* before, Row const* after) {
    if (before != nullptr) {
        std::string_view const name = before->column(PhysicalSwitchColumn::name);
        dirtyNames_.emplace(name);
        auto const at = switchNames_.find(name);
        at->second.erase(uuid);
        if (at->second.empty()) switchNames_.erase(at);
        tunnelIpsAre(*before, -1);
    }
    if (after != nullptr) {
        std::string const name(after->column(PhysicalSwitchColumn::name));
        dirtyNames_.insert(name);
        switchNames_[name].insert(uuid);
        tunnelIpsAre(*after, 1);
    }
}

void ReferenceMaps::tunnelIpsAre(Row const& row, int change) {
    for (std::string_view const text : textsOf(row.column(PhysicalSwitchColumn::tunnelIps))) {
        std::optional<Kelp::IpAddr> const address = ipv4Of(text);
        if (!address) continue;
        dirtyAddresses_.insert(*address);
        int& count = localIps_[*address];
        count += change;
        if (count == 0) localIps_.erase(*address);
    }
}

void ReferenceMaps::locatorLeaves(LocatorNode& node) {
    if (!node.address) return;
    dirtyAddresses_.insert(*node.address);
    auto const at = locators_.find(*node.address);
    at->second.erase(&node);
    if (at->second.empty()) locators_.erase(at);
}

void ReferenceMaps::locatorEnters(LocatorNode& node) {
    if (!node.address) return;
    dirtyAddresses_.insert(*node.address);
    locators_[*node.address].insert(&node);
}

LocatorNode* ReferenceMaps::chosen(Kelp::IpAddr address) const {
    auto const at = locators_.find(address);
    if (at == locators_.end()) return nullptr;
    return *at->second.begin();
}

void ReferenceMaps::removeRemoteLocators() {
    for (Kelp::IpAddr const address : dirtyAddresses_)
        if (isLocal(address) || chosen(address) == nullptr)
            database_.remoteLocatorDel(keyOf(address));
}

void ReferenceMaps::removePhysicalLocators() {
    for (Kelp::IpAddr const address : dirtyAddresses_)
        if (chosen(address) == nullptr) database_.physicalLocatorDel(address);
}

void ReferenceMaps::removePhysicalSwitches() {
    for (std::string const& name : dirtyNames_)
        if (!switchNames_.contains(name)) database_.physicalSwitchDel(std::string_view(name));
}

void ReferenceMaps::addPhysicalSwitches() {
    for (std::string const& name : dirtyNames_) {
        auto const at = switchNames_.find(name);
        if (at == switchNames_.end()) continue;
        database_.physicalSwitchIs(std::string_view(name),
                                   database_.physicalSwitchRaw(textOf(*at->second.begin())));
    }
    dirtyNames_.clear();
}

void ReferenceMaps::addPhysicalLocators() {
    for (Kelp::IpAddr const address : dirtyAddresses_)
        if (LocatorNode const* const node = chosen(address))
            database_.physicalLocatorIs(address, node->row);
}

void ReferenceMaps::addRemoteLocators() {
    for (Kelp::IpAddr const address : dirtyAddresses_) {
        LocatorNode const* const node = chosen(address);
        if (node != nullptr && !isLocal(address))
            database_.remoteLocatorIs(keyOf(address), node->row);
    }
    dirtyAddresses_.clear();
}

}  // namespace Ovsdb
