// The library's one trace handle, named "Vgw", and its statements. Operations that are written by
// hand trace on entry, at level 5, with their full signature.
#ifndef VGW_VALUES_TRACE_H
#define VGW_VALUES_TRACE_H

#include <qor/core/Trace.h>

namespace Vgw {

inline constexpr char const* ovsdbDataTypesUnit = "OvsdbDataTypes";
inline constexpr char const* vgwTypesUnit = "VgwTypes";

/// Built on first use, kept as long as the process.
Qor::TraceHandle const& traceHandle();

/// The statement on entry: level 5, the text is the function's signature.
inline void traceEntry(char const* unit, int line, char const* function, char const* signature) {
    Qor::trace(traceHandle(), 5, unit, line, function,
               [&](std::ostream& out) { out << signature; });
}

}  // namespace Vgw

#endif
