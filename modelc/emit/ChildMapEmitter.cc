#include <modelc/emit/ChildMapEmitter.h>

#include <modelc/emit/TypeText.h>

namespace Modelc {

ChildMapEmitter::ChildMapEmitter(Entity const& entity, Attribute const& attribute)
    : KeyedEmitter(entity, attribute, "name") {
    std::string const target = typeText(*attribute.type, unit());
    hole("Base", "Qor::ChildMapAttribute<" + entity.name + ", " + std::to_string(attribute.id) +
                     ", " + target + ">");
    hole("memberAlias", "");
    hole("Target", target);
}

std::string ChildMapEmitter::accessorDeclarations() const {
    return fillIn(R"(
Qor::Ptr<$Target$> $name$($key$) const;
Qor::Ptr<$Target$> $setter$($key$);
Qor::Ptr<$Target$> $builder$($key$);
Qor::Ptr<$Target$> $remover$($key$);
void $allRemover$();
void $notifier$($key$, Qor::Ptr<$Target$> const& member);
)");
}

std::string ChildMapEmitter::field() const {
    return fillIn("Qor::HashMap<$Target$, $Key$> $field$;\n");
}

std::string ChildMapEmitter::accessorDefinitions() const {
    return fillIn(R"(
Qor::Ptr<$Target$> $Class$::$name$($key$) const {
    return Qor::ownedEntity<$Attr$>(*this, $keyName$);
}

Qor::Ptr<$Target$> $Class$::$setter$($key$) {
    return Qor::setOwned<$Attr$>(*this, $keyName$);
}

Qor::Ptr<$Target$> $Class$::$builder$($key$) {
    return Qor::newOwned<$Attr$>(*this, $keyArgument$);
}

Qor::Ptr<$Target$> $Class$::$remover$($key$) {
    return Qor::delOwned<$Attr$>(*this, $keyName$);
}

void $Class$::$allRemover$() {
    Qor::delAll<$Attr$>(*this);
}

void $Class$::$notifier$($key$, Qor::Ptr<$Target$> const& member) {
    Qor::notifyOwned<$Attr$>(*this, $keyName$, member);
}
)");
}

}  // namespace Modelc
