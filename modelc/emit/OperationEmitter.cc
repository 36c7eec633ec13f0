#include <modelc/emit/OperationEmitter.h>

#include <modelc/emit/TypeText.h>

namespace Modelc {

OperationEmitter::OperationEmitter(Entity const& entity, Operation const& operation)
    : MemberEmitter(entity, operation.name, operation.doc), operation_(operation) {
    hole("id", std::to_string(operation.id));
    hole("before", operation.isStatic ? "static " : isIntroduced() ? "virtual " : "");
    hole("Result", operation.result == nullptr ? "void" : typeText(*operation.result, unit()));
    hole("parameters", parameters());
    hole("ArgumentTypes", argumentTypes());
    hole("arguments", std::to_string(operation.arguments.size()));
    hole("argumentNames", argumentNames());
    hole("const", operation.isConst ? " const" : "");
    hole("override", operation.overrides ? " override" : "");
}

// Entities are passed as references to rows that may be read only.
std::string OperationEmitter::parameters() const {
    std::string result;
    for (Argument const& argument : operation_.arguments) {
        if (!result.empty()) result += ", ";
        if (argument.type->kind == TypeKind::entity) {
            bool const isOwnClass = argument.type == entity().type;
            result += (isOwnClass ? "PtrConst" : typeText(*argument.type, unit()) + "::PtrConst") +
                      " const& " + argument.name;
        } else {
            result += parameter(*argument.type, argument.name, unit());
        }
    }
    return result;
}

std::string OperationEmitter::argumentTypes() const {
    std::string result;
    for (Argument const& argument : operation_.arguments) {
        bool const isEntity = argument.type->kind == TypeKind::entity;
        result += ", " + typeText(*argument.type, unit()) + (isEntity ? "::PtrConst" : "");
    }
    return result;
}

std::string OperationEmitter::argumentNames() const {
    std::string result;
    for (Argument const& argument : operation_.arguments) {
        result += (result.empty() ? "\"" : ", \"") + argument.name + "\"";
    }
    return result;
}

std::string OperationEmitter::descriptorName() const {
    return operation_.overrides ? std::string() : MemberEmitter::descriptorName();
}

std::string OperationEmitter::declarations() const {
    return fillIn(R"(
$doc$
$before$$Result$ $name$($parameters$)$const$$override$;
)");
}

std::string OperationEmitter::descriptor() const {
    if (operation_.overrides) return {};
    return fillIn(R"(
struct $Class$::$Attr$ : Qor::OperationAttribute<$Class$, $id$$ArgumentTypes$> {
    static constexpr char const* name = "$name$";
    static constexpr std::array<char const*, $arguments$> argumentNames{$argumentNames$};
    static auto call(auto& entity, auto const&... given) { return entity.$name$(given...); }
};
)");
}

std::vector<std::string> OperationEmitter::headers() const {
    std::vector<std::string> result;
    for (Argument const& argument : operation_.arguments) result.push_back(argument.type->header);
    if (operation_.result != nullptr) result.push_back(operation_.result->header);
    return result;
}

}  // namespace Modelc
