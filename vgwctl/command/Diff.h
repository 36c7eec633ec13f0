#ifndef VGWCTL_COMMAND_DIFF_H
#define VGWCTL_COMMAND_DIFF_H

// `diff`: two states, each of an agent or of a recording, beside each other.

#include <vgwctl/command/Command.h>

namespace Vgwctl {

ExitCode runDiff(Context& context, Arguments const& arguments);

}  // namespace Vgwctl

#endif
