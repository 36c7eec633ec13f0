#ifndef OVSDB_MIRROR_GRAPH_H
#define OVSDB_MIRROR_GRAPH_H

// Who refers to whom among the rows from which MAC references, VNIs and VTEP addresses are
// computed: a MAC row to its logical switch and to its locator or locator set, a set to its
// locators, a tunnel to its remote locator. A node stands for a uuid that is a row or that some row
// names; so rows may come in any order, and what names a row that never comes is no error. Links
// are kept both ways.
//
// A link is taken away in constant time, however many others a node has: each end knows where it
// stands at the other. (Tunnels, of which a locator has few but might have many, are a tree.)
//
// Nodes stay where they are in memory. One that is no row and that nobody names goes with prune().

#include <kelp/EthAddr.h>
#include <kelp/IpAddr.h>
#include <kelp/Vni.h>
#include <ovsdb/mirror/Values.h>
#include <ovsdb/store/RowStore.h>
#include <vgw/tables/OvsdbDataModel.h>
#include <vgw/tables/PhysicalLocator.h>

#include <array>
#include <cstdint>
#include <optional>
#include <set>
#include <unordered_map>
#include <vector>

namespace Ovsdb {

struct MacNode;
struct MacRef;
struct LocatorNode;
struct LocatorSetNode;

struct LogicalSwitchNode {
    explicit LogicalSwitchNode(Uuid const& u) : uuid(u), text(textOf(u)) {}

    Uuid uuid;
    Qor::String8 text;
    std::optional<Vxlan::Vni> vni;
    bool isRow = false;
    bool dirty = false;
    std::vector<MacNode*> users;

    bool unused() const { return !isRow && users.empty(); }
};

// A locator among the members of a set, and the set among the sets of the locator.
struct SetMember {
    LocatorNode* locator = nullptr;
    std::uint32_t setSlot = 0;  // among the locator's sets
};
struct MemberOf {
    LocatorSetNode* set = nullptr;
    std::uint32_t memberSlot = 0;  // among the set's members
};

struct LocatorNode {
    explicit LocatorNode(Uuid const& u) : uuid(u), text(textOf(u)) {}

    Uuid uuid;
    Qor::String8 text;
    std::optional<Kelp::IpAddr> address;
    bool hasKey = false;  // a tunnel_key, of whatever number
    std::optional<Vxlan::Vni> vni;
    Row const* raw = nullptr;
    bool dirty = false;
    bool bfdDirty = false;
    Vgw::PhysicalLocator::Ptr row;
    std::vector<MacNode*> users;
    std::vector<MemberOf> sets;
    std::set<Uuid> tunnels;  // those that end here

    bool unused() const {
        return raw == nullptr && users.empty() && sets.empty() && tunnels.empty();
    }
};

struct LocatorSetNode {
    explicit LocatorSetNode(Uuid const& u) : uuid(u), text(textOf(u)) {}

    Uuid uuid;
    Qor::String8 text;
    bool isRow = false;
    bool dirty = false;
    std::vector<SetMember> members;  // in ascending uuid
    std::vector<MacNode*> users;

    bool unused() const { return !isRow && users.empty(); }
};

// A row of one of the four MAC tables.
struct MacNode {
    explicit MacNode(Uuid const& u) : uuid(u) {}

    Uuid uuid;
    Table table = Table::ucastMacsRemote;
    bool dirty = false;
    std::uint32_t switchSlot = 0;  // where this stands among the users of its switch
    std::uint32_t targetSlot = 0;  // and of its locator or set
    Row const* raw = nullptr;      // null: the row was deleted
    std::optional<Kelp::EthAddr> mac;
    LogicalSwitchNode* logicalSwitch = nullptr;
    LocatorNode* locator = nullptr;   // unicast
    LocatorSetNode* set = nullptr;    // multicast
    MacRef const* ref = nullptr;      // of a unicast row
    std::vector<MacRef const*> refs;  // of a multicast row
    Qor::Ptr<Vgw::OvsdbDataModel> row;

    bool multicast() const {
        return table == Table::mcastMacsLocal || table == Table::mcastMacsRemote;
    }
    bool local() const { return table == Table::ucastMacsLocal || table == Table::mcastMacsLocal; }
};

class Graph {
  public:
    template <class Node>
    using Nodes = std::unordered_map<Uuid, Node, UuidHash>;

    LogicalSwitchNode& logicalSwitch(Uuid const& uuid) { return nodeOf(switches_, uuid); }
    LocatorNode& locator(Uuid const& uuid) { return nodeOf(locators_, uuid); }
    LocatorSetNode& locatorSet(Uuid const& uuid) { return nodeOf(sets_, uuid); }
    MacNode& mac(Table table, Uuid const& uuid);

    Nodes<LocatorNode>& locators() { return locators_; }
    Nodes<LocatorNode> const& locators() const { return locators_; }
    Nodes<MacNode> const& macs(Table table) const { return macs_[macIndex(table)]; }

    /// So many rows of a MAC table are to come.
    void expect(Table table, std::size_t rows) { macs_[macIndex(table)].reserve(rows); }

    /// Makes the links of a MAC row what its raw row says; without one there are none.
    void link(MacNode& node);
    void membersAre(LocatorSetNode& set, std::vector<Uuid> const& members);

    void tunnelIs(Uuid const& locator, Uuid const& tunnel, bool ends);

    /// The node may be of no use any more: the next prune() looks at it.
    void loosen(LogicalSwitchNode const& node) { looseSwitches_.push_back(node.uuid); }
    void loosen(LocatorNode const& node) { looseLocators_.push_back(node.uuid); }
    void loosen(LocatorSetNode const& node) { looseSets_.push_back(node.uuid); }
    void prune();
    void erase(MacNode& node);

  private:
    template <class Node>
    static Node& nodeOf(Nodes<Node>& nodes, Uuid const& uuid) {
        return nodes.try_emplace(uuid, uuid).first->second;
    }
    static std::size_t macIndex(Table table) { return index(table) - index(Table::ucastMacsLocal); }
    void unlink(MacNode& node);
    template <class Node>
    void leave(Node* target, MacNode& node, std::uint32_t MacNode::*slot);

    Nodes<LogicalSwitchNode> switches_;
    Nodes<LocatorNode> locators_;
    Nodes<LocatorSetNode> sets_;
    std::array<Nodes<MacNode>, 4> macs_;
    std::vector<Uuid> looseSwitches_;
    std::vector<Uuid> looseLocators_;
    std::vector<Uuid> looseSets_;
};

}  // namespace Ovsdb

#endif
