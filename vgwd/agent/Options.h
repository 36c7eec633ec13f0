#ifndef VGWD_AGENT_OPTIONS_H
#define VGWD_AGENT_OPTIONS_H

// What the command line says.

#include <ovsdb/rpc/Remote.h>
#include <ovsdb/rpc/TlsFiles.h>

#include <optional>
#include <string>
#include <vector>

namespace Vgwd {

struct Options {
    std::vector<Ovsdb::Remote> remotes;  ///< empty: a server of our own
    Ovsdb::TlsFiles tls;
    std::string runDirectory = "/run/vgwd";
    std::string schemaFile = "/usr/share/openvswitch/vtep.ovsschema";
    std::string dumpFile;
    std::string logFile;
    std::string logLevel = "info";
    std::string pidFile;
    std::string format = "json";
    double timeout = 0;  ///< seconds; 0: none
    bool once = false;
    bool watch = false;
};

/// Nothing when the program is to end at once; `exitCode` is set then, and what is to be said was
/// said.
std::optional<Options> parseOptions(int count, char const* const* words, int& exitCode);

}  // namespace Vgwd

#endif
