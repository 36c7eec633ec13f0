#include <modelc/emit/RegistrationEmitter.h>

#include <map>
#include <vector>

#include <modelc/check/Spelling.h>
#include <modelc/emit/Includes.h>
#include <modelc/emit/Origin.h>
#include <modelc/emit/Registrations.h>
#include <modelc/emit/RegistryPlace.h>

namespace Modelc {
namespace {

using Arguments = std::vector<std::pair<std::string, std::string>>;

// What the tables say of a class besides its attributes.
struct ClassFacts {
    std::string sort;
    std::string base;  // the function that gives the base's record, or nullptr
    std::string typeClass;
    Arguments constructorArguments;
    std::vector<std::string> handles;
};

ClassFacts factsOf(Enumeration const& one) {
    return {"enumeration", "nullptr", one.name + "__Type", {}, {}};
}

ClassFacts factsOf(Value const& one) {
    ClassFacts facts{"value", "nullptr", one.name + "::_Type", {}, {}};
    for (ValueField const& field : one.fields) {
        facts.constructorArguments.emplace_back(field.name, field.type->fullName);
    }
    return facts;
}

ClassFacts factsOf(Entity const& one) {
    std::string const base =
        one.isRoot() ? "&Qor::Entity::_fwkType" : "&" + recordOf(*one.base->type);
    return {"entity",
            base,
            one.name + "::_Type",
            {{one.constructorArgument.name, one.constructorArgument.type->fullName}},
            handleNames(one)};
}

std::string argumentTable(std::string const& name, Arguments const& arguments) {
    if (arguments.empty()) return {};
    std::string rows;
    for (auto const& [argument, type] : arguments) {
        rows += (rows.empty() ? "{\"" : ", {\"") + argument + "\", \"" + type + "\"}";
    }
    return "constexpr Qor::ArgumentRow " + name + "[] = {" + rows + "};\n";
}

std::string argumentsName(std::string const& lowerClass, Registration const& row) {
    return row.arguments.empty() ? "{}" : lowerClass + Spelling(row.name).upper() + "Arguments";
}

std::string attributeTables(std::string const& lowerClass, std::vector<Registration> const& rows) {
    std::string arguments;
    std::string table;
    for (Registration const& row : rows) {
        arguments += argumentTable(argumentsName(lowerClass, row), row.arguments);
        std::string const key = row.keyType.record.empty() ? "nullptr" : "&" + row.keyType.record;
        table += "{\"" + row.name + "\", " + std::to_string(row.id) + ", &" + row.valueType.record +
                 ", " + key + ", Qor::FlagClasses::" + flagClassName(row.flags) + ", " +
                 argumentsName(lowerClass, row) + "},\n";
    }
    return fill(R"(
$arguments$
constexpr Qor::AttributeRow $lowerClass$Rows[] = {
    $rows$
};
)",
                {{"arguments", arguments}, {"lowerClass", lowerClass}, {"rows", table}});
}

std::string handleTables(std::string const& lowerClass, std::vector<std::string> const& names) {
    if (names.empty()) return {};
    std::string list;
    for (std::string const& name : names) list += (list.empty() ? "\"" : ", \"") + name + "\"";
    return fill(
        R"(
constexpr char const* $lowerClass$HandleNames[] = {$names$};
Qor::Ptr<Qor::QorAttr> $lowerClass$Handles[$count$];
)",
        {{"lowerClass", lowerClass}, {"names", list}, {"count", std::to_string(names.size())}});
}

struct TablesOf {
    template <typename Class>
    std::string operator()(Class const* one) const {
        std::string const lower = lowerFirst(one->name);
        ClassFacts const facts = factsOf(*one);
        bool const hasHandles = !facts.handles.empty();
        return fill(
            R"(
$attributes$
$arguments$
$handles$
constinit Qor::TypeRecord $lower$Record{
    .fullName = "$FullClass$",
    .sort = Qor::TypeSort::$sort$,
    .size = sizeof($Class$),
    .self = &$record$,
    .base = $base$,
    .make = &Qor::makeType<$TypeClass$>,
    .constructorArguments = $argumentsName$,
    .attributes = $lower$Rows,
    .handleNames = $handleNames$,
    .handles = $handleSlots$};

)",
            {{"attributes", attributeTables(lower, registrations(*one))},
             {"arguments", argumentTable(lower + "Arguments", facts.constructorArguments)},
             {"handles", handleTables(lower, facts.handles)},
             {"lower", lower},
             {"FullClass", one->type->fullName},
             {"Class", one->name},
             {"sort", facts.sort},
             {"record", recordOf(*one->type)},
             {"base", facts.base},
             {"TypeClass", facts.typeClass},
             {"argumentsName", facts.constructorArguments.empty() ? "{}" : lower + "Arguments"},
             {"handleNames", hasHandles ? lower + "HandleNames" : "{}"},
             {"handleSlots", hasHandles ? lower + "Handles" : "{}"}});
    }
};

