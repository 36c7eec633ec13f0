#include <modelc/emit/Registrations.h>

#include <algorithm>
#include <string_view>

#include <modelc/check/Builtins.h>

namespace Modelc {
namespace {

constexpr std::uint32_t nondestructingId = 6;
constexpr std::uint32_t attrLogInterfaceId = 154;

// In the order of FlagClass.
constexpr std::string_view flagClassNames[] = {
    "literal",         "nondestructing", "functionBase", "function",
    "functionWithArg", "derived",        "key",          "constField",
    "scalar",          "scalarBase",     "valueMap",     "valueMapBase",
    "childEntity",     "childMap",       "refMap",       "classConstant"};

std::string registryName(Type const& type) {
    if (type.kind != TypeKind::builtin) return type.fullName;
    return std::string(builtinType(type).registry);
}

RegisteredType registered(Type const* type) {
    if (type == nullptr) return {"void*", "Qor::Builtin<void*>::_fwkType"};
    return {registryName(*type), recordOf(*type)};
}

// The types of the rows that the framework adds.
RegisteredType const boolean{"bool", "Qor::Builtin<bool>::_fwkType"};
RegisteredType const word{"U32", "Qor::Builtin<Qor::U32>::_fwkType"};
RegisteredType const keyName{"Qor::Name", "Qor::Name::_fwkType"};

FlagClass flagsOf(Attribute const& attribute) {
    switch (attribute.kind) {
        case AttributeKind::scalar:
            return attribute.isVirtual ? FlagClass::scalarBase : FlagClass::scalar;
        case AttributeKind::constructed:
            return FlagClass::constField;
        case AttributeKind::set:
        case AttributeKind::map:
            return attribute.isVirtual ? FlagClass::valueMapBase : FlagClass::valueMap;
        case AttributeKind::reference:
            return FlagClass::refMap;
        case AttributeKind::owning:
            return FlagClass::childMap;
        case AttributeKind::child:
            return FlagClass::childEntity;
    }
    return FlagClass::scalar;
}

FlagClass flagsOf(Operation const& operation) {
    if (operation.isStatic) return FlagClass::functionWithArg;
    bool const isIntroduced = operation.isVirtual && !operation.overrides;
    return isIntroduced ? FlagClass::functionBase : FlagClass::function;
}

Registration row(Attribute const& attribute) {
    Registration result{
        attribute.name, attribute.id, registered(attribute.type), {}, flagsOf(attribute)};
    if (attribute.key != nullptr) result.keyType = registered(attribute.key);
    bool const isOwner =
        attribute.kind == AttributeKind::owning || attribute.kind == AttributeKind::child;
    if (isOwner) result.arguments.emplace_back("name", "Qor::Name");
    return result;
}

Registration row(Operation const& operation) {
    Registration result{
        operation.name, operation.id, registered(operation.result), {}, flagsOf(operation)};
    for (Argument const& argument : operation.arguments) {
        result.arguments.emplace_back(argument.name, registryName(*argument.type));
    }
    return result;
}

std::string line(Registration const& row) {
    std::string result = "  " + row.name + " " + std::to_string(row.id) + " " + row.valueType.name;
    if (!row.keyType.name.empty()) result += "[" + row.keyType.name + "]";
    result += " " + flagClassName(row.flags) +
              (row.arguments.empty() ? " defNoninstantiatingAttr" : " attrIs");
    for (auto const& [name, type] : row.arguments) result += " " + name + ":" + type;
    return result + "\n";
}

struct TextOf {
    std::string operator()(Enumeration const* one) const { return text("enum", *one, ""); }
    std::string operator()(Value const* one) const { return text("value", *one, ""); }
    std::string operator()(Entity const* one) const {
        return text("entity", *one,
                    one->base == nullptr ? "Qor::Entity" : one->base->type->fullName);
    }

    template <typename Class>
    std::string text(std::string const& sort, Class const& one, std::string const& base) const {
        std::string result =
            sort + " " + one.type->fullName + (base.empty() ? "" : " : " + base) + "\n";
        for (Registration const& row : registrations(one)) result += line(row);
        return result;
    }
};

}  // namespace

std::string flagClassName(FlagClass flags) {
    return std::string(flagClassNames[static_cast<std::size_t>(flags)]);
}

std::string recordOf(Type const& type) {
    switch (type.kind) {
        case TypeKind::builtin:
            return type.builtin == Builtin::name
                       ? keyName.record
                       : "Qor::Builtin<" + std::string(builtinType(type).cxx) + ">::_fwkType";
        case TypeKind::enumeration:
            return type.nameSpace() + "::_fwkType_" + type.shortName();
        case TypeKind::value:
        case TypeKind::external:
        case TypeKind::entity:
            return type.fullName + "::_fwkType";
    }
    return {};
}

std::vector<Registration> registrations(Enumeration const& enumeration) {
    std::vector<Registration> result;
    for (Enumerator const& one : enumeration.enumerators) {
        result.push_back(
            {one.name, one.number, registered(enumeration.type), {}, FlagClass::literal});
    }
    return result;
}

std::vector<Registration> registrations(Value const& value) {
    std::vector<Registration> result;
    for (ValueField const& field : value.fields) {
        result.push_back({field.name, field.id, registered(field.type), {}, FlagClass::constField});
    }
    for (ValueField const& constant : value.constants) {
        result.push_back(
            {constant.name, constant.id, registered(constant.type), {}, FlagClass::classConstant});
    }
    if (value.hash) result.push_back({"hash", value.hash->id, word, {}, FlagClass::derived});
    return result;
}

std::vector<Registration> registrations(Entity const& entity) {
    std::vector<Registration> result;
    if (entity.isRoot()) {
        result.push_back(
            {"isNondestructing", nondestructingId, boolean, {}, FlagClass::nondestructing});
    }
    result.push_back(
        {"qorHasAttrLogInterface", attrLogInterfaceId, boolean, {}, FlagClass::functionBase});
    for (Member const& member : entity.members) {
        result.push_back(std::visit([](auto const& one) { return row(one); }, member));
    }
    if (entity.isCollected) result.push_back({"fwkKey", 0, keyName, {}, FlagClass::key});
    return result;
}

// The framework's own first; operations that every base hands down stand in front of the class's.
std::vector<std::string> handleNames(Entity const& entity) {
    std::vector<std::string> result;
    if (entity.isRoot()) result.emplace_back("isNondestructing");
    result.emplace_back("qorNboAttrLogSaForMsgChannel");
    result.emplace_back("qorHasAttrLogInterface");
    for (Entity const* base = entity.base; base != nullptr; base = base->base) {
        for (Member const& member : base->members) {
            auto const* operation = std::get_if<Operation>(&member);
            if (operation != nullptr && operation->isVirtual && !operation->overrides)
                result.push_back(operation->name);
        }
    }
    for (Registration const& one : registrations(entity)) {
        if (std::find(result.begin(), result.end(), one.name) == result.end())
            result.push_back(one.name);
    }
    return result;
}

std::string registrationText(Unit const& unit) {
    std::string result;
    for (Class const& one : unit.classes) result += std::visit(TextOf{}, one);
    return result;
}

}  // namespace Modelc
