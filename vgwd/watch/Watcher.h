#ifndef VGWD_WATCH_WATCHER_H
#define VGWD_WATCH_WATCHER_H

// Watches a database and the MAC rows' directories, every row in them while it is there, and, if
// asked to, the agent's status and session, and prints what they tell. It only listens: it is an
// example of an agent's reactors.

#include <qor/tree/Dir.h>
#include <vgw/agent/Status.h>
#include <vgwd/watch/ChangePrinter.h>

#include <vector>

namespace Vgwd {

class Watcher {
  public:
    Watcher(Vgw::HwVtepOvsdb::Ptr const& database, std::vector<Qor::Dir::Ptr> const& directories,
            std::FILE* out);
    ~Watcher();

    /// Watches the status, and the session below it, too.
    void watch(Vgw::Status::Ptr const& status);

    /// To be called after each step of the mirror. False where something could not be written.
    [[nodiscard]] bool flush() { return printer_.flush(); }

  private:
    ChangePrinter printer_;
    std::vector<Qor::Entity::NotifieeConst::Ptr> watches_;
};

}  // namespace Vgwd

#endif
