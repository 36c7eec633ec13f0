#include <ovsdb/mirror/MacRows.h>

#include <ovsdb/mirror/Values.h>
#include <vgw/tables/McastMacsLocal.h>
#include <vgw/tables/McastMacsRemote.h>
#include <vgw/tables/UcastMacsLocal.h>
#include <vgw/tables/UcastMacsRemote.h>

#include <algorithm>
#include <vector>

namespace Ovsdb {
namespace {

// The switch's key, else the locator's own.
std::optional<Vxlan::Vni> vniAt(MacNode const& node, LocatorNode const& locator) {
    return node.logicalSwitch->vni ? node.logicalSwitch->vni : locator.vni;
}

Kelp::IpAddr ipAddrOf(MacNode const& node) {
    return ipv4Of(node.raw->column(MacColumn::ipaddr)).value_or(Kelp::IpAddr());
}

Kelp::EthAddr macAddrOf(MacNode const& node) {
    return node.multicast() ? static_cast<Vgw::McastMacsLocal const&>(*node.row).macAddr()
                            : static_cast<Vgw::UcastMacsLocal const&>(*node.row).macAddr();
}

Vxlan::Vni vniOfSet(MacNode const& node) {
    for (SetMember const& member : node.set->members)
        if (auto const vni = vniAt(node, *member.locator)) return *vni;
    return {};
}

// In ascending order.
std::vector<Kelp::IpAddr> addressesOf(LocatorSetNode const& set) {
    std::vector<Kelp::IpAddr> addresses;
    for (SetMember const& member : set.members)
        if (member.locator->address) addresses.push_back(*member.locator->address);
    std::sort(addresses.begin(), addresses.end());
    return addresses;
}

void fill(Vgw::UcastMacsRemote& row, MacNode const& node) {
    row.macIs(*node.mac);
    row.logicalSwitchIs(node.logicalSwitch->text);
    row.physicalLocatorIs(node.locator->text);
    row.ipAddrIs(ipAddrOf(node));
}

void fill(Vgw::McastMacsRemote& row, MacNode const& node) {
    row.macIs(*node.mac);
    row.logicalSwitchIs(node.logicalSwitch->text);
    row.physicalLocatorSetIs(node.set->text);
    row.ipAddrIs(ipAddrOf(node));
}

void fill(Vgw::UcastMacsLocal& row, MacNode const& node) {
    row.uuidIs(textOf(node.uuid));
    row.logicalSwitchIs(node.logicalSwitch->text);
    row.vniIs(vniAt(node, *node.locator).value_or(Vxlan::Vni()));
    row.vtepIpIs(node.locator->address.value_or(Kelp::IpAddr()));
}

void fill(Vgw::McastMacsLocal& row, MacNode const& node) {
    row.uuidIs(textOf(node.uuid));
    row.logicalSwitchIs(node.logicalSwitch->text);
    row.physicalLocatorSetIs(node.set->text);
    row.vniIs(vniOfSet(node));
    std::vector<Kelp::IpAddr> const addresses = addressesOf(*node.set);
    for (auto at = row.vtepIpIterator(); at; ++at)
        if (!std::binary_search(addresses.begin(), addresses.end(), at.key())) at.del();
    for (Kelp::IpAddr const address : addresses) row.vtepIpIs(address, true);
}

// Makes the row what the other is.
void adopt(Vgw::UcastMacsLocal& row, Vgw::UcastMacsLocal const& staged) {
    row.uuidIs(staged.uuid());
    row.logicalSwitchIs(staged.logicalSwitch());
    row.vniIs(staged.vni());
    row.vtepIpIs(staged.vtepIp());
}

void adopt(Vgw::McastMacsLocal& row, Vgw::McastMacsLocal const& staged) {
    row.uuidIs(staged.uuid());
    row.logicalSwitchIs(staged.logicalSwitch());
    row.physicalLocatorSetIs(staged.physicalLocatorSet());
    row.vniIs(staged.vni());
    for (auto at = row.vtepIpIterator(); at; ++at)
        if (!staged.vtepIp(at.key())) at.del();
    for (auto at = staged.vtepIpIteratorConst(); at; ++at) row.vtepIpIs(at.key(), at.value());
}

Qor::Ptr<Vgw::OvsdbDataModel> makeRow(MacNode const& node) {
    switch (node.table) {
        case Table::ucastMacsLocal:
            return Qor::make<Vgw::UcastMacsLocal>(*node.mac);
        case Table::mcastMacsLocal:
            return Qor::make<Vgw::McastMacsLocal>(*node.mac);
        case Table::mcastMacsRemote:
            return Vgw::mcastMacsRemoteFactory(textOf(node.uuid));
        default:
            return Vgw::ucastMacsRemoteFactory(textOf(node.uuid));
    }
}

}  // namespace

Qor::Dir& MacDirectories::of(Table table) const {
    switch (table) {
        case Table::ucastMacsLocal:
            return *ucastMacsLocal;
        case Table::mcastMacsLocal:
            return *mcastMacsLocal;
        case Table::mcastMacsRemote:
            return *mcastMacsRemote;
        default:
            return *ucastMacsRemote;
    }
}

void MacRows::recount(MacNode& node, MacRefs& refs) const {
    if (node.ref != nullptr) refs.drop(std::exchange(node.ref, nullptr));
    for (MacRef const* const ref : node.refs) refs.drop(ref);
    node.refs.clear();
    if (node.raw == nullptr || !node.mac) return;
    if (node.locator != nullptr) {
        if (auto const vni = vniAt(node, *node.locator))
            node.ref = refs.take(*node.locator, *node.mac, *vni, false);
        return;
    }
    for (SetMember const& member : node.set->members)
        if (auto const vni = vniAt(node, *member.locator))
            node.refs.push_back(refs.take(*member.locator, *node.mac, *vni, true));
}

void MacRows::remove(MacNode& node) const {
    if (!node.row) return;
    bool const stays =
        node.raw != nullptr && node.mac && !(node.local() && macAddrOf(node) != *node.mac);
    if (stays) return;
    directories_.of(node.table).entryDel(textOf(node.uuid));
    node.row = nullptr;
}

void MacRows::restore(MacNode& node) const {
    if (node.raw == nullptr || !node.mac) return;
    if (node.row) show(node);
    write(node);
}

void MacRows::show(MacNode const& node) const {
    bool const isHidden =
        overlay_ != nullptr && node.local() && overlay_->hides(node.table, node.uuid);
    if (!isHidden) directories_.of(node.table).entryIs(textOf(node.uuid), node.row);
}

template <class X>
void MacRows::writeLocal(MacNode const& node) const {
    X& row = static_cast<X&>(*node.row);
    if (overlay_ == nullptr || !overlay_->covers(node.table, node.uuid)) return fill(row, node);
    auto const staged = Qor::make<X>(*node.mac);
    fill(*staged, node);
    overlay_->put(node.table, node.uuid, *staged);
    adopt(row, *staged);
}

void MacRows::write(MacNode& node) const {
    if (!node.mac) return;
    if (!node.row) {
        node.row = makeRow(node);
        show(node);
    }
    switch (node.table) {
        case Table::ucastMacsLocal:
            return writeLocal<Vgw::UcastMacsLocal>(node);
        case Table::mcastMacsLocal:
            return writeLocal<Vgw::McastMacsLocal>(node);
        case Table::mcastMacsRemote:
            return fill(static_cast<Vgw::McastMacsRemote&>(*node.row), node);
        default:
            return fill(static_cast<Vgw::UcastMacsRemote&>(*node.row), node);
    }
}

}  // namespace Ovsdb
