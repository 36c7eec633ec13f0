// Writing an attribute by its descriptor, as the generic interface and the attribute log do it:
// through the class's own operation where that can be overridden (the descriptor then has `set` and
// `del`), else straight through the operation of its kind.
#ifndef QOR_MODEL_SET_ATTRIBUTE_H
#define QOR_MODEL_SET_ATTRIBUTE_H

#include <utility>

#include <qor/model/Keyed.h>
#include <qor/model/Reference.h>
#include <qor/model/Scalar.h>

namespace Qor {

template <class A>
void setAttribute(typename A::Entity& entity, typename A::Value value) {
    if constexpr (requires { A::set(entity, value); }) {
        A::set(entity, std::move(value));
    } else {
        setScalar<A>(entity, std::move(value));
    }
}

template <class A>
void setKeyedAttribute(typename A::Entity& entity, typename A::Key key, typename A::Value value) {
    if constexpr (requires { A::set(entity, key, value); }) {
        A::set(entity, std::move(key), std::move(value));
    } else if constexpr (A::kind == AttributeKind::refMap) {
        setReference<A>(entity, key, value);
    } else {
        setKeyed<A>(entity, std::move(key), std::move(value));
    }
}

/// The old value, or the default of its type.
template <class A>
typename A::Value delKeyedAttribute(typename A::Entity& entity, typename A::Key const& key) {
    if constexpr (requires { A::del(entity, key); }) {
        return A::del(entity, key);
    } else {
        return delKeyed<A>(entity, key);
    }
}

}  // namespace Qor

#endif
