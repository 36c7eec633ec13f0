// Whether the process still runs on one thread, as the C library knows it. Counts that are safe on
// any thread are changed without the locked instruction while this holds.
#ifndef QOR_CORE_SINGLE_THREAD_H
#define QOR_CORE_SINGLE_THREAD_H

#include <sys/single_threaded.h>

namespace Qor {

inline bool isSingleThreaded() noexcept { return __libc_single_threaded != 0; }

}  // namespace Qor

#endif
