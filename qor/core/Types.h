// The integer widths by which everything that is counted, hashed or streamed is named.
#ifndef QOR_CORE_TYPES_H
#define QOR_CORE_TYPES_H

#include <cstdint>

namespace Qor {

using U8 = std::uint8_t;
using U16 = std::uint16_t;
using U32 = std::uint32_t;
using U64 = unsigned long long;
using I32 = std::int32_t;
using I64 = long long;

/// The number of an attribute in its class. Ids below 256 are the framework's; a negated id on the
/// attribute log means removal.
using AttributeId = I32;

/// A point in time or a span, in seconds.
using Seconds = double;

/// The run-time records of an attribute and of a type: <qor/registry/QorType.h>.
class QorAttr;
class QorType;

}  // namespace Qor

#endif
