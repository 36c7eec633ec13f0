// The registry's files of values and enumerations: the generic wrapper, and what the type record
// can do.
#ifndef MODELC_EMIT_VALUEWRAPPEREMITTER_H
#define MODELC_EMIT_VALUEWRAPPEREMITTER_H

#include <string>

#include <modelc/check/Model.h>

namespace Modelc {

std::string wrapperHeader(Value const& value);
std::string wrapperHeader(Enumeration const& enumeration);

}  // namespace Modelc

#endif
