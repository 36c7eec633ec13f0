#ifndef QOR_CORE_NOW_H
#define QOR_CORE_NOW_H

#include <qor/core/Export.h>
#include <qor/core/Types.h>

#include <functional>

namespace Qor {

// Seconds since 1970-01-01 00:00 UTC, with fractions, by the system's clock or the one that stands
// in for it.
QOR_EXPORT Seconds now();

// Puts a clock in the place of the system's; an empty one gives the system's back. Safe on any
// thread; a call of now() that runs meanwhile may still read the clock before.
QOR_EXPORT void nowIs(std::function<Seconds()> clock);

}  // namespace Qor

#endif
