// The header that names all classes of a unit in lists of types, for suites that run over every
// class.
#ifndef MODELC_EMIT_LISTEMITTER_H
#define MODELC_EMIT_LISTEMITTER_H

#include <string>

#include <modelc/check/Model.h>

namespace Modelc {

// vgw/OvsdbDataTypesList.h: beside the folders of the classes.
std::string listHeader(Unit const& unit);
std::string listText(Unit const& unit);

}  // namespace Modelc

#endif
