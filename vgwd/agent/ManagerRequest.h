#ifndef VGWD_AGENT_MANAGER_REQUEST_H
#define VGWD_AGENT_MANAGER_REQUEST_H

// The transactions (RFC 7047 section 4.1.3) that make a database name a manager, or no longer name
// it: what vtep-ctl's set-manager and del-manager do, out of the rows as they are mirrored.
//
// Manager rows live while Global.managers refers to them. To set one makes it the only one; a row
// that has the target already is kept, with whatever else stands in it. To remove one leaves rows
// with other targets alone. Each transaction begins with a wait (timeout 0) for the column as it
// was seen, so that a change that was made meanwhile fails it instead of being lost.

#include <vgw/tables/HwVtepOvsdb.h>

#include <nlohmann/json.hpp>

#include <set>
#include <string>
#include <string_view>

namespace Vgwd {

/// Makes the row of that target the only one. An empty list: it is so already.
nlohmann::json managerSetting(Vgw::HwVtepOvsdb const& database, std::string_view target);
/// Removes the rows of those targets. An empty list: there are none.
nlohmann::json managerRemoval(Vgw::HwVtepOvsdb const& database,
                              std::set<std::string> const& targets);

}  // namespace Vgwd

#endif
