// The books on the requests of an OVSDB session. The agent calls updateOvsdbRequest when a request
// goes out and updateOvsdbRequestResult when its outcome is known; both write through the setters
// of the session status, so whoever watches it hears each change. One request is accounted at a
// time: a second one that goes out overwrites the send time of the first.
//
// `detail` is kept whole up to 80 bytes; a longer one as its first 77 bytes and "...".
#ifndef VGW_AGENT_REQUEST_ACCOUNTING_H
#define VGW_AGENT_REQUEST_ACCOUNTING_H

#include <vgw/Export.h>
#include <vgw/agent/OvsdbSessionStatus.h>
#include <vgw/values/OvsdbRequestType.h>
#include <vgw/values/SessionState.h>

namespace Vgw {

/// A request of that type has gone out: notes its display text, its detail and the time.
/// REQUIRES: status is not null; type is transactRequestType, cancelRequestType or
/// monitorRequestType (a query has no display text and stops the process).
VGW_EXPORT void updateOvsdbRequest(OvsdbSessionStatus::Ptr const& status, OvsdbRequestType type,
                                   Qor::String8 const& detail);

/// The last request has ended. stateConnected and stateBackupDbSynced are successes,
/// stateDisconnected is a failure; sessionState takes the state, lastStateChange the time of the
/// call. REQUIRES: status is not null; state is one of the three; type as above.
VGW_EXPORT void updateOvsdbRequestResult(OvsdbSessionStatus::Ptr const& status, SessionState state,
                                         OvsdbRequestType type, Qor::String8 const& detail);

}  // namespace Vgw

#endif
