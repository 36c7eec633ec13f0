#ifndef VGWCTL_COMMAND_COMMAND_H
#define VGWCTL_COMMAND_COMMAND_H

// The commands, in one table: what runs them, --help, the man page and the completions are made
// from it.

#include <vgwctl/command/Context.h>

#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace Vgwctl {

/// What follows a command's name.
struct Arguments {
    std::vector<std::string> operands;
    std::set<std::string> flags;

    bool has(std::string const& flag) const { return flags.contains(flag); }
};

struct Command {
    /// What an operand is, for completion: P path, A attribute of the path before, C class or path,
    /// T type, O operation, F file, * what stands before it again; anything else nothing known.
    using OperandKinds = std::string_view;

    std::string_view name;
    std::string_view operands;  ///< as in a synopsis
    std::string_view summary;   ///< one line, no full stop
    std::string_view details;   ///< paragraphs, parted by empty lines
    OperandKinds kinds;
    std::size_t least;  ///< operands
    std::size_t most;
    std::vector<std::string_view> flags;
    std::vector<Format> formats;  ///< of what it prints; empty: it prints nothing
    ExitCode (*run)(Context& context, Arguments const& arguments);
};

inline constexpr std::size_t anyNumber = ~std::size_t{0};

std::span<Command const> commands();
/// The names of its formats, with commas between them.
std::string formatNames(Command const& command);

/// A command, and what it is given.
struct Call {
    Command const* command;
    Arguments arguments;

    ExitCode run(Context& context) const { return command->run(context, arguments); }
};

/// The words of one command, understood. Raises Failure for a usage error, one of which is a format
/// in which the command can't print.
Call callOf(std::vector<std::string> const& words, Format format);

}  // namespace Vgwctl

#endif
