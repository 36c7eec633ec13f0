// What can be done with values of a type of which only the record is known: hold one, copy, compare
// and order them, send and read them, print
// and parse them. QorType::valueSteps() gives the steps of a type; a type
// without them (an entity, void*, constants that are never sent) gives null.
//
// A value stands in a Place: itself, where it is small and moved by moving its bytes, else a block
// on the heap. Steps have no state, and may be used on any thread.
#ifndef QOR_GENERIC_VALUE_STEPS_H
#define QOR_GENERIC_VALUE_STEPS_H

#include <memory>
#include <new>
#include <vector>

#include <qor/attrlog/MessageSize.h>
#include <qor/attrlog/NboAttrLogIn.h>
#include <qor/attrlog/NboAttrLogOut.h>
#include <qor/core/Strep.h>
#include <qor/generic/TypeOf.h>

namespace Qor {

class QOR_EXPORT ValueSteps {
  public:
    union Place {
        U64 word;
        void* block;
    };

    virtual ~ValueSteps();
    /// The record of the values' type.
    virtual QorType* type() const = 0;
    /// Puts the type's default value into an empty place.
    virtual void make(Place& place) const = 0;
    /// Puts a copy of the value at `value` into an empty place.
    virtual void copy(Place& place, void const* value) const = 0;
    /// Ends the value that stands there.
    virtual void end(Place& place) const noexcept = 0;
    /// Where the value of a place stands.
    virtual void const* at(Place const& place) const noexcept = 0;
    virtual bool equal(void const* lhs, void const* rhs) const = 0;
    /// Always false for a type without an order.
    virtual bool less(void const* lhs, void const* rhs) const = 0;
    /// As collections ask for it, not reversed; 0 for what is no key.
    virtual U32 hash(void const* value) const = 0;
    /// Of a composite value: which of its fields, counted from 0, its hash is made of, in order.
    virtual std::vector<U32> hashOrder() const;
    /// Bytes on the wire, at most.
    virtual U32 wireSize(void const* value) const = 0;
    virtual void put(Ptr<NboAttrLog::Out> const& out, void const* value) const = 0;
    /// Reads a value into an empty place; raises what the type's own reader raises.
    virtual void read(Place& place, NboAttrLog::In& in) const = 0;
    /// The text form.
    virtual String8 text(void const* value) const = 0;
    /// Reads the text form at the position into an empty place. Raises RangeException.
    virtual void parse(Place& place, String8::IteratorConst& position,
                       String8::IteratorConst const& end) const = 0;
};

/// A value that the attribute log can write and read.
template <class V>
concept SentValue = std::is_enum_v<V> ||
    requires(Ptr<NboAttrLog::Out> const& out, NboAttrLog::In& in, V const& value) {
    out << value;
    NboAttrLog::nextValue<V>(in);
};

template <class V>
class ValueStepsOf final : public ValueSteps {
  public:
    QorType* type() const override { return typeOf<V>(); }
    void make(Place& place) const override { put(place, V()); }
    void copy(Place& place, void const* value) const override { put(place, of(value)); }
    void end(Place& place) const noexcept override {
        if constexpr (isInPlace) {
            std::destroy_at(std::launder(reinterpret_cast<V*>(&place)));
        } else {
            delete static_cast<V*>(place.block);
        }
    }
    void const* at(Place const& place) const noexcept override {
        return isInPlace ? static_cast<void const*>(&place) : place.block;
    }
    bool equal(void const* lhs, void const* rhs) const override { return of(lhs) == of(rhs); }
    bool less(void const* lhs, void const* rhs) const override {
        if constexpr (requires(V const& left, V const& right) { left < right; }) {
            return of(lhs) < of(rhs);
        } else {
            return false;
        }
    }
    U32 hash(void const* value) const override {
        if constexpr (std::is_integral_v<V> || std::is_enum_v<V>) {
            return static_cast<U32>(of(value));
        } else if constexpr (requires(V const& key) { key.hash(); }) {
            return of(value).hash();
        } else {
            return 0;
        }
    }
    std::vector<U32> hashOrder() const override {
        std::vector<U32> result;
        if constexpr (requires { typename V::QorHashed; }) {
            V::QorHashed::forEach(
                [&]<class F>() { result.push_back(V::QorFields::template indexOf<F>()); });
        }
        return result;
    }
    U32 wireSize(void const* value) const override {
        if constexpr (std::is_base_of_v<String8, V>) {
            return NboAttrLog::wireSize(static_cast<String8 const&>(of(value)));
        } else {
            return sizeof(V);
        }
    }
    void put(Ptr<NboAttrLog::Out> const& out, void const* value) const override {
        if constexpr (std::is_enum_v<V>) {
            out << static_cast<I32>(of(value));
        } else {
            out << of(value);
        }
    }
    void read(Place& place, NboAttrLog::In& in) const override {
        if constexpr (std::is_enum_v<V>) {
            put(place, static_cast<V>(in.nextU32()));
        } else {
            put(place, NboAttrLog::nextValue<V>(in));
        }
    }
    String8 text(void const* value) const override { return valueToStrep(of(value)); }
    void parse(Place& place, String8::IteratorConst& position,
               String8::IteratorConst const& end) const override {
        put(place, sequenceToValue<V>(position, end));
    }

  private:
    static constexpr bool isInPlace =
        // NOLINTNEXTLINE(misc-redundant-expression): no V is the place itself.
        sizeof(V) <= sizeof(Place) && alignof(V) <= alignof(Place) &&
        (std::is_trivially_copyable_v<V> || std::is_base_of_v<String8, V>);
    static V const& of(void const* value) noexcept { return *static_cast<V const*>(value); }
    static void put(Place& place, V value) {
        if constexpr (isInPlace) {
            ::new (static_cast<void*>(&place)) V(std::move(value));
        } else {
            place.block = new V(std::move(value));
        }
    }
};

/// The steps of a type that is known here; null for values that are never sent.
template <class V>
ValueSteps const* valueStepsOf() noexcept {
    if constexpr (SentValue<V>) {
        static constinit ValueStepsOf<V> const steps{};
        return &steps;
    } else {
        return nullptr;
    }
}

}  // namespace Qor

#endif
