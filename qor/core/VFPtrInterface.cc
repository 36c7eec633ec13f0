#include <qor/core/VFPtrInterface.h>

namespace Qor {

VFPtrInterface::~VFPtrInterface() = default;

}  // namespace Qor
