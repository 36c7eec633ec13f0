#ifndef VGWD_AGENT_REPORT_H
#define VGWD_AGENT_REPORT_H

// The agent's state as text, and files that are written whole.

#include <ovsdb/mirror/Mirror.h>
#include <vgw/agent/Status.h>

#include <string>

namespace Vgwd {

/// What --once prints: "json" is the mirror alone, "tree" has what the agent says of itself too.
std::string reportOf(std::string const& format, Vgw::Status const& status,
                     Ovsdb::Mirror const& mirror);

/// Writes aside first, so that whoever reads the file finds one whole text or another. Raises
/// std::runtime_error, which names the file.
void writeWhole(std::string const& file, std::string const& text);

}  // namespace Vgwd

#endif
