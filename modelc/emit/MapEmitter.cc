#include <modelc/emit/MapEmitter.h>

namespace Modelc {

MapEmitter::MapEmitter(Entity const& entity, Attribute const& attribute)
    : KeyedEmitter(entity, attribute, "key") {
    hole("virtual", attribute.isVirtual ? "virtual " : "");
}

std::string MapEmitter::field() const { return fillIn("Qor::HashMap<$Member$, $Key$> $field$;\n"); }

std::string MapEmitter::accessorDeclarations() const {
    return fillIn(R"(
$Result$ $name$($key$) const;
)") + memberDeclaration() +
           fillIn(R"(
Qor::Ptr<$Member$> $builder$($key$, $value$);
$virtual$$Result$ $remover$($key$);
void $allRemover$();
$virtual$void $notifier$($key$, Qor::Ptr<$Member$> const& member);
$virtual$void $setter$($key$, $value$);
)");
}

std::string MapEmitter::accessorDefinitions() const {
    return fillIn(R"(
$Result$ $Class$::$name$($key$) const {
    return Qor::keyedValue<$Attr$>(*this, $keyName$);
}

)") + memberDefinition() +
           fillIn(R"(
void $Class$::$setter$($key$, $value$) {
    $store$
}

Qor::Ptr<$Class$::$Member$> $Class$::$builder$($key$, $value$) {
    return Qor::newKeyed<$Attr$>(*this, $keyArgument$, $valueArgument$);
}

$Result$ $Class$::$remover$($key$) {
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
