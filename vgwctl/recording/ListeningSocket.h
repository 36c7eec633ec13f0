#ifndef VGWCTL_RECORDING_LISTENING_SOCKET_H
#define VGWCTL_RECORDING_LISTENING_SOCKET_H

// A unix socket that listens at a path of the file system, for its owner alone.
//
// It is removed when it ends, and when the program is ended by SIGINT, SIGTERM or SIGHUP. One that
// was left over by a program that was killed is replaced, when it is certain that nobody listens
// there; nothing else that stands at the path is touched. Whoever takes a path holds the lock of
// its directory (flock(2)) meanwhile, so that of two that come at once one is refused.
//
// There is one at a time. Not thread-safe.

#include <vgwctl/link/Socket.h>
#include <vgwctl/recording/RemovedAtEnd.h>

#include <optional>
#include <string>

namespace Vgwctl {

class ListeningSocket {
  public:
    /// Raises Failure, which names the path and why.
    explicit ListeningSocket(std::string const& path);

    int get() const { return descriptor_.get(); }
    /// The next connection that waits, or none.
    Descriptor accept();

  private:
    Descriptor descriptor_;
    std::optional<RemovedAtEnd> removed_;
};

}  // namespace Vgwctl

#endif
