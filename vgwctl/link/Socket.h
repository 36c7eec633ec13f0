#ifndef VGWCTL_LINK_SOCKET_H
#define VGWCTL_LINK_SOCKET_H

// Stream sockets that do not block.

#include <vgwctl/link/Deadline.h>

#include <ovsdb/remote/Remote.h>

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <string>
#include <utility>
#include <vector>

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

/// Raises Failure where the path is empty, or too long for a socket's.
sockaddr_un unixAddressOf(std::string const& path);
/// A connection to a remote that is being made. Of a host's addresses the first that answers is
/// taken; one that does not for too long is left when there is another.
///
/// It never waits, but for the host's name: that is looked up when it is made (getaddrinfo(3)), and
/// a resolver that does not answer holds its caller up. Whoever must not be held up names an
/// address.
class Connecting {
  public:
    /// Raises LinkFailure, which names the remote and why, when there is nothing to wait for.
    explicit Connecting(Ovsdb::Remote const& remote);

    /// Whether it is made. Raises LinkFailure when none of the addresses takes it.
    bool step();
    /// What step() waits for, and until when at most.
    pollfd awaited() const { return {socket_.get(), POLLOUT, 0}; }
    Deadline due() const { return limit_; }
    /// REQUIRES: it is made.
    Descriptor take() { return std::move(socket_); }

  private:
    struct Address {
        sockaddr_storage bytes{};
        socklen_t length = 0;
    };

    void addressInc(void const* bytes, std::size_t length);
    void findHost(Ovsdb::Remote const& remote);
    void tryNext();

    std::string const remote_;
    std::vector<Address> addresses_;
    std::size_t next_ = 0;  // of them
    Descriptor socket_;
    Deadline limit_;  // of the present address
    bool isMade_ = false;
    int error_ = 0;  // of the last one
};

/// A connection to the remote. Raises LinkFailure when there is none to be had, Failure when the
/// time is over.
Descriptor connectTo(Ovsdb::Remote const& remote, Deadline const& deadline);
/// Waits until what is awaited has come, or the time is over.
void await(pollfd const& awaited, Deadline const& deadline);

}  // namespace Vgwctl

#endif
