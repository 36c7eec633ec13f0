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

// A type as the registry has it: its full name, void* for an operation without a result, and the
// C++ function that gives its record. Both empty for no type.
struct RegisteredType {
    std::string name;
    std::string record;
};

struct Registration {
    std::string name;
    std::uint32_t id = 0;
    RegisteredType valueType;
    RegisteredType keyType;  // none for what is no collection
    FlagClass flags = FlagClass::scalar;
    // Name, type; any make the row one of attrIs.
    std::vector<std::pair<std::string, std::string>> arguments = {};
};

std::vector<Registration> registrations(Enumeration const& enumeration);
std::vector<Registration> registrations(Value const& value);
std::vector<Registration> registrations(Entity const& entity);

// What gives the record of a type, and what of an enumeration.
std::string recordOf(Type const& type);

// The attributes of an entity that handles are kept to, in order.
std::vector<std::string> handleNames(Entity const& entity);

// All rows of a unit's classes, for people and for tests.
std::string registrationText(Unit const& unit);

}  // namespace Modelc

#endif
