#ifndef OVSDB_MIRROR_BFD_H
#define OVSDB_MIRROR_BFD_H

// Where a locator's BFD state comes from: columns of its own row (schema up to 1.2.0), else the
// tunnels that end in it (1.3.0 and later). Tunnels that agree give the locator their maps; tunnels
// that don't give none, and the attribute is marked. So it is where a key is longer than the
// attribute log takes: that key is left out.

#include <ovsdb/mirror/Graph.h>
#include <ovsdb/schema/MonitorPlan.h>

#include <string>
#include <string_view>

namespace Ovsdb {

struct BfdMap {
    std::string_view datum;  // map of string to string, in the store
    bool isLost = false;     // all of it, as tunnels disagree, or some keys
};

/// The maps for `bfd` and for `bfdStatus`. REQUIRES: the locator is a row.
BfdMap bfdOf(LocatorNode const& locator, MonitorPlan const& plan, RowStore const& store);
BfdMap bfdStatusOf(LocatorNode const& locator, MonitorPlan const& plan, RowStore const& store);

/// Brings both attributes of the locator's row up to date.
void writeBfd(LocatorNode const& locator, MonitorPlan const& plan, RowStore const& store);

}  // namespace Ovsdb

#endif
