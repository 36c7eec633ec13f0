#include <qor/core/Assert.h>

#include <cstdio>
#include <cstdlib>

namespace Qor {

void assertionFailed(char const* text, char const* unit, int line, char const* function) noexcept {
    std::fprintf(stderr, "%s:%d: %s: Assertion '%s' failed.\n", unit, line, function, text);
    static_cast<void>(std::fflush(stderr));
    std::abort();
}

}  // namespace Qor
