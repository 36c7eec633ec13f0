// How large a record may get, told before it is written.
#ifndef QOR_ATTRLOG_MESSAGESIZE_H
#define QOR_ATTRLOG_MESSAGESIZE_H

#include <qor/attrlog/MsgHeader.h>
#include <qor/core/String8.h>

#include <type_traits>

namespace Qor {

namespace NboAttrLog {

// No value takes more on the wire than in memory.
template <class Value>
requires std::is_trivially_copyable_v<Value>
constexpr U32 wireSize(Value const&) noexcept { return sizeof(Value); }
inline U32 wireSize(String8 const& text) noexcept { return text.length() + 4; }

// An upper bound for the record of one key: header and tokens, the key and, unless it is a removal,
// the value.
template <class Key, class Value>
U32 pessimisticMessageSizeEstimate(Key const& key, Value const& value, bool keyOnly) {
    return frameOverhead + wireSize(key) + (keyOnly ? 0 : wireSize(value));
}

}  // namespace NboAttrLog

}  // namespace Qor

#endif
