#include <modelc/emit/ChildEmitter.h>

#include <modelc/emit/TypeText.h>

namespace Modelc {

ChildEmitter::ChildEmitter(Entity const& entity, Attribute const& attribute)
    : MemberEmitter(entity, attribute.name, attribute.doc), attribute_(attribute) {
    hole("id", std::to_string(attribute.id));
    hole("Target", typeText(*attribute.type, unit()));
}

std::string ChildEmitter::declarations() const {
    return fillIn(R"(
$doc$
Qor::Ptr<$Target$> $name$() const { return $field$; }
Qor::Ptr<$Target$> $setter$(Qor::Name name);
Qor::Ptr<$Target$> $builder$(Qor::Name name);
Qor::Ptr<$Target$> $remover$();
)");
}

std::string ChildEmitter::field() const { return fillIn("Qor::Ptr<$Target$> $field$;\n"); }

std::string ChildEmitter::handlers() const { return fillIn("virtual void $handler$();\n"); }

std::string ChildEmitter::forwards() const {
    return fillIn(R"(
void $handler$() override {
    this->template forward<$Attr$>();
}
)");
}

std::string ChildEmitter::wrapperDefinitions() const {
    return fillIn(R"(
void $Class$::GenericIf_::$handler$() {
    qorHeard($Attr$::id);
}
)");
}

std::string ChildEmitter::descriptor() const {
    return fillIn(R"(
struct $Class$::$Attr$ : Qor::ChildAttribute<$Class$, $id$, $Target$> {
    static constexpr char const* name = "$name$";
    static auto& field(auto& entity) { return entity.$field$; }
    static void tell(auto& hearer) { hearer.$handler$(); }
};
)");
}

std::string ChildEmitter::definitions() const {
    return fillIn(R"(
Qor::Ptr<$Target$> $Class$::$setter$(Qor::Name name) {
    return Qor::setChild<$Attr$>(*this, name);
}

Qor::Ptr<$Target$> $Class$::$builder$(Qor::Name name) {
    return Qor::newChild<$Attr$>(*this, std::move(name));
}

Qor::Ptr<$Target$> $Class$::$remover$() {
    return Qor::delChild<$Attr$>(*this);
}
)");
}

std::string ChildEmitter::handlerDefinitions() const {
    return fillIn("void $Class$::NotifieeConst::$handler$() {}\n");
}

std::vector<std::string> ChildEmitter::headers() const { return {attribute_.type->header}; }

}  // namespace Modelc
