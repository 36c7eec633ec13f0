// What a wrapper does with each kind of described attribute: the steps of
// <qor/generic/AttributeSteps.h> on the attribute at hand.
#ifndef QOR_DYNAMIC_DYNAMIC_ROWS_H
#define QOR_DYNAMIC_DYNAMIC_ROWS_H

#include <qor/dynamic/DynamicAttributes.h>

namespace Qor {

inline GenericIf::Ptr wrapped(DynamicKey const& key, bool isConst) { return key.wrapped(isConst); }
inline GenericIf::Ptr wrapped(AnyValue const& value, bool isConst) {
    return value.wrapped(isConst);
}
/// Read as the type that the attribute at hand has; raised is what a compiled attribute raises.
template <>
DynamicKey unwrapped<DynamicKey>(GenericIf const& wrapper);
template <>
DynamicValue unwrapped<DynamicValue>(GenericIf const& wrapper);

/// The row of an attribute; its name is borrowed.
GenericAttribute dynamicRow(DynamicAttribute const& attribute);

}  // namespace Qor

#endif
