#ifndef VGWCTL_OPTIONS_OPTIONS_H
#define VGWCTL_OPTIONS_OPTIONS_H

// What the command line says: the options in front of the first command, and the commands, parted
// by "--".

#include <vgwctl/output/Table.h>

#include <ovsdb/remote/TlsFiles.h>

#include <optional>
#include <string>
#include <vector>

namespace Vgwctl {

struct Options {
    std::string db = "unix:/run/vgwd/vgwd.sock";
    std::string path = "/vgw";  ///< what is mounted
    Ovsdb::TlsFiles tls;
    TableStyle style;
    bool hasTimestamp = false;
    double timeout = 0;  ///< seconds; 0: none
    double probe = 10;   ///< seconds; 0: never
    std::string color = "auto";

    /// Each a command's name and what follows it.
    std::vector<std::vector<std::string>> commands;
};

/// Nothing when the program is to end at once; `exitCode` is set then, and what is to be said was
/// said. `help` stands behind the options in what --help prints.
std::optional<Options> parseOptions(int count, char const* const* words, std::string const& help,
                                    int& exitCode);

/// The head of the man page, and its section of options.
std::string manualHead();
std::string manualOptions();

/// Whether what is written to standard output may have colours.
bool hasColor(Options const& options);

}  // namespace Vgwctl

#endif
