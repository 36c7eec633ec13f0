#ifndef VGWCTL_COMMAND_CHANGE_H
#define VGWCTL_COMMAND_CHANGE_H

// `get`, `set`, `create`, `del`, `call`: one entity's attributes, read and changed by name.

#include <vgwctl/command/Command.h>

namespace Vgwctl {

ExitCode runGet(Context& context, Arguments const& arguments);
ExitCode runSet(Context& context, Arguments const& arguments);
ExitCode runCreate(Context& context, Arguments const& arguments);
ExitCode runDel(Context& context, Arguments const& arguments);
ExitCode runCall(Context& context, Arguments const& arguments);

}  // namespace Vgwctl

#endif
