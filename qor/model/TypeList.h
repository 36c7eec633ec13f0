// A list of types, for suites and tables that run over every class of a description.
#ifndef QOR_MODEL_TYPE_LIST_H
#define QOR_MODEL_TYPE_LIST_H

#include <cstddef>

namespace Qor {

template <class... T>
struct TypeList {
    static constexpr std::size_t size = sizeof...(T);
    /// Calls `visit.template operator()<T>()` for each, in order.
    template <class Visit>
    static constexpr void forEach(Visit&& visit) {
        (visit.template operator()<T>(), ...);
    }
};

}  // namespace Qor

#endif
