#ifndef VGWCTL_LINK_COPY_H
#define VGWCTL_LINK_COPY_H

// The copy of a part of an agent's tree. It outlives connections: mounted on another, it is brought
// up to date, and what did not change stays and tells nobody.
//
// It stands at the same path as at the agent, so that paths and references read the same. It is the
// process's root while it lives: there is one at a time.

#include <vgwctl/link/Connection.h>

#include <qor/tree/Dir.h>

#include <string>

namespace Vgwctl {

class Copy {
  public:
    /// Raises Failure for what is no path.
    explicit Copy(std::string path);
    ~Copy();
    Copy(Copy const&) = delete;
    Copy& operator=(Copy const&) = delete;

    void mountOn(Connection& connection, Deadline const& deadline);
    /// The same without the wait: it is asked for, and taken over once it is here, of which it
    /// tells.
    void beginMountOn(Connection& connection);
    bool takeFrom(Connection& connection);
    /// REQUIRES: it has been mounted.
    Qor::Entity& root() const;
    /// The same, or null.
    Qor::Entity::Ptr const& entity() const { return entity_; }
    /// Puts another entity in the place of what is mounted.
    void entityIs(Qor::Entity::Ptr const& entity);
    std::string const& path() const { return path_; }

  private:
    std::string const path_;
    Qor::Dir::Ptr base_;  // the directory that the path begins with, unless that is mounted
    Qor::Entity::Ptr entity_;
};

}  // namespace Vgwctl

#endif
