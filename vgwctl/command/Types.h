#ifndef VGWCTL_COMMAND_TYPES_H
#define VGWCTL_COMMAND_TYPES_H

// `types` and `describe`: what kinds of things the agent has.

#include <vgwctl/command/Command.h>

namespace Vgwctl {

ExitCode runTypes(Context& context, Arguments const& arguments);
ExitCode runDescribe(Context& context, Arguments const& arguments);

}  // namespace Vgwctl

#endif
