// The reader of a sync mode: it is the entity's, so every adapter that knows the entity under this
// id takes it, on each of the thread's connections.
#ifndef QOR_ATTRLOG_FAMILY_SYNCMODEIN_H
#define QOR_ATTRLOG_FAMILY_SYNCMODEIN_H

#include <qor/attrlog/family/Inbound.h>

namespace Qor {

QOR_EXPORT void readSyncMode(Entity::QorNboAttrLogSa& adapter, NboAttrLog::In& in);

}  // namespace Qor

#endif
