#include <qor/notify/Dispatch.h>

#include <qor/core/Expect.h>

#include <memory>
#include <new>

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

using Snapshot = SnapshotInRoom<ListRawGeneric>;
using Place = Snapshot::T*;
constexpr U32 nearRoom = 16;

// The walk ends where a handler throws, and goes on behind it.
[[gnu::always_inline]] inline void tellEach(Snapshot& snapshot, AttributeId id,
                                            Telling const& telling, void const* key) {
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

// So many lie anywhere in memory. Each would wait for its own; asked for at once, all of it comes
// in about the time of one.
void expectMany(ListRawGeneric const& list) {
    for (bool const hasCome : {false, true}) {
        for (auto* node = list.head(); node; node = ListRawGeneric::next(*node)) {
            node->qorWillHear(hasCome);
        }
    }
}

// What has changed must be told, memory or not: without any, the stack has the room.
[[gnu::noinline, gnu::cold]] void tellMany(ListRawGeneric const& list, AttributeId id,
                                           Telling const& telling, void const* key) {
    std::unique_ptr<Place[]> const far(new (std::nothrow) Place[list.count()]);
    auto* const room =
        far ? far.get() : static_cast<Place*>(__builtin_alloca(list.count() * sizeof(Place)));
    expectMany(list);
    Snapshot snapshot(list, room);
    tellEach(snapshot, id, telling, key);
}

[[gnu::noinline]] void tellAll(ListRawGeneric const& list, AttributeId id, Telling const& telling,
                               void const* key) {
    if (list.count() > nearRoom) [[unlikely]] {
        return tellMany(list, id, telling, key);
    }
    Place room[nearRoom];
    Snapshot snapshot(list, room);
    tellEach(snapshot, id, telling, key);
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
