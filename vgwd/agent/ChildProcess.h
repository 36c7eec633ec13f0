#ifndef VGWD_AGENT_CHILD_PROCESS_H
#define VGWD_AGENT_CHILD_PROCESS_H

// Programs that we start.

#include <sys/types.h>
#include <string>
#include <vector>

namespace Vgwd {

/// The full path of a program, looked for where the program `companion` is (unless that is empty)
/// and in the bin and sbin beside it, in PATH, and in the folders of system programs; raises
/// std::runtime_error when there is none.
std::string findProgram(std::string const& name, std::string const& companion);
/// Starts a program that gets SIGTERM when we end, however we end. Its standard input and output
/// are /dev/null, standard error is ours, and nothing else of ours is open in it.
pid_t startProgram(std::vector<std::string> const& words);
/// Waits for its end; its exit code, or 128 and the signal that ended it.
int awaitProgram(pid_t process);

}  // namespace Vgwd

#endif
