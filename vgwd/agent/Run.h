#ifndef VGWD_AGENT_RUN_H
#define VGWD_AGENT_RUN_H

// The agent as a process: from its options to its exit code.

#include <vgwd/agent/Options.h>

namespace Vgwd {

// Runs until a signal, or until what --once asks for is printed. What ends it early is logged.
// Throws std::exception where the log itself can't be opened.
int runAgent(Options const& options);

}  // namespace Vgwd

#endif
