#ifndef VGWD_SHOW_CONTENTS_H
#define VGWD_SHOW_CONTENTS_H

// Walks the library's rows, the MAC rows' directories, and what the mirror lost, and tells a sink
// of all of it in one order for each state: names ascending, sets ascending, addresses by their
// number.

#include <ovsdb/mirror/Mirror.h>
#include <vgw/agent/Status.h>
#include <vgwd/show/ContentSink.h>

namespace Vgwd {

/// The container, the MAC rows, and what was lost.
void tellMirror(Ovsdb::Mirror const& mirror, ContentSink& sink);
void tellMirror(Vgw::HwVtepOvsdb const& database, Ovsdb::MacDirectories const& directories,
                std::vector<std::string> const& lost, ContentSink& sink);
/// What the agent says of itself, without the container below it.
void tellStatus(Vgw::Status const& status, ContentSink& sink);

}  // namespace Vgwd

#endif
