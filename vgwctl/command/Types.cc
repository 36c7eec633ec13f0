#include <vgwctl/command/Types.h>

#include <vgwctl/state/Place.h>

#include <fnmatch.h>

#include <ostream>

namespace Vgwctl {
namespace {

std::string textOfName(Qor::QorType const* type) {
    return type != nullptr ? std::string(type->fullName().view()) : "";
}

char const* sortOf(Qor::QorType const& type) {
    if (type.isEnumType()) return "enumeration";
    return type.isEntity() ? "entity" : "value";
}

std::string listed(std::span<Qor::QorAttr::Argument const> arguments) {
    std::string text;
    for (auto const& argument : arguments)
        text += (text.empty() ? "" : ", ") + std::string(argument.name.view()) + " : " +
                std::string(argument.type.view());
    return text;
}

// What can be done with it, in a word.
char const* accessOf(Qor::QorAttr const& attribute) {
    if (attribute.introspection().isFunction()) return "call";
    if (attribute.flags().isLiteral()) return "literal";
    if (attribute.flags().isInstantiating()) return "create";
    return attribute.flags().isWritable() ? "write" : "read";
}

Table::Row rowOf(Qor::QorAttr const& attribute) {
    bool const isCall = attribute.introspection().isFunction();
    return {{Value::Kind::number, std::to_string(attribute.id()), {}},
            textValue(std::string(attribute.name().view())),
            textValue(textOfName(attribute.valueType())),
            textValue(textOfName(attribute.keyType())),
            textValue(accessOf(attribute)),
            textValue(isCall ? "(" + listed(attribute.arguments()) + ")" : ""),
            textValue(textOfName(attribute.definedBy()))};
}

// In cells that hold words of ours quotes would only be in the way.
TableStyle bareStyle(Context& context) {
    TableStyle style = context.options().style;
    if (style.data == TextForm::string) style.data = TextForm::bare;
    return style;
}

}  // namespace

ExitCode runTypes(Context& context, Arguments const& arguments) {
    context.root();
    std::string const pattern = arguments.operands.empty() ? "*" : arguments.operands[0];
    Table table({"type", "sort", "base", "attributes"});
    for (Qor::QorType* const type : Qor::QorType::types()) {
        auto const name = textOfName(type);
        if (::fnmatch(pattern.c_str(), name.c_str(), 0) != 0) continue;
        table.rowInc({textValue(name),
                      textValue(sortOf(*type)),
                      textValue(textOfName(type->base())),
                      {Value::Kind::number, std::to_string(type->attributes().size()), {}}});
    }
    table.print(context.out(), bareStyle(context));
    return ExitCode::success;
}

ExitCode runDescribe(Context& context, Arguments const& arguments) {
    context.root();
    Qor::QorType const& type = neededType(arguments.operands[0]);
    if (context.options().style.format == Format::table) {
        context.out() << textOfName(&type) << ", " << sortOf(type);
        if (type.base() != nullptr) context.out() << ", a " << textOfName(type.base());
        if (type.isEntity())
            context.out() << ", made from (" << listed(type.constructorArgs()) << ")";
        context.out() << "\n\n";
    }
    Table table({"id", "attribute", "type", "key", "access", "arguments", "definedBy"});
    for (auto const& attribute : type.attributes()) table.rowInc(rowOf(*attribute));
    table.print(context.out(), bareStyle(context));
    return ExitCode::success;
}

}  // namespace Vgwctl
