#ifndef VGWD_SERVE_UNIX_SOCKET_H
#define VGWD_SERVE_UNIX_SOCKET_H

// A listening unix socket of the file system, for its owner alone until a group is let in.
//
// A socket that was left over by a process which was killed is removed, but only when that is
// certain: the caller holds the lock under which the path may be used, and nobody accepts
// connections there. Nothing else that stands at the path is ever removed.

#include <sys/types.h>
#include <optional>
#include <string>

namespace Vgwd {

/// Who beside the owner may connect. Without either, nobody.
struct SocketGroups {
    std::optional<gid_t> one;
    bool everyone = false;  ///< whoever it is: who may stay is decided behind
};

/// The listening socket, which does not block. Raises std::runtime_error, which names the path.
/// REQUIRES: the caller holds the path's lock.
int listenUnix(std::string const& path, SocketGroups const& groups);
/// Whether somebody takes connections there, now or when he comes to it. Raises std::runtime_error
/// when that can't be asked.
bool isListening(std::string const& path);

}  // namespace Vgwd

#endif
