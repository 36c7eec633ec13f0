#include <qor/dynamic/AnyValue.h>

namespace Qor {

AnyValue::AnyValue(AnyValue const& other) {
    if (other.steps_) become(*other.steps_, [&] { other.steps_->copy(place_, other.address()); });
}

AnyValue::~AnyValue() {
    if (steps_) steps_->end(place_);
}

AnyValue AnyValue::of(ValueSteps const& steps, GenericIf const& wrapper) {
    return {steps, wrapper.genericValue(Ptr<QorType const>(steps.type()))};
}

AnyValue AnyValue::parsed(ValueSteps const& steps, String8 const& text) {
    Expect const expect(Exception::rangeId);
    String8::IteratorConst position(text);
    AnyValue result;
    result.become(steps, [&] { steps.parse(result.place_, position, text.end()); });
    if (position != text.end()) throwJunk(position, text);
    return result;
}

AnyValue AnyValue::parsedField(ValueSteps const& steps, String8::IteratorConst& position,
                               String8::IteratorConst const& end, String8 const& name) try {
    Expect const expect(Exception::rangeId);
    AnyValue result;
    result.become(steps, [&] { steps.parse(result.place_, position, end); });
    return result;
} catch (RangeException const& exception) {
    rethrowFromDeserializeAttr(exception, name);
}

GenericIf::Ptr AnyValue::wrapped(bool isConst) const {
    return steps_->type()->genericIf(address(), isConst);
}

bool AnyValue::operator==(AnyValue const& other) const {
    if (steps_ != other.steps_) return false;
    return !steps_ || steps_->equal(address(), other.address());
}

bool AnyValue::operator<(AnyValue const& other) const {
    if (!steps_ || steps_ != other.steps_) return false;
    if (steps_->less(address(), other.address())) return true;
    bool const isUndecided =
        !steps_->equal(address(), other.address()) && !steps_->less(other.address(), address());
    return isUndecided && steps_->text(address()) < steps_->text(other.address());
}

Ptr<NboAttrLog::Out> const& operator<<(Ptr<NboAttrLog::Out> const& out, AnyValue const& value) {
    value.steps()->put(out, value.address());
    return out;
}

}  // namespace Qor
