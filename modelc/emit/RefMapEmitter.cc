#include <modelc/emit/RefMapEmitter.h>

#include <modelc/emit/TypeText.h>

namespace Modelc {

RefMapEmitter::RefMapEmitter(Entity const& entity, Attribute const& attribute)
    : KeyedEmitter(entity, attribute, "key") {
    std::string const key = typeText(*attribute.key, unit());
    std::string const target = typeText(*attribute.type, unit());
    hole("Base", "Qor::RefMapAttribute<" + entity.name + ", " + std::to_string(attribute.id) +
                     ", " + key + ", " + target + ">");
    hole("memberAlias",
         "using " + spelling().memberClass() + " = Qor::RefMember<" + key + ", " + target + ">;");
    hole("Target", target);
    hole("value", "Qor::Ptr<" + target + "> const& " + attribute.name);
}

std::string RefMapEmitter::accessorDeclarations() const {
    return fillIn(R"(
Qor::Ptr<$Target$> $name$($key$) const;
Qor::Ptr<$Member$> $memberReader$($key$) const;
void $setter$($key$, $value$);
Qor::Ptr<$Member$> $builder$($key$, $value$);
Qor::Ptr<$Target$> $remover$($key$);
void $allRemover$();
void $notifier$($key$, Qor::Ptr<$Member$> const& member);
)");
}

std::string RefMapEmitter::field() const {
    return fillIn("Qor::HashMap<$Member$, $Key$> $field$;\n");
}

std::string RefMapEmitter::accessorDefinitions() const {
    return fillIn(R"(
Qor::Ptr<$Target$> $Class$::$name$($key$) const {
    return Qor::keyedValue<$Attr$>(*this, $keyName$);
}

Qor::Ptr<$Class$::$Member$> $Class$::$memberReader$($key$) const {
    return Qor::referenceMember<$Attr$>(*this, $keyName$);
}

void $Class$::$setter$($key$, $value$) {
    Qor::setReference<$Attr$>(*this, $keyName$, $name$);
}

Qor::Ptr<$Class$::$Member$> $Class$::$builder$($key$, $value$) {
    return Qor::newKeyed<$Attr$>(*this, $keyArgument$, $name$);
}

Qor::Ptr<$Target$> $Class$::$remover$($key$) {
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
