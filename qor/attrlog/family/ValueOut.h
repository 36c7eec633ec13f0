// The outbound handlers of values and of keyed truth values: one small record a change.
#ifndef QOR_ATTRLOG_FAMILY_VALUEOUT_H
#define QOR_ATTRLOG_FAMILY_VALUEOUT_H

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

/// onA() of a scalar.
template <class S, class Adapter>
void serializeScalar(Adapter& adapter) {
    using Token = NboAttrLog::Out::TransactToken;
    OutboundGuard const guard(adapter, S::id);
    if (!guard.mayGo(S::name)) return;
    auto const& out = guard.out();
    if (!valueGoesNow<S>(adapter, *out)) return;
    adapter.beginRecord(S::id);
    out << Token::begin;
    putValue(out, S::get(entityOf<S>(adapter)));
    out << Token::end;
}

/// qorHandleASerializeSing of a set or of a map to truth values. Whether nothing is owed for the
/// key.
template <class S, class Adapter>
bool serializeFlagMember(Adapter& adapter, typename S::Key const& key, bool value, bool deleted) {
    using Token = NboAttrLog::Out::TransactToken;
    OutboundGuard const guard(adapter, S::id);
    if (!guard.mayGo(S::name)) return guard.isNothingOwed();
    auto const& out = guard.out();
    if (!keyGoesNow<S>(adapter, *out, key)) return false;
    adapter.beginRecord(deleted ? -S::id : S::id);
    out << Token::begin << key;
    if (!deleted) out << value;
    out << Token::end;
    return true;
}

}  // namespace Qor

#endif
