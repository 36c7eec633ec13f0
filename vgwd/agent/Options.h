#ifndef VGWD_AGENT_OPTIONS_H
#define VGWD_AGENT_OPTIONS_H

// What the command line says.

#include <ovsdb/remote/Remote.h>
#include <ovsdb/remote/TlsFiles.h>
#include <vgw/values/OvsdbLogLevel.h>
#include <vgwd/serve/ListenAddress.h>

#include <optional>
#include <string>
#include <vector>

namespace Vgwd {

struct Options {
    std::vector<Ovsdb::Remote> remotes;  ///< empty: a server of our own
    std::vector<ListenAddress> listen;   ///< empty: vgwd.sock in the run directory
    bool serves = true;                  ///< the tree, to others
    std::string readGroup;               ///< empty: none
    std::string writeGroup;              ///< the same
    bool tcpReads = false;
    std::vector<std::string> writerNames;  ///< common names of certificates
    double peerTimeout = 60;               ///< seconds; 0: none
    Ovsdb::TlsFiles tls;
    std::string runDirectory = "/run/vgwd";
    std::string schemaFile = "/usr/share/openvswitch/vtep.ovsschema";
    std::string serverProgram;  ///< of the server of our own; empty: ovsdb-server is looked for
    std::string dumpFile;
    std::string logFile;  ///< empty: vgwd.log in the run directory, when a level asks for it
    Vgw::OvsdbLogLevel logConsole = Vgw::OvsdbLogLevel::information;
    Vgw::OvsdbLogLevel logSyslog = Vgw::OvsdbLogLevel::disabled;
    std::optional<Vgw::OvsdbLogLevel> logFileLevel;  ///< none: as the console, if there is a file
    std::string pidFile;
    std::string format = "json";
    double timeout = 0;  ///< seconds; 0: none
    bool once = false;
    bool watch = false;
    bool disabled = false;

    Vgw::OvsdbLogLevel fileLevel() const {
        return logFileLevel.value_or(logFile.empty() ? Vgw::OvsdbLogLevel::disabled : logConsole);
    }
};

/// Nothing when the program is to end at once; `exitCode` is set then, and what is to be said was
/// said.
std::optional<Options> parseOptions(int count, char const* const* words, int& exitCode);

}  // namespace Vgwd

#endif
