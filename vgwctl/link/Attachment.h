#ifndef VGWCTL_LINK_ATTACHMENT_H
#define VGWCTL_LINK_ATTACHMENT_H

// A copy that is kept in step for as long as the program runs: when its connection ends another is
// made, as often as it takes, and what differs by then is brought up to date.

#include <vgwctl/link/Copy.h>

#include <poll.h>

#include <functional>
#include <optional>
#include <string>

namespace Vgwctl {

class Attachment {
  public:
    /// What is told of connections that end and come, for people.
    using Teller = std::function<void(std::string const&)>;

    /// All of it has to be done by `deadline`.
    Attachment(Target const& target, Copy& copy, Teller tell, Deadline const& deadline,
               ByteTap* tap = nullptr)
        : target_(target), copy_(copy), tell_(std::move(tell)), deadline_(deadline), tap_(tap) {}

    /// Works until something may have changed, waiting no longer than told. The first connection
    /// has to be had: it raises LinkFailure when it is not. Raises Failure when all of the time is
    /// over.
    void step(Deadline const& until);
    /// What step() would wait for, for poll(2); of a connection that is not there nothing ever
    /// comes, and step() is to be called again after pause().
    pollfd awaited() const;
    Deadline::Seconds pause() const { return pause_; }
    /// Whether the copy is in step with the agent, as far as is known.
    bool isConnected() const { return connection_.has_value(); }

  private:
    bool isTimeToConnect(Deadline const& until);
    void connect();
    void lose(std::string const& reason);

    Target const& target_;
    Copy& copy_;
    Teller tell_;
    Deadline const deadline_;
    ByteTap* tap_;
    std::optional<Connection> connection_;
    Deadline::Seconds pause_{0};  // between attempts
    Deadline next_;               // the next one
    std::string lastReason_;
};

/// A teller: on standard error, with the program's name.
void tellPeople(std::string const& what);

}  // namespace Vgwctl

#endif
