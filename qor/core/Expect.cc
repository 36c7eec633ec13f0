#include <qor/core/Expect.h>

namespace Qor {

constinit thread_local Expect const* Expect::innermost_ = nullptr;

}  // namespace Qor