std::string definedName(Enumeration const& one) { return "_fwkType_" + one.name; }
template <typename Class>
std::string definedName(Class const& one) {
    return one.name + "::_fwkType";
}

struct BuildRowOf {
    std::string operator()(Entity const* one) const {
        return "{&" + recordOf(*one->type) + ", &Qor::forcePointerAccesses<" + one->name + ">},\n";
    }
    template <typename Class>
    std::string operator()(Class const* one) const {
        return "{&" + recordOf(*one->type) + "},\n";
    }
};

std::string nameOf(Class const& one) {
    return std::visit([](auto const* found) { return found->name; }, one);
}

}  // namespace

RegistrationEmitter::RegistrationEmitter(Unit const& unit) : unit_(unit) {
    holes_ = {
        {"origin", originText(unit, {})},
        {"guard", includeGuard(registrationHeader(unit))},
        {"header", registrationHeader(unit)},
        {"namespace", unit.nameSpace},
        {"export", unit.exportMacro.empty() ? "" : unit.exportMacro + " "},
        {"exportHeader", unit.exportHeader.empty() ? "" : "#include <" + unit.exportHeader + ">"},
        {"Unit", unit.name},
        {"unit", lowerFirst(unit.name)},
        {"includes", includes()},
        {"tables", each([](Class const& one) { return std::visit(TablesOf(), one); })},
        {"names", each([](Class const& one) {
             return std::visit(
                 [](auto const* found) { return "\"" + found->type->fullName + "\\0\"\n"; }, one);
         })},
        {"records",
         each([](Class const& one) { return "&" + lowerFirst(nameOf(one)) + "Record,\n"; })},
        {"functions", each([](Class const& one) {
             return std::visit(
                 [](auto const* found) {
                     return fill(
                         R"(
Qor::QorType* $record$() {
    return unit.typeOf($lower$Record);
}

)",
                         {{"record", definedName(*found)}, {"lower", lowerFirst(found->name)}});
                 },
                 one);
         })},
        {"byName", byName()},
    };
}

template <typename Text>
std::string RegistrationEmitter::each(Text text) const {
    std::string result;
    for (Class const& one : unit_.classes) result += text(one);
    return result;
}

std::string RegistrationEmitter::includes() const {
    Includes result;
    result.add("qor/registry/Builtin.h");
    for (Class const& one : unit_.classes) result.add(registryHeader(unit_, nameOf(one)));
    return result.text();
}

std::string RegistrationEmitter::byName() const {
    std::map<std::string, std::string> rows;
    for (Class const& one : unit_.classes) rows[nameOf(one)] = std::visit(BuildRowOf(), one);
    std::string result;
    for (auto const& [name, row] : rows) result += row;
    return result + "{&Qor::Entity::_fwkType},\n";
}

std::string RegistrationEmitter::header() const {
    return fill(R"(
$origin$
#ifndef $guard$
#define $guard$

#include <qor/registry/TypeUnit.h>
$exportHeader$

namespace $namespace$ {

/// The registration of the description $Unit$: its records, whether they are described.
$export$Qor::TypeUnit& $unit$Unit();

}  // namespace $namespace$

#endif
)",
                holes_);
}

// The text of the section ends with the NUL that the compiler adds to it.
std::string RegistrationEmitter::source() const {
    std::string names = holes_.at("names");
    names.erase(names.rfind("\\0"));
    names += "\"";
    return fill(R"(
$origin$
#include <$header$>

$includes$

namespace $namespace$ {

namespace {

// One row a line.
// clang-format off

$tables$

constinit Qor::TypeRecord* const records[] = {
    $records$
};

constexpr Qor::BuildRow byName[] = {
    $byName$
};

[[gnu::section(".qor.type"), gnu::used, gnu::aligned(1)]] char const typeNames[] =
    $sectionNames$;

// clang-format on

constinit Qor::TypeUnit unit("$namespace$", records, byName);
Qor::TypeUnitLoader const loader(unit);

}  // namespace

Qor::TypeUnit& $unit$Unit() {
    return unit;
}

$functions$

}  // namespace $namespace$
)",
                with(holes_, {{"sectionNames", names}}));
}

}  // namespace Modelc
