#ifndef VGWCTL_LINK_SOCKET_H
#define VGWCTL_LINK_SOCKET_H

// Stream sockets that do not block.

#include <vgwctl/link/Deadline.h>

#include <ovsdb/remote/Remote.h>

#include <sys/un.h>

#include <string>
#include <utility>

namespace Vgwctl {

/// No connection could be had, or it has ended; another may be had later.
class LinkFailure : public Failure {
  public:
    using Failure::Failure;
};

/// Closes what it owns.
class Descriptor {
  public:
    Descriptor() = default;
    explicit Descriptor(int fd) : fd_(fd) {}
    Descriptor(Descriptor&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(fd_, other.fd_);
        return *this;
    }
    ~Descriptor();

    int get() const { return fd_; }

  private:
    int fd_ = -1;
};

/// Raises Failure where the path is too long for a socket's.
sockaddr_un unixAddressOf(std::string const& path);
/// A connection to the remote. Of a host's addresses the first that answers is taken. Raises
/// LinkFailure, which names the remote and why, and Failure when the time is over.
Descriptor connectTo(Ovsdb::Remote const& remote, Deadline const& deadline);
/// Waits until one of `events` (poll(2)) has come, or the time is over.
void await(Descriptor const& descriptor, short events, Deadline const& deadline);

}  // namespace Vgwctl

#endif
