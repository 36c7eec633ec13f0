#ifndef VGWCTL_COMMAND_WATCH_H
#define VGWCTL_COMMAND_WATCH_H

// `watch` and `wait-until`: what follows the agent for longer, over as many connections as it
// takes.

#include <vgwctl/command/Command.h>

namespace Vgwctl {

ExitCode runWatch(Context& context, Arguments const& arguments);
ExitCode runWaitUntil(Context& context, Arguments const& arguments);

}  // namespace Vgwctl

#endif
