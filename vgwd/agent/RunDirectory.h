#ifndef VGWD_AGENT_RUN_DIRECTORY_H
#define VGWD_AGENT_RUN_DIRECTORY_H

// The folder in which the agent keeps what is its own:
//
//     vtep.db            the database of the server of our own      db.sock      its socket
//     ovsdb-server.log   its log                                    server.ctl   its control socket
//     vgwd.log           our log, unless --log-file names another   server.pid   its process id
//     vtep.db.transient  there while that database is not to persist
//     vgwd.sock          where those connect who mount our tree     vgwd.lock    held while we run
//
// Only the owner may enter it, since whoever can open the sockets can write the database.

#include <ovsdb/client/Log.h>
#include <vgw/agent/Config.h>
#include <vgwd/agent/Options.h>
#include <vgwd/serve/Access.h>
#include <vgwd/serve/FileLock.h>

#include <string>

namespace Vgwd {

/// Makes the folder, with its parents, for the owner alone. One that is there is left as it is;
/// that others may write to it is said. Whether it was made. Raises std::runtime_error, which names
/// the folder.
bool makeRunDirectory(std::string const& directory, Ovsdb::LogSink const& log);
/// Lets members of a group pass through the folder to our socket, of two different groups everyone;
/// what stands there has modes of its own. Not to be told of a folder that others have made.
void letThroughRunDirectory(std::string const& directory, Access const& access);

/// The folder is ours from now on. Raises std::runtime_error when another agent runs in it.
FileLock lockRunDirectory(std::string const& directory);

/// A file of the folder, by its full path.
std::string runFile(std::string const& directory, char const* name);

/// Writes down where things are. What the agent has no part in (files of a server that others run,
/// backups, certificates that were not named) stays empty.
void describeRunDirectory(Vgw::Config& config, Options const& options);

}  // namespace Vgwd

#endif
