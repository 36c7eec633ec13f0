#include <vgw/values/Trace.h>

namespace Vgw {

Qor::TraceHandle const& traceHandle() {
    // Never destroyed: rows that end with the process may trace.
    static Qor::TraceHandle const& handle = *new Qor::TraceHandle("Vgw", false);
    return handle;
}

}  // namespace Vgw
