#include <modelc/emit/AttrLogKeyedMember.h>

#include <modelc/emit/AttrLogEmitter.h>
#include <modelc/emit/TypeText.h>

namespace Modelc {
namespace {

constexpr std::string_view childAdapterDeclarations = R"(
Qor::Ptr<$Target$::QorNboAttrLogSa> $adapterSetter$(Qor::AdapterState::Bits bits, Qor::Ptr<$Target$> const& entity, Qor::U32 version, Qor::Ptr<Qor::NboAttrLog::Out> const& out, Qor::PtrInterface* owner);
void $adapterRemover$(Qor::Ptr<$Target$> const& entity);
)";

constexpr std::string_view childAdapterDefinitions = R"(

Qor::Ptr<$Target$::QorNboAttrLogSa> $Class$::QorNboAttrLogSa::$adapterSetter$(Qor::AdapterState::Bits bits, Qor::Ptr<$Target$> const& entity, Qor::U32 version, Qor::Ptr<Qor::NboAttrLog::Out> const& out, Qor::PtrInterface* owner) {
    return Qor::announceChild<$Stream$>(*this, bits, entity, version, out, owner);
}

void $Class$::QorNboAttrLogSa::$adapterRemover$(Qor::Ptr<$Target$> const& entity) {
    Qor::deleteChildAdapter<$Stream$>(*this, entity);
}
)";

}  // namespace

AttrLogKeyedMember::AttrLogKeyedMember(Entity const& entity, Attribute const& attribute,
                                       std::string const& base, std::string const& result,
                                       std::string const& sing, std::string const& handedOn,
                                       std::string const& function)
    : AttrLogMember(entity, attribute, base) {
    hole("Key", typeText(*attribute.key, unit()));
    hole("key", parameter(*attribute.key, "key", unit()));
    hole("result", result);
    hole("singParameters", sing);
    hole("singArguments", handedOn);
    hole("return", result == "void" ? "" : "return ");
    hole("function", function);
}

std::string AttrLogKeyedMember::declarations() const {
    return fillIn(R"(
virtual void $handler$($key$);
$result$ $sing$($key$, $singParameters$);
bool $coll$();
)");
}

std::string AttrLogKeyedMember::definitions() const {
    return fillIn(R"(
void $Class$::QorNboAttrLogSa::$handler$($key$) {
    Qor::serializeChangedKey<$Stream$>(*this, key);
}

$result$ $Class$::QorNboAttrLogSa::$sing$($key$, $singParameters$) {
    $return$Qor::$function$<$Stream$>(*this, key, $singArguments$);
}

bool $Class$::QorNboAttrLogSa::$coll$() {
    return Qor::serializeCollection<$Stream$>(*this);
}
)");
}

std::string AttrLogKeyedMember::flowOut() const {
    return fillIn(R"(
using $DirtyClass$ = Qor::DirtyKey<$Key$>;
using $DirtyIterator$ = Qor::DirtyKeyMap<$Key$>::Iterator;
bool $synced$() const { return hasSynced<$Stream$>(); }
void $synced$Is(bool synced) { hasSyncedIs<$Stream$>(synced); }
void $dirty$Is($key$, bool dirty) { dirtyKeyIs<$Stream$>(key, dirty); }
Qor::Ptr<$DirtyClass$> $dirtyBuilder$($key$, bool dirty) { return newDirtyKey<$Stream$>(key, dirty); }
void $dirty$Del($key$) { dirtyKeyDel<$Stream$>(key); }
$DirtyIterator$ $dirty$Iterator() { return $DirtyIterator$(&dirtyKeys<$Stream$>()); }
)");
}

std::string AttrLogKeyedMember::forwarding() const {
    return fillIn(R"(
void $handler$($key$) override { forward(&QorNboAttrLogSa::$handler$, key); }
)");
}

AttrLogChildMapMember::AttrLogChildMapMember(Entity const& entity, Attribute const& attribute)
    : AttrLogKeyedMember(entity, attribute, "StreamChildMember", "void",
                         "Qor::Ptr<" + typeText(*attribute.type, *entity.unit) + "> const& value",
                         "value", "serializeChildMember") {
    hole("Target", typeText(*attribute.type, unit()));
}

std::string AttrLogChildMapMember::declarations() const {
    return AttrLogKeyedMember::declarations() + fillIn(childAdapterDeclarations);
}

std::string AttrLogChildMapMember::definitions() const {
    return AttrLogKeyedMember::definitions() + fillIn(childAdapterDefinitions);
}

std::string AttrLogChildMapMember::adapterHeaderOfTarget() const {
    return adapterHeader(*attribute().type->entity);
}

AttrLogChildMember::AttrLogChildMember(Entity const& entity, Attribute const& attribute)
    : AttrLogMember(entity, attribute, "StreamChild") {
    hole("Target", typeText(*attribute.type, unit()));
}

std::string AttrLogChildMember::declarations() const {
    return fillIn("virtual void $handler$();\n") + fillIn(childAdapterDeclarations);
}

std::string AttrLogChildMember::definitions() const {
    return fillIn(R"(
void $Class$::QorNboAttrLogSa::$handler$() {
    Qor::serializeChild<$Stream$>(*this);
}
)") + fillIn(childAdapterDefinitions);
}

std::string AttrLogChildMember::adapterHeaderOfTarget() const {
    return adapterHeader(*attribute().type->entity);
}

}  // namespace Modelc
