// The outbound handlers of values and of keyed truth values: one small record a change.
#ifndef QOR_ATTRLOG_FAMILY_VALUEOUT_H
#define QOR_ATTRLOG_FAMILY_VALUEOUT_H

#include <qor/attrlog/PlainForm.h>
#include <qor/attrlog/family/OutboundGuard.h>
#include <qor/attrlog/family/OutboundRoom.h>

namespace Qor {

/// An enumeration goes as a signed number.
template <class Value>
void putValue(Ptr<NboAttrLog::Out> const& out, Value const& value) {
    if constexpr (std::is_enum_v<Value>) {
        out << static_cast<I32>(value);
    } else {
        out << value;
    }
}

/// A record of these values. One function for all attributes of the same types: `adapter` is of
/// the root of the adapters.
template <class... Values>
[[gnu::noinline]] void putRecord(Entity::QorNboAttrLogSa& adapter, AttributeId id,
                                 Values const&... values) {
    using Token = NboAttrLog::Out::TransactToken;
    if constexpr ((NboAttrLog::HasKnownSize<Values> && ...)) {
        std::size_t const size = (NboAttrLog::sizeOnWire(values) + ...);
        if (unsigned char* at = adapter.claimRecord(id, size)) {
            static_cast<void>(((at = NboAttrLog::storeOnWire(at, values)), ...));
            return;
        }
    }
    auto const& out = adapter.nboAttrLogOut();
    adapter.beginRecord(id);
    out << Token::begin;
    (putValue(out, values), ...);
    out << Token::end;
}

/// onA() of a scalar.
template <class S, class Adapter>
void serializeScalar(Adapter& adapter) {
    OutboundGuard const guard(adapter, S::id);
    if (!guard.mayGo(S::name) || !valueGoesNow<S>(adapter, *guard.out())) return;
    putRecord(adapter, S::id, S::get(entityOf<S>(adapter)));
}

/// qorHandleASerializeSing of a set or of a map to truth values. Whether nothing is owed for the
/// key.
template <class S, class Adapter>
bool serializeFlagMember(Adapter& adapter, typename S::Key const& key, bool value, bool deleted) {
    OutboundGuard const guard(adapter, S::id);
    if (!guard.mayGo(S::name)) return guard.isNothingOwed();
    if (!keyGoesNow<S>(adapter, *guard.out(), key)) return false;
    if (deleted)
        putRecord(adapter, -S::id, key);
    else
        putRecord(adapter, S::id, key, value);
    return true;
}

}  // namespace Qor

#endif
