#include <modelc/emit/ValueMapEmitter.h>

#include <modelc/emit/TypeText.h>

namespace Modelc {

ValueMapEmitter::ValueMapEmitter(Entity const& entity, Attribute const& attribute)
    : KeyedEmitter(entity, attribute, "key") {
    std::string const key = typeText(*attribute.key, unit());
    std::string const value = typeText(*attribute.type, unit());
    hole("Base", "Qor::ValueMapAttribute<" + entity.name + ", " + std::to_string(attribute.id) +
                     ", " + key + ", " + value + ">");
    hole("memberAlias",
         "using " + spelling().memberClass() + " = Qor::ValueMember<" + key + ", " + value + ">;");
    hole("Value", value);
    hole("value", parameter(*attribute.type, "value", unit()));
    hole("valueArgument", handedOn(*attribute.type, "value"));
    hole("virtual", attribute.isVirtual ? "virtual " : "");
}

std::string ValueMapEmitter::accessorDeclarations() const {
    return fillIn(R"(
$Value$ $name$($key$) const;
$virtual$void $setter$($key$, $value$);
Qor::Ptr<$Member$> $builder$($key$, $value$);
$virtual$$Value$ $remover$($key$);
void $allRemover$();
$virtual$void $notifier$($key$, Qor::Ptr<$Member$> const& member);
)");
}

std::string ValueMapEmitter::field() const {
    return fillIn("Qor::HashMap<$Member$, $Key$> $field$;\n");
}

std::string ValueMapEmitter::accessorDefinitions() const {
    return fillIn(R"(
$Value$ $Class$::$name$($key$) const {
    return Qor::keyedValue<$Attr$>(*this, $keyName$);
}

void $Class$::$setter$($key$, $value$) {
    Qor::setKeyed<$Attr$>(*this, $keyArgument$, $valueArgument$);
}

Qor::Ptr<$Class$::$Member$> $Class$::$builder$($key$, $value$) {
    return Qor::newKeyed<$Attr$>(*this, $keyArgument$, $valueArgument$);
}

$Value$ $Class$::$remover$($key$) {
    return Qor::delKeyed<$Attr$>(*this, $keyName$);
}

void $Class$::$allRemover$() {
    Qor::delAll<$Attr$>(*this);
}

void $Class$::$notifier$($key$, Qor::Ptr<$Member$> const&) {
    Qor::tellKeyed<$Attr$>(*this, $keyName$);
}
)");
}

}  // namespace Modelc
