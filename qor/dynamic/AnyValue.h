// A value of any type that has steps: a number, a text, an address, an enumerator, a composite. It
// is copied and compared as values of its type are, and the same on the wire. Values of different
// types are unequal. 16 bytes, and a block on the heap for what is neither small nor a text.
#ifndef QOR_DYNAMIC_ANY_VALUE_H
#define QOR_DYNAMIC_ANY_VALUE_H

#include <qor/generic/GenericIf.h>
#include <qor/generic/ValueSteps.h>

namespace Qor {

class QOR_EXPORT AnyValue {
  public:
    /// Of no type.
    AnyValue() noexcept = default;
    /// The default value of a type.
    explicit AnyValue(ValueSteps const& steps) {
        become(steps, [&] { steps.make(place_); });
    }
    /// A copy of the value at `value`.
    AnyValue(ValueSteps const& steps, void const* value) {
        become(steps, [&] { steps.copy(place_, value); });
    }
    /// The next value of a stream.
    AnyValue(ValueSteps const& steps, NboAttrLog::In& in) {
        become(steps, [&] { steps.read(place_, in); });
    }
    AnyValue(AnyValue const& other);
    AnyValue(AnyValue&& other) noexcept { swap(other); }
    AnyValue& operator=(AnyValue other) noexcept {
        swap(other);
        return *this;
    }
    ~AnyValue();

    /// A copy of what is wrapped; raises what the wrapper raises where it is of another type.
    static AnyValue of(ValueSteps const& steps, GenericIf const& wrapper);
    /// The value that a whole text stands for; raises RangeException for other texts.
    static AnyValue parsed(ValueSteps const& steps, String8 const& text);
    /// The same of a field of a composite value, at a position; an error names the field.
    static AnyValue parsedField(ValueSteps const& steps, String8::IteratorConst& position,
                                String8::IteratorConst const& end, String8 const& name);

    void swap(AnyValue& other) noexcept {
        std::swap(steps_, other.steps_);
        std::swap(place_, other.place_);
    }

    /// Null of no type.
    ValueSteps const* steps() const noexcept { return steps_; }
    /// REQUIRES: it is of a type
    void const* address() const noexcept { return steps_->at(place_); }
    /// REQUIRES: it is a T
    template <class T>
    T const& as() const noexcept {
        return *static_cast<T const*>(address());
    }
    /// As collections ask for it.
    U32 hash() const { return steps_ ? steps_->hash(address()) : 0; }
    /// REQUIRES: it is of a type
    GenericIf::Ptr wrapped(bool isConst) const;

    bool operator==(AnyValue const& other) const;
    /// Where their type's order leaves two values undecided, that of their texts decides: so no two
    /// keys of a described collection tie.
    bool operator<(AnyValue const& other) const;

  private:
    template <class Fill>
    void become(ValueSteps const& steps, Fill const& fill) {
        fill();
        steps_ = &steps;
    }

    ValueSteps const* steps_ = nullptr;
    ValueSteps::Place place_{};
};

/// REQUIRES: it is of a type
QOR_EXPORT Ptr<NboAttrLog::Out> const& operator<<(Ptr<NboAttrLog::Out> const& out,
                                                  AnyValue const& value);
/// Of no type: nothing.
inline U32 wireSize(AnyValue const& value) {
    return value.steps() ? value.steps()->wireSize(value.address()) : 0;
}

}  // namespace Qor

#endif
