// The checked model -> files of C++.
#ifndef MODELC_EMIT_EMIT_H
#define MODELC_EMIT_EMIT_H

#include <vector>

#include <modelc/check/Model.h>
#include <modelc/emit/OutputFile.h>

namespace Modelc {

std::vector<OutputFile> emit(Unit const& unit);

}  // namespace Modelc

#endif
