#include <vgwctl/command/Change.h>
#include <vgwctl/command/Command.h>
#include <vgwctl/command/Complete.h>
#include <vgwctl/command/Diff.h>
#include <vgwctl/command/List.h>
#include <vgwctl/command/Record.h>
#include <vgwctl/command/Show.h>
#include <vgwctl/command/Types.h>
#include <vgwctl/command/Verify.h>
#include <vgwctl/command/Watch.h>

#include <algorithm>

namespace Vgwctl {
namespace {

std::vector<Format> const allFormats{Format::table, Format::list, Format::json, Format::csv};
std::vector<Format> const treeFormats{Format::table, Format::json};
std::vector<Format> const valueFormats{Format::table, Format::json};
std::vector<Format> const streamFormats{Format::table, Format::json, Format::csv};

// In the order in which they are told of.
std::vector<Command> const table{
    {"show",
     "[PATH]",
     "print an entity and all below it, with its values",
     "Empty texts, empty collections and references to nothing are left out, except with "
     "--format=json.",
     "P",
     0,
     1,
     {},
     treeFormats,
     runShow},
    {"tree",
     "[PATH]",
     "print the paths and classes of an entity and all below it",
     "",
     "P",
     0,
     1,
     {},
     treeFormats,
     runTree},
    {"list",
     "ROWS [NAME]...",
     "print rows as a table",
     "ROWS is the path of a collection or directory, or a class: Vgw::LogicalSwitch, "
     "LogicalSwitch or logical_switch means all its entities. NAME is a row's name, the last part "
     "of its path, or its path.",
     "C",
     1,
     anyNumber,
     {},
     allFormats,
     runList},
    {"find",
     "ROWS [CONDITION]...",
     "print the rows for which all conditions hold",
     "A CONDITION is ATTRIBUTE[:KEY]=VALUE, or with !=, <, <=, > or >= in the place of =. Where a "
     "collection has no member KEY, it does not hold.",
     "C",
     1,
     anyNumber,
     {},
     allFormats,
     runFind},
    {"get",
     "PATH [ATTRIBUTE[:KEY]]...",
     "print values, one a line",
     "Without an ATTRIBUTE it only finds out whether PATH exists: code 2 if not.",
     "PA*",
     1,
     anyNumber,
     {"--if-exists"},
     valueFormats,
     runGet},
    {"set",
     "PATH ATTRIBUTE[:KEY]=VALUE...",
     "change values of one entity",
     "All are understood before the first is changed. The agent has taken them when vgwctl ends. "
     "What it refuses, by its database, is undone and told in /vgw/database.",
     "PA*",
     2,
     anyNumber,
     {},
     {},
     runSet},
    {"create",
     "PATH [CLASS [ARGUMENT]...] [ATTRIBUTE[:KEY]=VALUE]...",
     "make an entity where PATH says",
     "In a directory PATH is DIRECTORY/NAME, and CLASS and the arguments of its constructor are "
     "needed; elsewhere it is OWNER/ATTRIBUTE/NAME.",
     "P",
     1,
     anyNumber,
     {"--may-exist"},
     {},
     runCreate},
    {"del",
     "PATH [ATTRIBUTE:KEY]...",
     "remove an entity, or members of its collections",
     "With --if-exists what is not there is no error.",
     "PA*",
     1,
     anyNumber,
     {"--if-exists"},
     {},
     runDel},
    {"call",
     "PATH OPERATION [ARGUMENT]...",
     "call an operation, at the agent, and print its result",
     "Arguments that are entities are told by their paths. What may be called the agent decides.",
     "PO",
     2,
     anyNumber,
     {},
     valueFormats,
     runCall},
    {"watch",
     "[PATH|CLASS] [ATTRIBUTE|!initial|!insert|!delete|!modify]...",
     "print each change as it comes, until it is ended",
     "The words may be parted by commas too. What begins with ! is left out; attributes, if any "
     "are "
     "named, are shown alone. When the connection ends another is made, for ever, and what differs "
     "then is printed. So it is when an agent on another machine says nothing for --probe seconds "
     "and for as long again after it was asked whether it is there; of one on this machine that is "
     "told, and it is waited for. With --format=json each line is an object.",
     "CA*",
     0,
     anyNumber,
     {},
     streamFormats,
     runWatch},
    {"wait-until",
     "PATH [CONDITION]...",
     "wait until the entity exists and all conditions hold",
     "With --timeout it ends with code 3 if that does not come.",
     "PA*",
     1,
     anyNumber,
     {},
     {},
     runWaitUntil},
    {"types",
     "[PATTERN]",
     "print the types that are known",
     "PATTERN may have * and ? in it.",
     "",
     0,
     1,
     {},
     allFormats,
     runTypes},
    {"describe",
     "TYPE",
     "print the attributes and operations of a type",
     "",
     "T",
     1,
     1,
     {},
     allFormats,
     runDescribe},
    {"record",
     "FILE",
     "store the attribute log as it comes, until it is ended",
     "FILE must not exist. What stood at --path when it began is stored first, then each change; "
     "when the connection ends, or the agent falls silent, it is as with watch. With --timeout it "
     "ends by then, with code 0.",
     "F",
     1,
     1,
     {},
     {},
     runRecord},
    {"replay",
     "FILE SOCKET [SPEED]",
     "serve a recording to readers",
     "SOCKET is the path of a unix socket that is made for its owner alone; vgwctl "
     "--db=unix:SOCKET reads from it. SPEED is 1, as fast as it was recorded, unless told "
     "otherwise; 0 plays it at once. At its end the last state goes on being served.",
     "FF",
     2,
     3,
     {},
     {},
     runReplay},
    {"diff",
     "BEFORE AFTER",
     "print what differs between two states",
     "Each is the file of a recording, whose last state is meant, or the remote of an agent. Of "
     "both what stands at --path is compared, or what was recorded if that is less: "
     "--path=/vgw/status leaves out who reads. Lines with - stand in BEFORE alone, lines with + in "
     "AFTER alone; the other formats have a row for each attribute, and for each entity that "
     "stands "
     "on one side, whose value is its class. Code 4 if there are any.",
     "FF",
     2,
     2,
     {},
     allFormats,
     runDiff},
    {"relay",
     "SOCKET",
     "serve the agent's state on to readers of one's own",
     "As replay does, but live: a reader of the relay has what the agent has, a moment later. When "
     "the agent is away, or silent (see watch), the relay's readers keep what there was. They may "
     "not "
     "write.",
     "F",
     1,
     1,
     {},
     {},
     runRelay},
    {"verify",
     "[PATH]",
     "compare the copy with the agent, while both go on",
     "A digest of each collection is taken at both ends, at the same place in the stream of "
     "changes. "
     "Of what is not the same the first rows that differ are printed. Code 4 if there are any.",
     "P",
     0,
     1,
     {},
     allFormats,
     runVerify},
    {"sessions",
     "",
     "print who reads from the agent, and how far behind",
     "",
     "",
     0,
     0,
     {},
     allFormats,
     runSessions},
};

Command const complete{"complete", "KIND WORD [PATH]", "", "", "", 1, 3, {}, {}, runComplete};

Command const& neededCommand(std::string const& name) {
    if (name == complete.name) return complete;
    auto const found = std::find_if(table.begin(), table.end(),
                                    [&](Command const& one) { return one.name == name; });
    if (found == table.end()) throw Failure("there is no command " + name + "; see --help");
    return *found;
}

// In front of a command they are understood before it is.
bool isOptionOfProgram(std::string const& word) {
    return word.size() == 2 && word[0] == '-' &&
           std::string_view("dfptcChV").find(word[1]) != std::string_view::npos;
}

bool isOptionOfACommand(std::string const& word) {
    return std::any_of(table.begin(), table.end(), [&](Command const& one) {
        return std::find(one.flags.begin(), one.flags.end(), word) != one.flags.end();
    });
}

Failure noOption(std::string const& command, std::string const& word) {
    std::string const hint =
        "; see --help for those of vgwctl, which stand in front of the first command";
    return Failure(command + " has no option " + word + (isOptionOfACommand(word) ? "" : hint));
}

// As with the OVSDB tools, a command's options may stand in front of it.
std::pair<std::string, Arguments> parted(std::vector<std::string> const& words) {
    Arguments arguments;
    std::string name;
    for (std::string const& word : words) {
        if (word.starts_with("--")) {
            arguments.flags.insert(word);
        } else if (name.empty()) {
            name = word;
        } else {
            arguments.operands.push_back(word);
        }
    }
    if (name.empty()) throw Failure("expected a command behind " + words[0]);
    return {std::move(name), std::move(arguments)};
}

void needFormat(Command const& command, Format format) {
    auto const& formats = command.formats;
    if (formats.empty() || std::find(formats.begin(), formats.end(), format) != formats.end())
        return;
    throw Failure(std::string(command.name) + " has no format " + std::string(nameOf(format)) +
                  "; it has " + formatNames(command));
}

}  // namespace

std::span<Command const> commands() { return table; }

std::string formatNames(Command const& command) {
    std::string names;
    for (Format const format : command.formats)
        names += (names.empty() ? "" : ", ") + std::string(nameOf(format));
    return names;
}

Call callOf(std::vector<std::string> const& words, Format format) {
    auto [name, arguments] = parted(words);
    Command const& command = neededCommand(name);
    for (std::string const& flag : arguments.flags)
        if (std::find(command.flags.begin(), command.flags.end(), flag) == command.flags.end())
            throw noOption(name, flag);
    for (std::string const& word : arguments.operands)
        if (isOptionOfProgram(word)) throw noOption(name, word);
    std::size_t const count = arguments.operands.size();
    if (count < command.least || count > command.most)
        throw Failure("usage: vgwctl " + name + " " + std::string(command.operands));
    needFormat(command, format);
    return {&command, std::move(arguments)};
}

}  // namespace Vgwctl
