#ifndef VGWCTL_LINK_ATTACHMENT_H
#define VGWCTL_LINK_ATTACHMENT_H

// A copy that is kept in step for as long as the program runs: when its connection ends another is
// made, as often as it takes, and what differs by then is brought up to date.
//
// All of that is done in steps, none of which waits longer than it is told, whatever the agent does
// or leaves undone; but for the look-up of a host's name (see Connecting).
//
// An agent that says nothing is asked whether it is there. If it does not answer either, that is
// told. Over a network the connection is then given up for another; on this machine the agent can
// only be stopped or busy, and no other connection would help.

#include <vgwctl/link/Copy.h>
#include <vgwctl/link/MountProgress.h>
#include <vgwctl/link/Silence.h>

#include <poll.h>

#include <functional>
#include <optional>
#include <string>

namespace Vgwctl {

class Attachment {
  public:
    /// What is told of connections that end and come, for people.
    using Teller = std::function<void(std::string const&)>;

    /// An agent that says nothing for so long is asked; `patience` 0: it never is.
    Attachment(Target const& target, Copy& copy, Teller tell, Deadline::Seconds patience,
               ByteTap* tap = nullptr)
        : target_(target), copy_(copy), tell_(std::move(tell)), silence_(patience), tap_(tap) {}

    /// Waits until the first connection is made and the copy in step. Raises LinkFailure when there
    /// is none to be had, Failure when the agent refuses or the time is over.
    void begin(Deadline const& deadline);
    /// Works until something may have changed, waiting no longer than told.
    /// REQUIRES: begin() has ended well.
    void step(Deadline const& until);
    /// What step() would wait for, for poll(2), and when it is to be called though nothing came.
    pollfd awaited() const;
    Deadline due() const;
    /// Whether the copy is in step with the agent, as far as is known. While it is not, a part of
    /// what differs may be in it already.
    bool isConnected() const { return isInStep_; }

  private:
    void advance(Deadline const& until);
    void connect(Deadline const& until);
    void look();
    void handleSilence();
    void tell(std::string const& what);
    bool isTimeToConnect(Deadline const& until);
    void settle();
    void lose(std::string const& reason);

    Target const& target_;
    Copy& copy_;
    Teller tell_;
    Silence silence_;
    ByteTap* tap_;
    std::optional<Connecting> connecting_;  // at most one of both
    std::optional<Connection> connection_;
    std::optional<MountProgress> progress_;  // while it is not in step
    bool isInStep_ = false;
    bool hasBegun_ = false;
    Deadline::Seconds pause_{0};  // between attempts
    Deadline next_;               // the next one
    std::string lastReason_;
};

/// A teller: on standard error, with the program's name.
void tellPeople(std::string const& what);

}  // namespace Vgwctl

#endif
