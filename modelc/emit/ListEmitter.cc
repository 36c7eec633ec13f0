#include <modelc/emit/ListEmitter.h>

#include <modelc/check/Spelling.h>
#include <modelc/emit/Holes.h>
#include <modelc/emit/Includes.h>
#include <modelc/emit/Origin.h>
#include <modelc/emit/RegistryPlace.h>

namespace Modelc {
namespace {

template <typename ClassPointer>
std::string namesOf(Unit const& unit) {
    std::string result;
    for (Class const& one : unit.classes) {
        auto const* found = std::get_if<ClassPointer>(&one);
        if (found != nullptr) result += (result.empty() ? "" : ", ") + (*found)->name;
    }
    return result;
}

}  // namespace

std::string listHeader(Unit const& unit) { return unitFolder(unit) + "/" + unit.name + "List.h"; }

std::string listText(Unit const& unit) {
    Includes includes;
    includes.add("qor/model/TypeList.h");
    for (Class const& one : unit.classes) {
        std::visit([&](auto const* found) { includes.add(found->type->header); }, one);
    }
    return fill(R"(
$origin$
#ifndef $guard$
#define $guard$

$includes$

namespace $namespace$ {

/// All enumerations of the description, in the order of their registration.
using $Unit$Enumerations = Qor::TypeList<$enumerations$>;
/// All values.
using $Unit$Values = Qor::TypeList<$values$>;
/// All entities.
using $Unit$Entities = Qor::TypeList<$entities$>;

}  // namespace $namespace$

#endif
)",
                {{"origin", originText(unit, {})},
                 {"guard", includeGuard(listHeader(unit))},
                 {"includes", includes.text()},
                 {"namespace", unit.nameSpace},
                 {"Unit", unit.name},
                 {"enumerations", namesOf<Enumeration const*>(unit)},
                 {"values", namesOf<Value const*>(unit)},
                 {"entities", namesOf<Entity const*>(unit)}});
}

}  // namespace Modelc
