#include <modelc/emit/ValueEmitter.h>

#include <modelc/check/Spelling.h>
#include <modelc/emit/DocText.h>
#include <modelc/emit/Includes.h>
#include <modelc/emit/Origin.h>
#include <modelc/emit/TypeText.h>

namespace Modelc {

ValueEmitter::ValueEmitter(Value const& value) : value_(value) {
    Unit const& unit = *value.unit;
    holes_ = {
        {"origin", originText(unit, {})},
        {"guard", includeGuard(value.type->header)},
        {"header", value.type->header},
        {"namespace", unit.nameSpace},
        {"export", unit.exportMacro.empty() ? "" : unit.exportMacro + " "},
        {"doc", docText(value.doc, 0)},
        {"Value", value.name},
        {"fullName", value.type->fullName},
        {"descriptorNames", descriptorNames()},
        {"descriptorList", descriptorList()},
        {"hashedList", hashedList()},
        {"orderedByHash",
         value.ordering == Ordering::hash ? "static constexpr bool orderedByHash = true;" : ""},
        {"fieldConstructor", fieldConstructor()},
        {"readers", readers() + constants()},
        {"hash", hash()},
        {"fieldPart", fieldPart()},
        {"descriptors", descriptors()},
        {"includes", includes()},
    };
    holes_["comparisons"] = comparisons();
}

std::string ValueEmitter::includes() const {
    Includes result;
    for (char const* header : {"iosfwd", "qor/attrlog/Declarations.h", "qor/core/Hash.h",
                               "qor/core/Ptr.h", "qor/model/ValueText.h"}) {
        result.add(header);
    }
    if (value_.ordering == Ordering::fields) result.add("tuple");
    result.add(value_.unit->exportHeader);
    for (ValueField const& field : value_.fields) result.add(field.type->header);
    for (ValueField const& constant : value_.constants) result.add(constant.type->header);
    if (fieldConstructor().find("std::move") != std::string::npos) result.add("utility");
    return result.text();
}

std::string ValueEmitter::descriptorNames() const {
    std::string result;
    for (ValueField const& field : value_.fields) {
        result += "struct " + Spelling(field.name).fieldDescriptor() + ";\n";
    }
    return result;
}

std::string ValueEmitter::descriptorList() const {
    std::string result;
    for (ValueField const& field : value_.fields) {
        result += (result.empty() ? "" : ", ") + Spelling(field.name).fieldDescriptor();
    }
    return result;
}

std::string ValueEmitter::hashedList() const {
    if (!value_.hash) return {};
    std::string list;
    for (ValueField const* word : value_.hash->words) {
        list += (list.empty() ? "" : ", ") + Spelling(word->name).fieldDescriptor();
    }
    return "using QorHashed = Qor::FieldList<" + list + ">;";
}

std::string ValueEmitter::descriptors() const {
    std::string result;
    for (ValueField const& field : value_.fields) {
        Spelling const spelling(field.name);
        result += fill(R"(

struct $Value$::$Field$ {
    using Type = $Type$;
    static constexpr char const* name = "$name$";
    static auto& field(auto& value) { return value.$field$; }
};
)",
                       {{"Value", value_.name},
                        {"Field", spelling.fieldDescriptor()},
                        {"Type", typeText(*field.type, *value_.unit)},
                        {"name", field.name},
                        {"field", spelling.field()}});
    }
    return result;
}

std::string ValueEmitter::fieldConstructor() const {
    if (value_.fields.empty()) return {};
    std::string parameters;
    std::string initializers;
    for (ValueField const& field : value_.fields) {
        bool const isFirst = parameters.empty();
        parameters += (isFirst ? "" : ", ") + parameter(*field.type, field.name, *value_.unit);
        initializers += (isFirst ? "" : ", ") + Spelling(field.name).field() + "(" +
                        handedOn(*field.type, field.name) + ")";
    }
    std::string const isExplicit = value_.fields.size() == 1 ? "explicit " : "";
    return isExplicit + value_.name + "(" + parameters + ") noexcept : " + initializers + " {}\n";
}

