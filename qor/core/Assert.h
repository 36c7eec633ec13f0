// Programming errors stop here, in every build: one line on standard error, then abort.
#ifndef QOR_CORE_ASSERT_H
#define QOR_CORE_ASSERT_H

#include <qor/core/Export.h>

namespace Qor {

/// Writes "UNIT:LINE: FUNCTION: Assertion 'TEXT' failed." to standard error and aborts.
[[noreturn]] QOR_EXPORT void assertionFailed(char const* text, char const* unit, int line,
                                             char const* function) noexcept;

/// Stops the process when `holds` is false; the texts are those of assertionFailed.
inline void assertThat(bool holds, char const* text, char const* unit, int line,
                       char const* function) noexcept {
    if (!holds) [[unlikely]] {
        assertionFailed(text, unit, line, function);
    }
}

}  // namespace Qor

#endif
