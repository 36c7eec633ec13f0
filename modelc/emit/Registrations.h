// The rows by which a class is registered: its attributes in order, each with its flag class.
//
// They follow from the description alone: an entity begins with what the framework's base is
// redefined by, goes on with its members in the order of their declaration, and ends with the key,
// if owning collections hold it.
#ifndef MODELC_EMIT_REGISTRATIONS_H
#define MODELC_EMIT_REGISTRATIONS_H

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include <modelc/check/Model.h>

namespace Modelc {

enum class FlagClass : std::uint8_t {
    literal,
    nondestructing,
    functionBase,
    function,
    functionWithArg,
    derived,
    key,
    constField,
    scalar,
    scalarBase,
    valueMap,
    valueMapBase,
    childEntity,
    childMap,
    refMap,
    classConstant,
};

std::string flagClassName(FlagClass flags);

struct Registration {
    std::string name;
    std::uint32_t id = 0;
    std::string
        valueType;  // full names as the registry has them; void* for an operation without a result
    std::string keyType;  // empty for what is no collection
    FlagClass flags = FlagClass::scalar;
    std::vector<std::pair<std::string, std::string>>
        arguments;  // name, type; any make the row one of attrIs
};

std::vector<Registration> registrations(Enumeration const& enumeration);
std::vector<Registration> registrations(Value const& value);
std::vector<Registration> registrations(Entity const& entity);

// All rows of a unit's classes, for people and for tests.
std::string registrationText(Unit const& unit);

}  // namespace Modelc

#endif
