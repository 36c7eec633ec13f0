#include <modelc/emit/ScalarEmitter.h>

#include <modelc/emit/TypeText.h>

namespace Modelc {

ScalarEmitter::ScalarEmitter(Entity const& entity, Attribute const& attribute)
    : MemberEmitter(entity, attribute.name, attribute.doc), attribute_(attribute) {
    hole("id", std::to_string(attribute.id));
    hole("Type", typeText(*attribute.type, unit()));
    hole("parameter", parameter(*attribute.type, attribute.name, unit()));
    hole("argument", handedOn(*attribute.type, attribute.name));
    hole("initializer", initializer(*attribute.type, attribute.initial, unit()));
    hole("virtual", attribute.isVirtual ? "virtual " : "");
    hole("overridable", "");
    if (attribute.isVirtual) {
        hole("overridable", fillIn(R"(
static void set(Entity& entity, Value const& value) { entity.$setter$(value); }
)"));
    }
}

std::string ScalarEmitter::declarations() const {
    return fillIn(R"(
$doc$
$Type$ $name$() const { return $field$; }
$virtual$void $setter$($parameter$);
)");
}

std::string ScalarEmitter::field() const { return fillIn("$Type$ $field$$initializer$;\n"); }

std::string ScalarEmitter::handlers() const { return fillIn("virtual void $handler$();\n"); }

std::string ScalarEmitter::forwards() const {
    return fillIn(R"(
void $handler$() override {
    this->template forward<$Attr$>();
}
)");
}

std::string ScalarEmitter::wrapperDefinitions() const {
    return fillIn(R"(
void $Class$::GenericIf_::$handler$() {
    qorHeard($Attr$::id);
}
)");
}

std::string ScalarEmitter::descriptor() const {
    return fillIn(R"(
struct $Class$::$Attr$ : Qor::ScalarAttribute<$Class$, $id$, $Type$> {
    static constexpr char const* name = "$name$";
    static auto& field(auto& entity) { return entity.$field$; }
    static void tell(auto& hearer) { hearer.$handler$(); }
    $overridable$
};
)");
}

std::string ScalarEmitter::inlineDefinitions() const {
    if (attribute_.isVirtual) return {};
    return fillIn(R"(
inline void $Class$::$setter$($parameter$) {
    Qor::setScalar<$Attr$>(*this, $argument$);
}
)");
}

std::string ScalarEmitter::definitions() const {
    if (!attribute_.isVirtual) return {};
    return fillIn(R"(
void $Class$::$setter$($parameter$) {
    Qor::setScalar<$Attr$>(*this, $argument$);
}
)");
}

std::string ScalarEmitter::handlerDefinitions() const {
    return fillIn("void $Class$::NotifieeConst::$handler$() {}\n");
}

std::vector<std::string> ScalarEmitter::headers() const { return {attribute_.type->header}; }

}  // namespace Modelc
