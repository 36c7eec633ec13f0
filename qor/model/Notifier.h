// What every class that owns a notifier list overrides of the framework, and the notifiee's record
// of what waits for delivery.
#ifndef QOR_MODEL_NOTIFIER_H
#define QOR_MODEL_NOTIFIER_H

#include <qor/notify/Dispatch.h>
#include <qor/notify/RootNotifiee.h>

namespace Qor {

inline constexpr AttributeId zeroReferencesId = 5;
inline constexpr AttributeId isNondestructingId = 6;

/// Switches counting off or on and tells so, unless that is the state already.
template <class E>
void changeNondestructing(E& entity, bool isNondestructing) {
    if (isNondestructing == entity.isNondestructing()) {
        return;
    }
    entity.PtrInterface::isNondestructingIs(isNondestructing);
    dispatch<EveryHearer>(
        entity.notifierList(), isNondestructingId,
        [](Entity::NotifieeConst& notifiee, void const*) {
            static_cast<typename E::NotifieeConst&>(notifiee).onIsNondestructing();
        },
        nullptr);
}

/// Tells that the last reference has gone.
template <class E>
void tellZeroReferences(E& entity) {
    dispatch<EveryHearer>(
        entity.notifierList(), zeroReferencesId,
        [](Entity::NotifieeConst& notifiee, void const*) { notifiee.onZeroReferences(); }, nullptr);
}

/// Of one keyed attribute, what a queuing notifiee has heard since the last delivery: the newest
/// key, and how many different keys, 2 standing for two or more.
template <class K>
struct PendingKey {
    K lastKey{};
    U8 count = 0;

    /// Notes a change under `key`; gives the counter to be raised, null when that key is counted.
    U8* note(K const& key) {
        bool const counted = count == 1 && lastKey == key;
        lastKey = key;
        return counted ? nullptr : &count;
    }
    /// Nothing has been heard.
    void drop() noexcept { count = 0; }
};

}  // namespace Qor

#endif
