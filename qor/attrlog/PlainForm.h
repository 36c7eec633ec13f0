// Values that take a number of bytes on the wire which is known before they are written. A record
// of such values is claimed in one piece of the ring (Out::claimRecord) and stored there; the bytes
// are those of operator<<.
#ifndef QOR_ATTRLOG_PLAINFORM_H
#define QOR_ATTRLOG_PLAINFORM_H

#include <qor/attrlog/NetworkOrder.h>
#include <qor/core/String8.h>
#include <qor/core/Types.h>

#include <algorithm>
#include <bit>
#include <concepts>
#include <cstddef>
#include <type_traits>

namespace Qor {

namespace NboAttrLog {

/// For values that always take the same: `size`, in bytes, and store(at, value). A class of values
/// specializes it beside its operator<<.
template <class Value>
struct PlainForm;

template <std::integral Number>
struct PlainForm<Number> {
    static constexpr std::size_t size = sizeof(Number);
    static void store(unsigned char* at, Number number) noexcept {
        storeNetworkOrder(at, static_cast<std::make_unsigned_t<Number>>(number));
    }
};

template <>
struct PlainForm<bool> {
    static constexpr std::size_t size = 1;
    static void store(unsigned char* at, bool value) noexcept { *at = value ? 1 : 0; }
};

template <>
struct PlainForm<double> {
    static constexpr std::size_t size = sizeof(U64);
    static void store(unsigned char* at, double number) noexcept {
        storeNetworkOrder(at, std::bit_cast<U64>(number));
    }
};

template <class Enum>
requires std::is_enum_v<Enum>
struct PlainForm<Enum> {
    static constexpr std::size_t size = sizeof(I32);
    static void store(unsigned char* at, Enum value) noexcept {
        PlainForm<I32>::store(at, static_cast<I32>(value));
    }
};

template <class Value>
concept HasPlainForm = requires {
    PlainForm<Value>::size;
};

/// Texts too: their length in 32 bits, and the bytes.
template <class Value>
concept HasKnownSize = HasPlainForm<Value> || std::same_as<Value, String8>;

template <HasKnownSize Value>
std::size_t sizeOnWire(Value const& value) noexcept {
    if constexpr (HasPlainForm<Value>) {
        return PlainForm<Value>::size;
    } else {
        return sizeof(U32) + value.length();
    }
}

/// Stores the value; where the next one goes.
template <HasKnownSize Value>
unsigned char* storeOnWire(unsigned char* at, Value const& value) noexcept {
    if constexpr (HasPlainForm<Value>) {
        PlainForm<Value>::store(at, value);
        return at + PlainForm<Value>::size;
    } else {
        PlainForm<U32>::store(at, value.length());
        return std::copy_n(value.view().data(), value.length(), at + sizeof(U32));
    }
}

}  // namespace NboAttrLog

}  // namespace Qor

#endif
