#include <modelc/emit/ValueWrapperEmitter.h>

#include <modelc/check/Spelling.h>
#include <modelc/emit/Holes.h>
#include <modelc/emit/Includes.h>
#include <modelc/emit/Origin.h>
#include <modelc/emit/RegistryPlace.h>

namespace Modelc {
namespace {

std::string memberRow(Value const& value, std::string const& name, std::uint32_t id) {
    std::string const reader = value.type->fullName + "::" + name;
    return "genericMember<" + value.type->fullName + ", &" + reader + ">(" + std::to_string(id) +
           ", \"" + name + "\"),\n";
}

std::string memberRows(Value const& value) {
    std::string result;
    for (ValueField const& field : value.fields) result += memberRow(value, field.name, field.id);
    for (ValueField const& constant : value.constants)
        result += memberRow(value, constant.name, constant.id);
    if (value.hash) result += memberRow(value, "hash", value.hash->id);
    return result;
}

std::size_t memberCount(Value const& value) {
    return value.fields.size() + value.constants.size() + (value.hash ? 1 : 0);
}

std::string includesOf(std::string const& header) {
    Includes result;
    result.add("array");
    result.add("qor/generic/ClassTypes.h");
    result.add(header);
    return result.text();
}

template <typename Class>
Holes commonHoles(Class const& one) {
    Unit const& unit = *one.unit;
    std::string const header = registryHeader(unit, one.name);
    return {{"origin", originText(unit, {})},
            {"guard", includeGuard(header)},
            {"header", header},
            {"includes", includesOf(one.type->header)},
            {"namespace", unit.nameSpace},
            {"export", unit.exportMacro.empty() ? "" : unit.exportMacro + " "},
            {"Class", one.name},
            {"FullClass", one.type->fullName}};
}

}  // namespace

std::string wrapperHeader(Value const& value) {
    return fill(R"(
$origin$
#ifndef $guard$
#define $guard$

$includes$

// clang-format off
template <>
struct Qor::GenericMembers<$FullClass$> {
    static constexpr std::array<GenericMember, $count$> rows{
        $rows$
    };
};
// clang-format on

namespace $namespace$ {

/// The generic wrapper over a $Class$.
class $export$$Class$::GenericIf_ : public Qor::ValueWrapper<$Class$, $Class$::GenericIf_> {
  public:
    using ValueWrapper::ValueWrapper;
};

/// What the record of $Class$ can do.
class $export$$Class$::_Type : public Qor::ValueType<$Class$, $Class$::GenericIf_> {
  public:
    using ValueType::ValueType;
};

}  // namespace $namespace$

#endif
)",
                with(commonHoles(value),
                     {{"rows", memberRows(value)}, {"count", std::to_string(memberCount(value))}}));
}

std::string wrapperHeader(Enumeration const& enumeration) {
    return fill(R"(
$origin$
#ifndef $guard$
#define $guard$

$includes$

namespace $namespace$ {

/// The generic wrapper over a $Class$.
class $export$$Class$_GenericIf_ : public Qor::EnumWrapper<$Class$, $Class$_GenericIf_> {
  public:
    using EnumWrapper::EnumWrapper;
};

/// What the record of $Class$ can do.
class $export$$Class$__Type : public Qor::ValueType<$Class$, $Class$_GenericIf_> {
  public:
    using ValueType::ValueType;
};

}  // namespace $namespace$

#endif
)",
                commonHoles(enumeration));
}

}  // namespace Modelc
