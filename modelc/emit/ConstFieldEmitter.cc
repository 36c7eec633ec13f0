#include <modelc/emit/ConstFieldEmitter.h>

#include <modelc/emit/TypeText.h>

namespace Modelc {

ConstFieldEmitter::ConstFieldEmitter(Entity const& entity, Attribute const& attribute)
    : MemberEmitter(entity, attribute.name, attribute.doc), attribute_(attribute) {
    hole("id", std::to_string(attribute.id));
    hole("Type", typeText(*attribute.type, unit()));
}

std::string ConstFieldEmitter::declarations() const {
    return fillIn(R"(
$doc$
$Type$ $name$() const { return $field$; }
)");
}

std::string ConstFieldEmitter::field() const { return fillIn("$Type$ $field$;\n"); }

std::string ConstFieldEmitter::descriptor() const {
    return fillIn(R"(
struct $Class$::$Attr$ : Qor::ConstFieldAttribute<$Class$, $id$, $Type$> {
    static constexpr char const* name = "$name$";
    static auto& field(auto& entity) { return entity.$field$; }
};
)");
}

std::vector<std::string> ConstFieldEmitter::headers() const { return {attribute_.type->header}; }

}  // namespace Modelc
