#ifndef VGWCTL_COMMAND_CONTEXT_H
#define VGWCTL_COMMAND_CONTEXT_H

// What commands work with: the options, the connection, which is made when it is first needed, and
// the copy of the agent's tree. Commands that are chained share them.

#include <vgwctl/link/Connection.h>
#include <vgwctl/link/Copy.h>
#include <vgwctl/options/Options.h>

#include <iosfwd>
#include <optional>

namespace Vgwctl {

class Context {
  public:
    Context(Options const& options, std::ostream& out);

    Options const& options() const { return options_; }
    std::ostream& out() { return out_; }
    Deadline const& deadline() const { return deadline_; }
    Target const& target() const { return target_; }
    /// Another one. Raises Failure for what is no remote.
    Target targetAt(std::string const& remote) const;
    /// How long an agent that is followed may say nothing before it is asked whether it is there.
    Deadline::Seconds patience() const { return Deadline::Seconds(options_.probe); }

    /// What stands at --path, with all below it, read-only.
    Qor::Entity& root();
    /// The entity at `path`, to be changed: another copy than that in root(), on a connection of
    /// its own. Raises Failure when the agent does not allow it.
    Qor::Entity::Ptr writable(std::string const& path);
    /// The connection of root().
    /// REQUIRES: root() was asked for.
    Connection& reading() { return *reading_; }
    /// A connection on which nothing is mounted.
    Connection& calling();
    /// Waits until the agent has taken what was changed since the last time, and root() shows it.
    void finish();

  private:
    Options const& options_;
    std::ostream& out_;
    Deadline const deadline_;
    Target const target_;
    Copy copy_;
    std::optional<Connection> reading_;
    std::optional<Connection> writing_;
};

}  // namespace Vgwctl

#endif