std::string ValueEmitter::readers() const {
    std::string result;
    for (ValueField const& field : value_.fields) {
        result += docText(field.doc, 4) + typeText(*field.type, *value_.unit) + " " + field.name +
                  "() const noexcept { return " + Spelling(field.name).field() + "; }\n";
    }
    return result;
}

std::string ValueEmitter::constants() const {
    std::string result;
    for (ValueField const& constant : value_.constants) {
        bool const isLiteral =
            (constant.type->kind == TypeKind::builtin && !isText(*constant.type)) ||
            constant.type->kind == TypeKind::enumeration;
        result += docText(constant.doc, 4) + "static " + (isLiteral ? "constexpr " : "") +
                  typeText(*constant.type, *value_.unit) + " " + constant.name + "() { return " +
                  initialText(*constant.type, constant.initial, *value_.unit) + "; }\n";
    }
    return result;
}

std::string ValueEmitter::hash() const {
    if (!value_.hash) return {};
    std::string words;
    std::string names;
    for (ValueField const* word : value_.hash->words) {
        words +=
            (words.empty() ? "" : ", ") + ("Qor::hashWord(" + Spelling(word->name).field() + ")");
        names += (names.empty() ? "" : ", ") + word->name;
    }
    Doc doc = value_.hash->doc;
    if (doc.empty())
        doc = {"One-at-a-time hash of " + names + ", one 32-bit word each, in this order."};
    return fill(R"(
$doc$
Qor::U32 hash() const noexcept {
    return Qor::oneAtATimeHash($words$);
}
)",
                {{"doc", docText(doc, 4)}, {"words", words}});
}

std::string ValueEmitter::ordering() const {
    if (value_.ordering == Ordering::hash) {
        return fill(R"(
/// By hash: two different values with one hash are neither less nor greater than each other.
bool operator<($Value$ const& rhs) const noexcept { return hash() < rhs.hash(); }
)",
                    holes_);
    }
    std::string own;
    std::string other;
    for (ValueField const& field : value_.fields) {
        std::string const name = Spelling(field.name).field();
        own += (own.empty() ? "" : ", ") + name;
        other += (other.empty() ? "rhs." : ", rhs.") + name;
    }
    return fill(R"(
/// By the fields, in their order.
bool operator<($Value$ const& rhs) const noexcept {
    return std::tie($own$) < std::tie($other$);
}
)",
                with(holes_, {{"own", own}, {"other", other}}));
}

std::string ValueEmitter::comparisons() const {
    std::string result = value_.fields.empty()
                             ? fill(
                                   "bool operator==($Value$) const noexcept { return true; }\n"
                                   "bool operator!=($Value$) const noexcept { return false; }\n",
                                   holes_)
                             : fill(
                                   "bool operator==($Value$ const&) const noexcept = default;\n"
                                   "bool operator!=($Value$ const& rhs) const noexcept { return "
                                   "!(*this == rhs); }\n",
                                   holes_);
    if (value_.ordering != Ordering::none) {
        result += ordering() + fill(R"(
bool operator<=($Value$ const& rhs) const noexcept { return !(rhs < *this); }
bool operator>($Value$ const& rhs) const noexcept { return !(*this <= rhs); }
bool operator>=($Value$ const& rhs) const noexcept { return !(*this < rhs); }
)",
                                    holes_);
    }
    if (value_.hasOperatorNot) {
        result += fill(R"(
/// Whether this is the default value.
bool operator!() const noexcept { return *this == $Value$(); }
)",
                       holes_);
    }
    return result;
}

std::string ValueEmitter::fields() const {
    std::string result;
    for (ValueField const& field : value_.fields) {
        result += typeText(*field.type, *value_.unit) + " " + Spelling(field.name).field() +
                  initializer(*field.type, field.initial, *value_.unit) + ";\n";
    }
    return result;
}

std::string ValueEmitter::fieldPart() const {
    if (value_.fields.empty()) return {};
    return "private:\n" + fill("  $fields$\n", {{"fields", fields()}});
}

}  // namespace Modelc
