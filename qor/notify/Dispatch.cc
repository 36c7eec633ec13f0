#include <qor/notify/Dispatch.h>

#include <qor/core/Expect.h>

namespace Qor {

namespace {

// A notifiee that cannot even hear of its own exception is left alone: the setter must return.
void reportException(Entity::NotifieeConst& notifiee, AttributeId id) noexcept {
    try {
        notifiee.onNotificationException(id);
    } catch (...) {
    }
}

// The list is a companion's alone, as that of most copies: no snapshot is needed.
void tellOnly(Entity::NotifieeConst& notifiee, AttributeId id, Telling const& telling,
              void const* key) {
    if (!notifiee.qorNewRefUnlessEnding(isSingleThreaded())) {
        return;
    }
    try {
        telling.one(notifiee, key);
    } catch (...) {
        reportException(notifiee, id);
    }
    notifiee.qorDeleteRef();
}

// The walk ends where a handler throws, and goes on behind it.
[[gnu::noinline]] void tellAll(ListRawGeneric const& list, AttributeId id, Telling const& telling,
                               void const* key) {
    SnapshotIterator<ListRawGeneric> snapshot(list);
    while (snapshot) {
        try {
            telling.rest(snapshot, key);
        } catch (...) {
            if (snapshot.isEnding()) {
                throw;  // no handler's: it comes from the end of one that was told
            }
            reportException(*snapshot, id);
            ++snapshot;
        }
    }
}

}  // namespace

void dispatchBy(ListRawGeneric const& list, AttributeId id, Telling const& telling,
                void const* key) {
    Expect const expect(Exception::Id{0});
    auto* const first = list.head();
    if (first && !ListRawGeneric::next(*first)) {
        tellOnly(*first, id, telling, key);
    } else {
        tellAll(list, id, telling, key);
    }
}

}  // namespace Qor
