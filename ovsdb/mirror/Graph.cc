#include <ovsdb/mirror/Graph.h>

#include <ovsdb/store/Datum.h>

#include <algorithm>

namespace Ovsdb {
namespace {

void addUser(std::vector<MacNode*>& users, MacNode& node, std::uint32_t MacNode::*slot) {
    node.*slot = static_cast<std::uint32_t>(users.size());
    users.push_back(&node);
}

void dropUser(std::vector<MacNode*>& users, MacNode& node, std::uint32_t MacNode::*slot) {
    users[node.*slot] = users.back();
    users[node.*slot]->*slot = node.*slot;
    users.pop_back();
}

void dropSet(LocatorNode& locator, std::uint32_t slot) {
    MemberOf const moved = locator.sets.back();
    locator.sets[slot] = moved;
    moved.set->members[moved.memberSlot].setSlot = slot;
    locator.sets.pop_back();
}

template <class Node>
void pruneLoose(std::vector<Uuid>& loose, Graph::Nodes<Node>& nodes) {
    for (Uuid const& uuid : loose) {
        auto const at = nodes.find(uuid);
        if (at != nodes.end() && at->second.unused()) nodes.erase(at);
    }
    loose.clear();
}

}  // namespace

MacNode& Graph::mac(Table table, Uuid const& uuid) {
    MacNode& node = nodeOf(macs_[macIndex(table)], uuid);
    node.table = table;
    return node;
}

template <class Node>
void Graph::leave(Node* target, MacNode& node, std::uint32_t MacNode::*slot) {
    if (target == nullptr) return;
    dropUser(target->users, node, slot);
    if (target->users.empty()) loosen(*target);
}

void Graph::unlink(MacNode& node) {
    leave(node.logicalSwitch, node, &MacNode::switchSlot);
    leave(node.locator, node, &MacNode::targetSlot);
    leave(node.set, node, &MacNode::targetSlot);
    node.logicalSwitch = nullptr;
    node.locator = nullptr;
    node.set = nullptr;
}

void Graph::link(MacNode& node) {
    unlink(node);
    if (node.raw == nullptr) return;
    node.logicalSwitch = &logicalSwitch(uuidOf(node.raw->column(MacColumn::logicalSwitch)));
    addUser(node.logicalSwitch->users, node, &MacNode::switchSlot);
    Uuid const target = uuidOf(node.raw->column(MacColumn::locator));
    if (node.multicast()) {
        node.set = &locatorSet(target);
        addUser(node.set->users, node, &MacNode::targetSlot);
    } else {
        node.locator = &locator(target);
        addUser(node.locator->users, node, &MacNode::targetSlot);
    }
}

void Graph::membersAre(LocatorSetNode& set, std::vector<Uuid> const& members) {
    for (SetMember const& member : set.members) {
        dropSet(*member.locator, member.setSlot);
        loosen(*member.locator);
    }
    set.members.clear();
    for (Uuid const& uuid : members) {
        LocatorNode& node = locator(uuid);
        auto const memberSlot = static_cast<std::uint32_t>(set.members.size());
        set.members.push_back({&node, static_cast<std::uint32_t>(node.sets.size())});
        node.sets.push_back({&set, memberSlot});
    }
}

void Graph::tunnelIs(Uuid const& locatorUuid, Uuid const& tunnel, bool ends) {
    LocatorNode& node = locator(locatorUuid);
    if (ends) {
        node.tunnels.insert(tunnel);
    } else {
        node.tunnels.erase(tunnel);
        loosen(node);
    }
}

void Graph::prune() {
    pruneLoose(looseSwitches_, switches_);
    pruneLoose(looseSets_, sets_);
    pruneLoose(looseLocators_, locators_);
}

void Graph::erase(MacNode& node) {
    unlink(node);
    macs_[macIndex(node.table)].erase(Uuid(node.uuid));
}

}  // namespace Ovsdb
