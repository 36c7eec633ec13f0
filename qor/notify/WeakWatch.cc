#include <qor/notify/WeakWatch.h>

#include <mutex>
#include <unordered_map>

namespace Qor {

namespace {

using Watches = std::unordered_multimap<PtrInterface const*, PtrInterface::NotifieeConst*>;

struct Table {
    std::mutex mutex;
    Watches watches;
};

// Never destroyed: notifiers may end while the process does.
Table& table() {
    static Table& table = *new Table;
    return table;
}

void watchedEnds(PtrInterface const* notifier) noexcept {
    for (;;) {
        PtrInterface::NotifieeConst* notifiee = nullptr;
        {
            std::lock_guard lock(table().mutex);
            auto const at = table().watches.find(notifier);
            if (at == table().watches.end()) {
                return;
            }
            notifiee = at->second;
            table().watches.erase(at);
        }
        notifiee->qorNotifierEnds();
    }
}

}  // namespace

void weakWatchIs(PtrInterface const& notifier, PtrInterface::NotifieeConst const& notifiee) {
    std::lock_guard lock(table().mutex);
    table().watches.emplace(&notifier, const_cast<PtrInterface::NotifieeConst*>(&notifiee));
    PtrInterface::weakWatchersEnd = watchedEnds;
    notifier.qorWeaklyWatchedIs(true);
}

void weakWatchDel(PtrInterface const& notifier, PtrInterface::NotifieeConst const& notifiee) {
    std::lock_guard lock(table().mutex);
    Watches& watches = table().watches;
    auto const [first, last] = watches.equal_range(&notifier);
    for (auto at = first; at != last; ++at) {
        if (at->second == &notifiee) {
            watches.erase(at);
            break;
        }
    }
    if (!watches.contains(&notifier)) {
        notifier.qorWeaklyWatchedIs(false);
    }
}

}  // namespace Qor
