// How large a record may get, told before it is written.
#ifndef QOR_ATTRLOG_MESSAGESIZE_H
#define QOR_ATTRLOG_MESSAGESIZE_H

#include <qor/attrlog/MsgHeader.h>
#include <qor/attrlog/RingBlocks.h>
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

// The greatest key of a text, as it goes over: its removal is shorter than a block of a ring.
inline constexpr U32 greatestTextKey = Connection::ringBlockSize - frameOverhead - 1;
// The longest that is itself a text.
inline constexpr U32 longestTextKey = greatestTextKey - sizeof(U32);
static_assert(greatestTextKey + frameOverhead + leastTextChunk <= leastGreatestFrame);

// Whether the records of a text can hold that key.
template <class Key>
constexpr bool fitsTextRecord(Key const& key) {
    return wireSize(key) <= greatestTextKey;
}

// The most of a text that goes into one record beside a key, whose removal is so long.
constexpr U32 textChunkLimit(U32 removalSize) noexcept {
    bool const hasRoom = removalSize <= greatestTextRecord - leastTextChunk;
    return hasRoom ? greatestTextRecord - removalSize : leastTextChunk;
}

}  // namespace NboAttrLog

}  // namespace Qor

#endif
