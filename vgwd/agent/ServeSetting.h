#ifndef VGWD_AGENT_SERVE_SETTING_H
#define VGWD_AGENT_SERVE_SETTING_H

// What the command line says of serving the tree, looked up on this machine.

#include <vgwd/agent/Options.h>
#include <vgwd/serve/ServeOptions.h>

namespace Vgwd {

/// Raises std::runtime_error, which names the group that does not exist.
ServeOptions serveOptionsOf(Options const& options);

}  // namespace Vgwd

#endif
