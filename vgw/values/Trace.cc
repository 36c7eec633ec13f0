#include <vgw/values/Trace.h>

namespace Vgw {

Qor::TraceHandle const& traceHandle() {
    static Qor::TraceHandle const handle("Vgw", false);
    return handle;
}

}  // namespace Vgw
