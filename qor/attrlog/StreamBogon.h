#ifndef QOR_ATTRLOG_STREAMBOGON_H
#define QOR_ATTRLOG_STREAMBOGON_H

#include <qor/core/Export.h>

namespace Qor {

// Marks the constructors that read a value from a stream, so that no other constructor is meant.
struct QOR_EXPORT StreamBogon {};

}  // namespace Qor

#endif
