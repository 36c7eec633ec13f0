// Names that a description may not give: C++'s own, those of the framework's entity, and the
// framework's prefixes.
#ifndef MODELC_CHECK_RESERVEDNAMES_H
#define MODELC_CHECK_RESERVEDNAMES_H

#include <string_view>

namespace Modelc {

bool isCxxKeyword(std::string_view name);
// A member that every entity has from the framework, or whose handler every notifiee has.
bool isEntityMember(std::string_view name);
// A member that every emitted value has.
bool isValueMember(std::string_view name);
// qor..., Qor..., fwk..., _... and anything with a double underscore.
bool hasReservedPrefix(std::string_view name);

}  // namespace Modelc

#endif
