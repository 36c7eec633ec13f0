// Types, parameters and defaults as C++ writes them.
#ifndef MODELC_EMIT_TYPETEXT_H
#define MODELC_EMIT_TYPETEXT_H

#include <string>

#include <modelc/check/Model.h>

namespace Modelc {

// The type as code of `unit` names it: its own enumerations and values shortly, all else in full.
// Entities always stand in full, since attributes may be called like classes.
std::string typeText(Type const& type, Unit const& unit);
// How a value of the type is passed.
std::string passedType(Type const& type, Unit const& unit);
// A parameter of that name: `Kelp::EthAddr const& mac`.
std::string parameter(Type const& type, std::string const& name, Unit const& unit);
// An argument that hands the parameter on: texts are moved.
std::string handedOn(Type const& type, std::string const& name);
// What stands behind a field's name to give it its default: ` = 6632`, `{}` or nothing.
std::string initializer(Type const& type, Initial const& initial, Unit const& unit);
// The same as an expression.
std::string initialText(Type const& type, Initial const& initial, Unit const& unit);

bool isText(Type const& type);

}  // namespace Modelc

#endif
