#include <qor/generic/ValueSteps.h>

namespace Qor {

ValueSteps::~ValueSteps() = default;

}  // namespace Qor
