#include <qor/attrlog/NboAttrLogOut.h>

namespace Qor {

namespace NboAttrLog {

Out::~Out() = default;

}  // namespace NboAttrLog

}  // namespace Qor
