#ifndef VGWCTL_COMMAND_VERIFY_H
#define VGWCTL_COMMAND_VERIFY_H

// `verify`: whether the copy is what the agent holds, while both go on.

#include <vgwctl/command/Command.h>

namespace Vgwctl {

ExitCode runVerify(Context& context, Arguments const& arguments);

}  // namespace Vgwctl

#endif
