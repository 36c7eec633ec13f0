#ifndef VGWCTL_COMMAND_SHOW_H
#define VGWCTL_COMMAND_SHOW_H

// `show` and `tree`: an entity and all that stands below it, indented.

#include <vgwctl/command/Command.h>

namespace Vgwctl {

ExitCode runShow(Context& context, Arguments const& arguments);
ExitCode runTree(Context& context, Arguments const& arguments);

}  // namespace Vgwctl

#endif
