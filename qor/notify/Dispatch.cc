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

void tellOne(Entity::NotifieeConst& notifiee, AttributeId id, NotifieeKind const* kind, Tell tell,
             void const* key) {
    try {
        if (!kind || notifiee.kind().is(*kind)) {
            tell(notifiee, key);
        }
    } catch (...) {
        reportException(notifiee, id);
    }
}

// The list is a companion's alone, as that of most copies: no walk is needed.
void tellOnly(Entity::NotifieeConst& notifiee, AttributeId id, NotifieeKind const* kind, Tell tell,
              void const* key) {
    if (!notifiee.qorNewRefUnlessEnding(isSingleThreaded())) {
        return;
    }
    tellOne(notifiee, id, kind, tell, key);
    notifiee.qorDeleteRef();
}

[[gnu::noinline]] void tellAll(ListRawGeneric const& list, AttributeId id, NotifieeKind const* kind,
                               Tell tell, void const* key) {
    SnapshotIterator<ListRawGeneric> snapshot(list);
    for (Entity::NotifieeConst** at = snapshot.begin(); at; at = snapshot.pass(at)) {
        tellOne(**at, id, kind, tell, key);
    }
}

}  // namespace

void dispatch(ListRawGeneric const& list, AttributeId id, NotifieeKind const* kind, Tell tell,
              void const* key) {
    Expect const expect(Exception::Id{0});
    auto* const first = list.head();
    if (first && !ListRawGeneric::next(*first)) {
        tellOnly(*first, id, kind, tell, key);
    } else {
        tellAll(list, id, kind, tell, key);
    }
}

}  // namespace Qor
