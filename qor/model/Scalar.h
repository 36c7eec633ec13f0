// The setter of every single value.
#ifndef QOR_MODEL_SCALAR_H
#define QOR_MODEL_SCALAR_H

#include <utility>

#include <qor/model/Tell.h>

namespace Qor {

/// Stores `value` and tells so, unless the attribute holds it already.
template <class A>
inline void setScalar(typename A::Entity& entity, typename A::Value value) {
    auto& field = A::field(entity);
    if (field == value) {
        return;
    }
    field = std::move(value);
    if (entity.notifierList().count() != 0) [[unlikely]] {
        tellScalar<A>(entity);
    }
}

}  // namespace Qor

#endif
