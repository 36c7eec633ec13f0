#include <ovsdb/mirror/Mirror.h>

#include <ovsdb/mirror/Bfd.h>
#include <ovsdb/mirror/RowWriter.h>
#include <ovsdb/mirror/Values.h>
#include <ovsdb/store/Datum.h>

namespace Ovsdb {
namespace {

Row const* rowOrNull(Row const& row) { return row ? &row : nullptr; }

// Adds the node to the step unless it is in it already.
template <class Node>
void touchOnce(std::vector<Node*>& touched, Node& node, bool Node::*dirty) {
    if (std::exchange(node.*dirty, true)) return;
    touched.push_back(&node);
}

}  // namespace

Mirror::Mirror(RowStore const& store, Vgw::HwVtepOvsdb::Ptr database, MacDirectories directories)
    : store_(store),
      database_(std::move(database)),
      macRows_(std::move(directories)),
      references_(*database_) {}

void Mirror::overlayIs(Overlay const* overlay) {
    overlay_ = overlay;
    macRows_.overlayIs(overlay);
}

void Mirror::touch(MacNode& node) { touchOnce(macs_, node, &MacNode::dirty); }
void Mirror::touch(LocatorNode& node) { touchOnce(locators_, node, &LocatorNode::dirty); }
void Mirror::touch(LocatorSetNode& node) { touchOnce(sets_, node, &LocatorSetNode::dirty); }
void Mirror::touch(LogicalSwitchNode& node) {
    touchOnce(switches_, node, &LogicalSwitchNode::dirty);
}
void Mirror::touchBfd(LocatorNode& node) { touchOnce(bfdLocators_, node, &LocatorNode::bfdDirty); }

void Mirror::planIs(MonitorPlan const& plan) {
    plan_ = plan;
    for (auto& [uuid, node] : graph_.locators()) touchBfd(node);
}

void Mirror::apply(std::vector<RowChange> const& changes) {
    if (graph_.macs(Table::ucastMacsRemote).empty()) {
        // Most of a first copy.
        graph_.expect(Table::ucastMacsRemote, store_.rows(Table::ucastMacsRemote).size());
        refs_.expect(store_.rows(Table::ucastMacsRemote).size());
    }
    for (RowChange const& change : changes) {
        changes_[index(change.table)].push_back(&change);
        digest(change);
    }
    spread();
    for (MacNode* const node : macs_) macRows_.recount(*node, refs_);
    remove();
    add();
    finish();
}

void Mirror::digest(RowChange const& change) {
    switch (change.table) {
        case Table::physicalSwitch:
            return references_.switchIs(change.uuid, rowOrNull(change.before), change.after);
        case Table::logicalSwitch:
            return digestLogicalSwitch(change);
        case Table::physicalLocator:
            return digestLocator(change);
        case Table::tunnel:
            return digestTunnel(change);
        case Table::physicalLocatorSet: {
            LocatorSetNode& node = graph_.locatorSet(change.uuid);
            node.isRow = change.after != nullptr;
            graph_.membersAre(
                node, node.isRow ? uuidsOf(change.after->column(PhysicalLocatorSetColumn::locators))
                                 : std::vector<Uuid>());
            return touch(node);
        }
        case Table::ucastMacsLocal:
        case Table::mcastMacsLocal:
        case Table::ucastMacsRemote:
        case Table::mcastMacsRemote:
            return digestMac(change);
        default:
            return;
    }
}

void Mirror::digestLogicalSwitch(RowChange const& change) {
    LogicalSwitchNode& node = graph_.logicalSwitch(change.uuid);
    node.isRow = change.after != nullptr;
    std::optional<Vxlan::Vni> vni;
    if (node.isRow)
        vni = vniOf(optionalIntegerOf(change.after->column(LogicalSwitchColumn::tunnelKey)));
    bool const changed = node.vni != vni;
    node.vni = vni;
    if (changed || !node.isRow) touch(node);
}

void Mirror::digestLocator(RowChange const& change) {
    LocatorNode& node = graph_.locator(change.uuid);
    references_.locatorLeaves(node);
    node.raw = change.after;
    node.address.reset();
    node.vni.reset();
    node.hasKey = false;
    if (node.raw != nullptr) {
        auto const key = optionalIntegerOf(node.raw->column(PhysicalLocatorColumn::tunnelKey));
        node.address = ipv4Of(node.raw->column(PhysicalLocatorColumn::dstIp));
        node.hasKey = key.has_value();
        node.vni = vniOf(key);
        touchBfd(node);
    }
    references_.locatorEnters(node);
    touch(node);
}

void Mirror::digestTunnel(RowChange const& change) {
    if (change.before) {
        Uuid const old = uuidOf(change.before.column(TunnelColumn::remote));
        graph_.tunnelIs(old, change.uuid, false);
        touchBfd(graph_.locator(old));
    }
    if (change.after != nullptr) {
        Uuid const now = uuidOf(change.after->column(TunnelColumn::remote));
        graph_.tunnelIs(now, change.uuid, true);
        touchBfd(graph_.locator(now));
    }
}

void Mirror::digestMac(RowChange const& change) {
    MacNode& node = graph_.mac(change.table, change.uuid);
    node.raw = change.after;
    node.mac.reset();
    if (node.raw != nullptr) {
        std::string_view const text = node.raw->column(MacColumn::mac);
        node.mac = node.multicast() ? multicastMacOf(text) : macOf(text);
    }
    graph_.link(node);
    touch(node);
}

// What a MAC row shows and gives depends on its switch, its locators, and their keys and addresses.
void Mirror::spread() {
    for (LocatorNode* const node : locators_) {
        for (MemberOf const& use : node->sets) touch(*use.set);
        for (MacNode* const user : node->users) touch(*user);
    }
    for (LocatorSetNode* const node : sets_)
        for (MacNode* const user : node->users) touch(*user);
    for (LogicalSwitchNode* const node : switches_)
        for (MacNode* const user : node->users) touch(*user);
}

void Mirror::finish() {
    for (MacNode* const node : macs_) {
        node->dirty = false;
        if (node->raw == nullptr) graph_.erase(*node);
    }
    for (LocatorNode* const node : locators_) {
        node->dirty = false;
        if (node->raw == nullptr) graph_.loosen(*node);
    }
    for (LocatorNode* const node : bfdLocators_) node->bfdDirty = false;
    for (LocatorSetNode* const node : sets_) {
        node->dirty = false;
        if (!node->isRow) graph_.loosen(*node);
    }
    for (LogicalSwitchNode* const node : switches_) {
        node->dirty = false;
        if (!node->isRow) graph_.loosen(*node);
    }
    for (auto& changes : changes_) changes.clear();
    macs_.clear();
    locators_.clear();
    bfdLocators_.clear();
    sets_.clear();
    switches_.clear();
    graph_.prune();
}

}  // namespace Ovsdb
