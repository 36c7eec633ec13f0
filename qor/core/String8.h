#ifndef QOR_CORE_STRING8_H
#define QOR_CORE_STRING8_H

#include <qor/core/StringN.h>

namespace Qor {

// The string of the whole system: counted, immutable, of bytes. StringN.h tells ownership, threads
// and cost.
using String8 = StringN<unsigned char>;

}  // namespace Qor

#endif
