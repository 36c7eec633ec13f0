// The names of the stream classes, for headers of values that only mention them.
#ifndef QOR_ATTRLOG_DECLARATIONS_H
#define QOR_ATTRLOG_DECLARATIONS_H

#include <qor/attrlog/StreamBogon.h>

namespace Qor {

template <class T>
class Ptr;

namespace Connection {
class In;
class Out;
}  // namespace Connection

namespace ByteConnection {
class In;
}  // namespace ByteConnection

namespace NboAttrLog {
class In;
class Out;
}  // namespace NboAttrLog

}  // namespace Qor

#endif
