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
struct HearersOf {
    static bool has(Entity::NotifieeConst const& notifiee) noexcept {
        return notifiee.kind().is(E::NotifieeConst::qorKind);
    }
};
template <class E>
requires std::is_same_v<E, typename E::NotifierRoot>
struct HearersOf<E> : EveryHearer {
};

/// Tells that a scalar or a single child has changed.
template <class A>
[[gnu::noinline]] void tellScalar(typename A::Entity& entity) {
    dispatch<HearersOf<typename A::Entity>>(
        entity.notifierList(), A::id,
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
    dispatch<HearersOf<typename A::Entity>>(
        entity.notifierList(), A::id,
        [](Entity::NotifieeConst& notifiee, void const* k) {
            A::tell(static_cast<typename A::Entity::NotifieeConst&>(notifiee),
                    *static_cast<typename A::Key const*>(k));
        },
        &key);
}

}  // namespace Qor

#endif
