#include <qor/dynamic/DynamicScope.h>

namespace Qor {

thread_local DynamicScope const* DynamicScope::innermost = nullptr;

}  // namespace Qor
