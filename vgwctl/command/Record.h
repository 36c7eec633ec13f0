#ifndef VGWCTL_COMMAND_RECORD_H
#define VGWCTL_COMMAND_RECORD_H

// `record`, `replay` and `diff`: the attribute log, stored and played again.

#include <vgwctl/command/Command.h>

namespace Vgwctl {

ExitCode runRecord(Context& context, Arguments const& arguments);
ExitCode runReplay(Context& context, Arguments const& arguments);
ExitCode runDiff(Context& context, Arguments const& arguments);

}  // namespace Vgwctl

#endif
