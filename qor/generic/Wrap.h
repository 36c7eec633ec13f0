// Between C++ values and their wrappers: how an attribute's value, a key, an argument goes in and
// out. A reference to an entity goes as a counted pointer.
#ifndef QOR_GENERIC_WRAP_H
#define QOR_GENERIC_WRAP_H

#include <qor/generic/GenericIf.h>
#include <qor/generic/TypeOf.h>

namespace Qor {

template <class T>
inline constexpr bool isEntityPtr = false;
template <class X>
inline constexpr bool isEntityPtr<Ptr<X>> = true;

/// A wrapper over an entity, by the record of its own class; a null one by that of `declared`.
QOR_EXPORT GenericIf::Ptr wrappedEntity(Entity* entity, QorType* declared, bool isConst);

/// A new wrapper over the value.
template <class T>
GenericIf::Ptr wrapped(T const& value, bool isConst) {
    if constexpr (isEntityPtr<T>) {
        using X = std::remove_const_t<typename T::element_type>;
        return wrappedEntity(const_cast<X*>(value.ptr()), typeOf<X>(),
                             isConst || std::is_const_v<typename T::element_type>);
    } else {
        return typeOf<T>()->genericIf(static_cast<void const*>(&value), isConst);
    }
}

/// The wrapped value, read as a T. Raises TypeException for a wrapper over another type, and
/// ConstException where an entity that may be changed is asked of a const wrapper.
template <class T>
T unwrapped(GenericIf const& wrapper) {
    if constexpr (isEntityPtr<T>) {
        using X = std::remove_const_t<typename T::element_type>;
        if (!std::is_const_v<typename T::element_type> && wrapper.isConst()) {
            GenericIf::throwConstException("attempting to modify a const instance");
        }
        auto const* const object =
            static_cast<PtrInterface const*>(wrapper.genericValue(Ptr<QorType const>(typeOf<X>())));
        return T(const_cast<X*>(static_cast<X const*>(object)));
    } else {
        return *static_cast<T const*>(wrapper.genericValue(Ptr<QorType const>(typeOf<T>())));
    }
}

/// The same of what must be there: null raises TypeException with that name.
template <class T>
T needed(GenericIf const* wrapper, char const* name) {
    if (!wrapper) {
        GenericIf::throwTypeException(name);
    }
    return unwrapped<T>(*wrapper);
}

/// The same of an argument: a null one is a null reference, where one is meant.
template <class T>
T argument(GenericIf const* wrapper, char const* name) {
    if constexpr (isEntityPtr<T>) {
        return wrapper ? unwrapped<T>(*wrapper) : T();
    } else {
        return needed<T>(wrapper, name);
    }
}

}  // namespace Qor

#endif
