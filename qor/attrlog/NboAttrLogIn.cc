#include <qor/attrlog/NboAttrLogIn.h>

namespace Qor {

namespace NboAttrLog {

In::~In() = default;

}  // namespace NboAttrLog

}  // namespace Qor
