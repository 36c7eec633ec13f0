#ifndef VGWCTL_LINK_ATTACHMENT_H
#define VGWCTL_LINK_ATTACHMENT_H

// A copy that is kept in step for as long as the program runs: when its connection ends another is
// made, as often as it takes, and what differs by then is brought up to date.

#include <vgwctl/link/Copy.h>

#include <functional>
#include <optional>
#include <string>

namespace Vgwctl {

class Attachment {
  public:
    /// What is told of connections that end and come, for people.
    using Teller = std::function<void(std::string const&)>;

    Attachment(Target const& target, Copy& copy, Teller tell, ByteTap* tap = nullptr)
        : target_(target), copy_(copy), tell_(std::move(tell)), tap_(tap) {}

    /// Works until something may have changed, or the time is over. The first connection has to be
    /// had: it raises LinkFailure when it is not.
    void step(Deadline const& until);
    /// Whether the copy is in step with the agent, as far as is known.
    bool isConnected() const { return connection_.has_value(); }

  private:
    void connect(Deadline const& until);
    void lose(std::string const& reason);

    Target const& target_;
    Copy& copy_;
    Teller tell_;
    ByteTap* tap_;
    std::optional<Connection> connection_;
    Deadline::Seconds pause_{0};
    std::string lastReason_;
};

/// A teller: on standard error, with the program's name.
void tellPeople(std::string const& what);

}  // namespace Vgwctl

#endif
