// A record that was announced on a connection without ids of its own is left in the ring under the
// parent's id, for whoever reads it after.
#ifndef QOR_ATTRLOG_FLOW_RINGREWRITE_H
#define QOR_ATTRLOG_FLOW_RINGREWRITE_H

#include <qor/attrlog/NboAttrLogIn.h>

namespace Qor {

namespace NboAttrLog {

// Overwrites the eight bytes of an id at `position`, in host order. Where they wrap in the ring,
// the second part is taken from eight times as many bytes behind the id's address as were copied,
// which are zero.
QOR_EXPORT void rewriteEntityId(In& in, U64 position, EntityId const& id);

}  // namespace NboAttrLog

}  // namespace Qor

#endif
