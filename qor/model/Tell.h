// From a descriptor to the dispatch loop: which list, which notifiees, which handler.
#ifndef QOR_MODEL_TELL_H
#define QOR_MODEL_TELL_H

#include <type_traits>

#include <qor/model/Attribute.h>
#include <qor/notify/Dispatch.h>

namespace Qor {

/// The notifiees that have handlers of class E: those of its own NotifieeConst. At the root of a
/// tree that is every one on the list, and nothing is asked.
template <class E>
NotifieeKind const* kindToTell() noexcept {
    if constexpr (std::is_same_v<E, typename E::NotifierRoot>) {
        return nullptr;
    } else {
        return &E::NotifieeConst::qorKind;
    }
}

/// Tells that a scalar or a single child has changed.
template <class A>
[[gnu::noinline]] void tellScalar(typename A::Entity& entity) {
    dispatch(
        entity.notifierList(), A::id, kindToTell<typename A::Entity>(),
        [](Entity::NotifieeConst& notifiee, void const*) {
            A::tell(static_cast<typename A::Entity::NotifieeConst&>(notifiee));
        },
        nullptr);
}

/// Tells that the member under `key` has come, gone or changed.
template <class A>
void tellKeyed(typename A::Entity& entity, typename A::Key const& key) {
    if (entity.notifierList().count() == 0) {
        return;
    }
    dispatch(
        entity.notifierList(), A::id, kindToTell<typename A::Entity>(),
        [](Entity::NotifieeConst& notifiee, void const* k) {
            A::tell(static_cast<typename A::Entity::NotifieeConst&>(notifiee),
                    *static_cast<typename A::Key const*>(k));
        },
        &key);
}

}  // namespace Qor

#endif
