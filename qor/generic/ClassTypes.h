// What the type records of the three sorts of classes can do; the compiler of descriptions derives
// X::_Type from these.
#ifndef QOR_GENERIC_CLASS_TYPES_H
#define QOR_GENERIC_CLASS_TYPES_H

#include <array>
#include <tuple>
#include <type_traits>

#include <qor/attrlog/NboAttrLogIn.h>
#include <qor/core/ValidPtr.h>
#include <qor/generic/GenericList.h>
#include <qor/generic/ValueSteps.h>
#include <qor/generic/ValueWrapper.h>
#include <qor/model/ValueText.h>
#include <qor/registry/TypeUnit.h>
#include <qor/tree/EntityPath.h>

namespace Qor {

/// The constructor's argument of an entity, read from a stream.
template <class Argument>
Argument readArgument(NboAttrLog::In& in) {
    if constexpr (std::is_same_v<Argument, Name>) {
        return Name(in.nextString());
    } else {
        return Argument(&in, StreamBogon());
    }
}

/// `Argument` is what the entity's constructor takes.
template <class X, class Argument>
class EntityType : public QorType {
  public:
    using QorType::newEntity;
    using QorType::QorType;

    Qor::Ptr<Entity> newEntity(Qor::Ptr<NboAttrLog::In> const& in,
                               PtrInterface::NotifieeConst::Qor_BitSet, U32,
                               PtrInterface*) override {
        return validPtr(make<X>(readArgument<Argument>(*in)));
    }
    Qor::Ptr<Entity> newInstance([[maybe_unused]] Name const& name) override {
        if constexpr (std::is_same_v<Argument, Name>) {
            return validPtr(make<X>(name));
        } else {
            return validPtr(make<X>(Argument()));
        }
    }
    Qor::Ptr<GenericIf> genericIf_(PtrInterface* object, bool isConst) override {
        return make<typename X::GenericIf_>(Qor::Ptr<Entity>(dynamic_cast<X*>(object)), isConst);
    }
    Qor::Ptr<GenericIf> genericIfFromStrep(String8 const& text, bool isConst) override {
        Expect const expect(Exception::rangeId);
        String8::IteratorConst position(text);
        Qor::Ptr<X> const entity = sequenceToValue<X>(position, text.end());
        if (position != text.end()) {
            throwJunk(position, text);
        }
        return genericIf_(entity.ptr(), isConst);
    }
};

/// Calls `construct` with the arguments that the list holds, in their order and by these names;
/// `type` is the short name of what is made. The wrapper over the result may be written.
template <class... Argument, class Construct>
GenericIf::Ptr constructed(GenericIf const* list, char const* type,
                           std::array<char const*, sizeof...(Argument)> const& names,
                           Construct construct) {
    GenericArguments given(list);
    [[maybe_unused]] std::size_t at = 0;
    // Braces, so that the arguments are taken in their order.
    [[maybe_unused]] auto const read = [&]<class T>(std::type_identity<T>) {
        char const* const name = names[at++];
        return argument<T>(given.next(name).ptr(), name);
    };
    std::tuple<Argument...> const arguments{read(std::type_identity<Argument>())...};
    given.end(type);
    return wrapped(std::apply(construct, arguments), false);
}

/// The same of a value: its constructor takes its fields.
template <class V, class... Field>
GenericIf::Ptr constructedValue(GenericIf const* list, FieldList<Field...>) {
    return constructed<typename Field::Type...>(list, V::qorShortName, {Field::name...},
                                                [](auto const&... field) { return V(field...); });
}

/// A value, or an enumeration; `Wrapper` is its GenericIf_.
template <class V, class Wrapper>
class ValueType : public QorType {
  public:
    using QorType::QorType;

    Qor::Ptr<GenericIf> genericIf(void const* value, bool isConst) override {
        return make<Wrapper>(value ? *static_cast<V const*>(value) : V(), isConst);
    }
    Qor::Ptr<GenericIf> genericIf(GenericIf const* arguments, bool isConst) override {
        if constexpr (requires { typename V::QorFields; }) {
            return constructedValue<V>(arguments, typename V::QorFields());
        } else {
            return QorType::genericIf(arguments, isConst);
        }
    }
    Qor::Ptr<GenericIf> genericIfFromStrep(String8 const& text, bool isConst) override {
        return make<Wrapper>(strepToValue<V>(text), isConst);
    }
    ValueSteps const* valueSteps() const noexcept override { return valueStepsOf<V>(); }
};

}  // namespace Qor

#endif
