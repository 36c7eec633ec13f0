#ifndef VGWD_WATCH_STATUS_WATCH_H
#define VGWD_WATCH_STATUS_WATCH_H

// Watches for what the agent says of itself: its status, and the books of its session.

#include <vgw/agent/Status.h>
#include <vgwd/watch/ChangePrinter.h>

#include <vector>

namespace Vgwd {

/// Notifiees that print each change of the status and of the session below it.
std::vector<Qor::Entity::NotifieeConst::Ptr> watchStatus(Vgw::Status::Ptr const& status,
                                                         ChangePrinter& printer);

}  // namespace Vgwd

#endif
