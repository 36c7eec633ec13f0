#ifndef VGWCTL_HELP_HELP_TEXT_H
#define VGWCTL_HELP_HELP_TEXT_H

// What is told of the commands, from their one table: for --help, as the man page vgwctl(1), and as
// completions for shells.

#include <string>

namespace Vgwctl {

/// The commands, one a line, and the exit codes.
std::string commandHelp();
/// In the language of man(7).
std::string manPage();
/// For bash: a script that is sourced.
std::string bashCompletion();
/// For zsh: a file of $fpath.
std::string zshCompletion();

}  // namespace Vgwctl

#endif
