#ifndef VGWCTL_COMMAND_COMPLETE_H
#define VGWCTL_COMMAND_COMPLETE_H

// `complete`: what could stand in the place of a word, for the completions of shells. It is not
// told of in --help.

#include <vgwctl/command/Command.h>

namespace Vgwctl {

/// KIND WORD [PATH]: each possible continuation of WORD, one a line; Command::kinds tells what KIND
/// is, and PATH is the operand in front of it.
ExitCode runComplete(Context& context, Arguments const& arguments);

}  // namespace Vgwctl

#endif
