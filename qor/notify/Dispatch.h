// The loop that tells a change. It runs over a snapshot of the list, so handlers may attach,
// detach, destroy and set as they like; what a handler throws goes to that handler's notifiee
// alone.
//
// The snapshot and what is thrown are dealt with in one place, for all attributes. The walk from
// one notifiee to the next is compiled for each: so it calls the handler itself, and not something
// that first finds out which one it is.
#ifndef QOR_NOTIFY_DISPATCH_H
#define QOR_NOTIFY_DISPATCH_H

#include <qor/notify/SnapshotIterator.h>

namespace Qor {

/// The notifiees that a change is still to be told to.
using Hearers = SnapshotRest<Entity::NotifieeConst>;

/// How the handlers of one attribute are called; `key` is null or points to the key.
struct Telling {
    /// Tells one notifiee.
    void (*one)(Entity::NotifieeConst& notifiee, void const* key);
    /// Tells all that are left, at least one. What a handler throws leaves it, and then its
    /// notifiee's turn is not over.
    void (*rest)(Hearers& hearers, void const* key);
};

/// What dispatch() does, for handlers of any kind.
QOR_EXPORT void dispatchBy(ListRawGeneric const& list, AttributeId id, Telling const& telling,
                           void const* key);

/// All notifiees of a list have the handler.
struct EveryHearer {
    static bool has(Entity::NotifieeConst const&) noexcept { return true; }
};

/// Calls a handler, of those notifiees that `Among` has, by `Handler()(notifiee, key)`.
template <class Among, class Handler>
struct TellingBy {
    static void one(Entity::NotifieeConst& notifiee, void const* key) {
        if (Among::has(notifiee)) {
            Handler()(notifiee, key);
        }
    }
    static void rest(Hearers& hearers, void const* key) {
        Entity::NotifieeConst** at = hearers.at();
        do {
            Entity::NotifieeConst& notifiee = **at;
            one(notifiee, key);
            at = hearers.pass(at, notifiee);
        } while (at);
    }
    static constexpr Telling telling{one, rest};
};

/// Tells the change of attribute `id` to every notifiee of the list that `Among` has, in the order
/// of the list, by `handler(notifiee, key)`, which bears no data. Callers test count() first:
/// nobody to tell costs nothing.
template <class Among, class Handler>
void dispatch(ListRawGeneric const& list, AttributeId id, Handler, void const* key) {
    dispatchBy(list, id, TellingBy<Among, Handler>::telling, key);
}

}  // namespace Qor

#endif
