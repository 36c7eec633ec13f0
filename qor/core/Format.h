#ifndef QOR_CORE_FORMAT_H
#define QOR_CORE_FORMAT_H

#include <qor/core/Export.h>
#include <qor/core/String8.h>

namespace Qor {

// printf into a string, with the compiler's check of the arguments. Texts of up to 255 bytes take
// one allocation.
[[gnu::format(printf, 1, 2)]] QOR_EXPORT String8 format(char const* pattern, ...);

}  // namespace Qor

#endif
