#ifndef VGWCTL_COMMAND_RECORD_H
#define VGWCTL_COMMAND_RECORD_H

// `record`, `replay` and `relay`: the attribute log, stored, played again, and passed on.

#include <vgwctl/command/Command.h>

namespace Vgwctl {

ExitCode runRecord(Context& context, Arguments const& arguments);
ExitCode runReplay(Context& context, Arguments const& arguments);
ExitCode runRelay(Context& context, Arguments const& arguments);

}  // namespace Vgwctl

#endif
