#ifndef VGWD_WATCH_ROW_WATCH_H
#define VGWD_WATCH_ROW_WATCH_H

// A notifiee for a row of any class that prints each change. It holds its row; whoever made it lets
// go of it when the row goes.

#include <qor/notify/EntityNotifiee.h>
#include <vgwd/watch/ChangePrinter.h>

#include <string>

namespace Vgwd {

/// A notifiee on `row`, which must be of one of the row classes of the database; null for any
/// other.
Qor::Entity::NotifieeConst::Ptr watchRow(Qor::Ptr<Qor::Entity const> const& row, std::string path,
                                         ChangePrinter& printer);

}  // namespace Vgwd

#endif
