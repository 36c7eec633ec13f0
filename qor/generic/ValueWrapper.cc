#include <qor/generic/ValueWrapper.h>

namespace Qor {

GenericIfValue::~GenericIfValue() = default;

GenericIf::Ptr GenericIfValue::memberValue(GenericMember const& member) const {
    return member.get(address(), isConst());
}

GenericIf::Ptr GenericIfValue::attributeOp(AttributeOp const& op, PtrConst const& key,
                                           Ptr const& value) {
    needChangeable(op);
    if (op.attributeId == 0 && op.opId >= AttributeOp::opEq && op.opId <= AttributeOp::opNot) {
        return wrapped(compared(op.opId, key.ptr()), false);
    }
    for (GenericMember const& member : members()) {
        if (member.id != op.attributeId) {
            continue;
        }
        if (op.opId != AttributeOp::opGet) {
            throwOpNotSupportedException(member.name, op.opId, false);
        }
        if (key) {
            throwBadIndexAttrException(member.name);
        }
        return memberValue(member);
    }
    return GenericIf::attributeOp(op, key, value);
}

}  // namespace Qor
