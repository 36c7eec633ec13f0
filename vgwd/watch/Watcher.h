#ifndef VGWD_WATCH_WATCHER_H
#define VGWD_WATCH_WATCHER_H

// Watches the agent's status and session, the database and the MAC rows' directories, and every row
// in them while it is there, and prints what they tell. It only listens: it is an example of an
// agent's reactors.

#include <ovsdb/mirror/MacRows.h>
#include <vgw/agent/Status.h>
#include <vgwd/watch/ChangePrinter.h>

#include <vector>

namespace Vgwd {

class Watcher {
  public:
    Watcher(Vgw::Status::Ptr const& status, Ovsdb::MacDirectories const& macs, std::FILE* out);
    ~Watcher();

    /// To be called after each step of the mirror.
    void flush() { printer_.flush(); }

  private:
    ChangePrinter printer_;
    std::vector<Qor::Entity::NotifieeConst::Ptr> watches_;
};

}  // namespace Vgwd

#endif
