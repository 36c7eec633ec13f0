#ifndef QOR_ATTRLOG_FLOW_CONNECTDESC_H
#define QOR_ATTRLOG_FLOW_CONNECTDESC_H

#include <qor/core/String8.h>

namespace Qor {

namespace NboAttrLog {

// What a mount connects: the entity's path at its source and where it stands at the peer. Both are
// empty for a resynchronisation of what is mounted already.
struct ConnectDesc {
    String8 sourcePath;
    String8 mountPath;
};

}  // namespace NboAttrLog

}  // namespace Qor

#endif
