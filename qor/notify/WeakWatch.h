// Weak notifiees that are not registered stand on no list, so the notifier could not tell them of
// its end. They are kept here, by notifier; a bit in the notifier's count word says that there are
// any. Rare, so one table with a lock serves the process.
#ifndef QOR_NOTIFY_WEAK_WATCH_H
#define QOR_NOTIFY_WEAK_WATCH_H

#include <qor/notify/NotifieeConst.h>

namespace Qor {

void weakWatchIs(PtrInterface const& notifier, PtrInterface::NotifieeConst const& notifiee);
void weakWatchDel(PtrInterface const& notifier, PtrInterface::NotifieeConst const& notifiee);

}  // namespace Qor

#endif
