#include <qor/generic/ValueSteps.h>

namespace Qor {

ValueSteps::~ValueSteps() = default;

std::vector<U32> ValueSteps::hashOrder() const { return {}; }

}  // namespace Qor
