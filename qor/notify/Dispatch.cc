#include <qor/notify/Dispatch.h>

#include <qor/core/Expect.h>
#include <qor/notify/SnapshotIterator.h>

namespace Qor {

namespace {

// A notifiee that cannot even hear of its own exception is left alone: the setter must return.
void reportException(Entity::NotifieeConst& notifiee, AttributeId id) noexcept {
    try {
        notifiee.onNotificationException(id);
    } catch (...) {
    }
}

}  // namespace

void dispatch(ListRawGeneric const& list, AttributeId id, NotifieeKind const* kind, Tell tell,
              void const* key) {
    Expect const expect(Exception::Id{0});
    SnapshotIterator<ListRawGeneric> snapshot(list);
    for (Entity::NotifieeConst** at = snapshot.begin(); at; at = snapshot.pass(at)) {
        Entity::NotifieeConst& notifiee = **at;
        try {
            if (!kind || notifiee.kind().is(*kind)) {
                tell(notifiee, key);
            }
        } catch (...) {
            reportException(notifiee, id);
        }
    }
}

}  // namespace Qor
