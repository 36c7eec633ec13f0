// Where a unit's registry files go: the folder `registry` beside those of its classes.
#ifndef MODELC_EMIT_REGISTRYPLACE_H
#define MODELC_EMIT_REGISTRYPLACE_H

#include <string>

#include <modelc/check/Model.h>

namespace Modelc {

// vgw/registry/LogicalSwitch.h
std::string registryHeader(Unit const& unit, std::string const& className);
// vgw/registry/OvsdbDataTypesRegistration.h
std::string registrationHeader(Unit const& unit);
// vgw of vgw/tables; a folder without parent is its own.
std::string parentFolder(std::string const& folder);
// The folder above those of the unit's classes.
std::string unitFolder(Unit const& unit);

}  // namespace Modelc

#endif
