#include <modelc/emit/ValueMapEmitter.h>

#include <modelc/emit/TypeText.h>

namespace Modelc {

ValueMapEmitter::ValueMapEmitter(Entity const& entity, Attribute const& attribute)
    : MapEmitter(entity, attribute) {
    std::string const key = typeText(*attribute.key, unit());
    std::string const value = typeText(*attribute.type, unit());
    hole("Base", "Qor::ValueMapAttribute<" + entity.name + ", " + std::to_string(attribute.id) +
                     ", " + key + ", " + value + ">");
    hole("memberAlias",
         "using " + spelling().memberClass() + " = Qor::ValueMember<" + key + ", " + value + ">;");
    hole("Result", value);
    hole("value", parameter(*attribute.type, "value", unit()));
    hole("valueArgument", handedOn(*attribute.type, "value"));
    hole("store", fillIn("Qor::setKeyed<$Attr$>(*this, $keyArgument$, $valueArgument$);"));
}

}  // namespace Modelc
