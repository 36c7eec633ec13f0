#ifndef VGWCTL_COMMAND_LIST_H
#define VGWCTL_COMMAND_LIST_H

// `list`, `find` and `sessions`: rows as a table, one for each class among them.

#include <vgwctl/command/Command.h>

namespace Vgwctl {

ExitCode runList(Context& context, Arguments const& arguments);
ExitCode runFind(Context& context, Arguments const& arguments);
ExitCode runSessions(Context& context, Arguments const& arguments);

}  // namespace Vgwctl

#endif
