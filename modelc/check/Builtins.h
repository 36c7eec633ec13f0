// The types that the language itself knows, and what C++ calls them.
#ifndef MODELC_CHECK_BUILTINS_H
#define MODELC_CHECK_BUILTINS_H

#include <cstdint>
#include <span>
#include <string_view>

#include <modelc/check/Model.h>

namespace Modelc {

struct BuiltinType {
    std::string_view name;      // in a description
    std::string_view cxx;       // in C++
    std::string_view registry;  // in the type registry
    Builtin kind;
    bool byReference;        // wide values are passed by const reference
    std::uint64_t greatest;  // of a whole number; 0 for the others
};

// In no particular order; Qor::Seconds is a number of seconds in a double.
std::span<BuiltinType const> builtinTypes();
BuiltinType const& builtinType(Type const& type);

}  // namespace Modelc

#endif
