// The loop that tells a change. It runs over a snapshot of the list, so handlers may attach,
// detach, destroy and set as they like; what a handler throws goes to that handler's notifiee
// alone.
#ifndef QOR_NOTIFY_DISPATCH_H
#define QOR_NOTIFY_DISPATCH_H

#include <qor/notify/ListRaw.h>

namespace Qor {

/// Calls the handler of one attribute on one notifiee; `key` is null or points to the key.
using Tell = void (*)(Entity::NotifieeConst& notifiee, void const* key);

/// Tells the change of attribute `id` to every notifiee of the list that is of `kind`, in the order
/// of the list; a null `kind` stands for all. Callers test count() first: nobody to tell costs
/// nothing.
QOR_EXPORT void dispatch(ListRawGeneric const& list, AttributeId id, NotifieeKind const* kind,
                         Tell tell, void const* key);

}  // namespace Qor

#endif
