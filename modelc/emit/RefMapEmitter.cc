#include <modelc/emit/RefMapEmitter.h>

#include <modelc/emit/TypeText.h>

namespace Modelc {

RefMapEmitter::RefMapEmitter(Entity const& entity, Attribute const& attribute)
    : MapEmitter(entity, attribute) {
    std::string const key = typeText(*attribute.key, unit());
    std::string const target = typeText(*attribute.type, unit());
    hole("Base", "Qor::RefMapAttribute<" + entity.name + ", " + std::to_string(attribute.id) +
                     ", " + key + ", " + target + ">");
    hole("memberAlias",
         "using " + spelling().memberClass() + " = Qor::RefMember<" + key + ", " + target + ">;");
    hole("Result", "Qor::Ptr<" + target + ">");
    hole("value", "Qor::Ptr<" + target + "> const& " + attribute.name);
    hole("valueArgument", attribute.name);
    hole("store", fillIn("Qor::setReference<$Attr$>(*this, $keyName$, $valueArgument$);"));
}

std::string RefMapEmitter::memberDeclaration() const {
    return fillIn("Qor::Ptr<$Member$> $memberReader$($key$) const;\n");
}

std::string RefMapEmitter::memberDefinition() const {
    return fillIn(R"(
Qor::Ptr<$Class$::$Member$> $Class$::$memberReader$($key$) const {
    return Qor::referenceMember<$Attr$>(*this, $keyName$);
}

)");
}

}  // namespace Modelc
