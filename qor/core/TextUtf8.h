// Which bytes may be shown as they are: printable ASCII and well-formed UTF-8 beyond it (RFC 3629),
// without the control characters U+0080 to U+009F.
#ifndef QOR_CORE_TEXTUTF8_H
#define QOR_CORE_TEXTUTF8_H

#include <qor/core/Export.h>

#include <cstddef>
#include <string_view>

namespace Qor {

// Bytes of the character at the start of `bytes`, or 0 when it can't be shown as it is.
QOR_EXPORT std::size_t printableLength(std::string_view bytes) noexcept;

}  // namespace Qor

#endif
