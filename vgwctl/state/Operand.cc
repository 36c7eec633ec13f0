#include <vgwctl/state/Operand.h>

#include <vgwctl/options/Failure.h>
#include <vgwctl/state/Place.h>

#include <nlohmann/json.hpp>

#include <qor/core/Strep.h>

#include <array>
#include <utility>

namespace Vgwctl {
namespace {

using Qor::GenericIf;
using OpId = GenericIf::AttributeOp::OpId;
using Relation = Operand::Relation;

// Longer ones first.
constexpr std::array<std::pair<std::string_view, Relation>, 6> relations{
    {{"!=", Relation::unequal},
     {"<=", Relation::atMost},
     {">=", Relation::atLeast},
     {"=", Relation::equal},
     {"<", Relation::less},
     {">", Relation::greater}}};

OpId operationOf(Relation relation) {
    switch (relation) {
        case Relation::none:
        case Relation::equal:
            return OpId::opEq;
        case Relation::unequal:
            return OpId::opNe;
        case Relation::less:
            return OpId::opLt;
        case Relation::atMost:
            return OpId::opLe;
        case Relation::greater:
            return OpId::opGt;
        case Relation::atLeast:
            return OpId::opGe;
    }
    return OpId::opEq;
}

// Takes a relation off the front, if one stands there.
Relation taken(std::string_view& text) {
    for (auto const& [sign, relation] : relations) {
        if (!text.starts_with(sign)) continue;
        text.remove_prefix(sign.size());
        return relation;
    }
    return Relation::none;
}

// The end of the JSON string at the start of `text`.
std::size_t quotedLength(std::string_view text) {
    for (std::size_t at = 1; at < text.size(); ++at) {
        if (text[at] == '\\') {
            ++at;
        } else if (text[at] == '"') {
            return at + 1;
        }
    }
    throw Failure("no closing quote in " + std::string(text));
}

std::string plain(std::string_view text) {
    if (text.empty() || text.front() != '"') return std::string(text);
    auto const parsed = nlohmann::json::parse(text, nullptr, false);
    if (!parsed.is_string()) throw Failure(std::string(text) + " is no text between double quotes");
    return parsed.get<std::string>();
}

// Takes what stands in front of the next relation.
std::string takenWord(std::string_view& text) {
    std::size_t const length = !text.empty() && text.front() == '"'
                                   ? quotedLength(text)
                                   : std::min(text.find_first_of("=!<>"), text.size());
    std::string word = plain(text.substr(0, length));
    text.remove_prefix(length);
    return word;
}

std::string literalsOf(Qor::QorType const& type) {
    std::string names;
    for (auto const& attribute : type.attributes())
        if (attribute->flags().isLiteral())
            names += (names.empty() ? "" : ", ") + std::string(attribute->name().view());
    return names;
}

// Values whose text form is quoted are written without their quotes.
bool isTextual(Qor::QorType& type) {
    if (type.isEnumType()) return true;
    return type.genericIf(static_cast<void const*>(nullptr), true)
        ->strRep()
        .view()
        .starts_with('\'');
}

GenericIf::Ptr memberAt(Operand const& operand, Qor::QorAttr const& attribute,
                        GenericIf::Ptr const& wrapper) {
    if (!operand.key) return wrapper->attributeOp(attribute.id());
    if (attribute.keyType() == nullptr)
        throw Failure(operand.attribute + " is no collection: it takes no key");
    GenericIf::Ptr const key = valueFrom(*attribute.keyType(), *operand.key, operand.attribute);
    bool const isThere =
        wrapper->attributeOp(attribute.id(), OpId::opExists, key)->strRep() == "true";
    return isThere ? wrapper->attributeOp(attribute.id(), OpId::opGet, key) : nullptr;
}

}  // namespace

Operand operandOf(std::string_view word) {
    Operand operand;
    std::string_view rest = word;
    std::size_t const length = std::min(rest.find_first_of(":=!<>"), rest.size());
    operand.attribute = rest.substr(0, length);
    rest.remove_prefix(length);
    if (operand.attribute.empty())
        throw Failure(std::string(word) + ": expected ATTRIBUTE[:KEY][=VALUE]");
    if (rest.starts_with(':')) {
        rest.remove_prefix(1);
        operand.key = takenWord(rest);
    }
    operand.relation = taken(rest);
    if (operand.relation == Relation::none && !rest.empty())
        throw Failure(std::string(word) + ": expected =, !=, <, <=, > or >= at " +
                      std::string(rest));
    if (rest.starts_with('='))
        throw Failure(std::string(word) + ": a value that begins with = stands between double " +
                      "quotes; for equality one = is enough");
    operand.value = plain(rest);
    return operand;
}

GenericIf::Ptr valueFrom(Qor::QorType& type, std::string const& word, std::string_view of) {
    try {
        if (type.isEntity()) {
            Qor::Entity::Ptr const entity = word.empty() ? nullptr : neededEntity(word);
            return type.genericIf_(entity.ptr(), false);
        }
        Qor::String8 const text{std::string_view(word)};
        return type.genericIfFromStrep(isTextual(type) ? Qor::valueToStrep(text) : text, false);
    } catch (Qor::Exception const& e) {
        std::string const why = type.isEnumType() ? "expected " + literalsOf(type) : e.what();
        throw Failure(std::string(of) + ": " + (word.empty() ? "\"\"" : word) + " is no " +
                      std::string(type.fullName().view()) + ": " + why);
    }
}

bool holds(Operand const& operand, Qor::Entity& entity) {
    GenericIf::Ptr const wrapper = wrapped(entity);
    Qor::QorAttr const& attribute = neededAttribute(*entity.fwkType(), operand.attribute);
    if (attribute.keyType() != nullptr && !operand.key)
        throw Failure(operand.attribute + " is a collection: write " + operand.attribute +
                      ":KEY=VALUE");
    GenericIf::Ptr const held = memberAt(operand, attribute, wrapper);
    if (!held) return false;
    // What has no order of its own.
    Qor::QorType& type = *attribute.valueType();
    if (type.isEntity() || type.isEnumType()) {
        std::string const right =
            type.isEntity() ? operand.value
                            : valueOf(valueFrom(type, operand.value, operand.attribute)).text;
        bool const isEqual = valueOf(held).text == right;
        if (operand.relation == Relation::equal) return isEqual;
        if (operand.relation == Relation::unequal) return !isEqual;
        throw Failure(operand.attribute + " is compared by = and != only");
    }
    GenericIf::Ptr const right = valueFrom(type, operand.value, operand.attribute);
    return held->attributeOp(0, operationOf(operand.relation), right)->strRep() == "true";
}

Value valueAt(Operand const& operand, Qor::Entity& entity) {
    Qor::QorAttr const& attribute = neededAttribute(*entity.fwkType(), operand.attribute);
    if (attribute.introspection().isFunction())
        throw Failure(operand.attribute + " is an operation: use call");
    GenericIf::Ptr const wrapper = wrapped(entity);
    if (!operand.key) return valueOf(*wrapper, attribute);
    GenericIf::Ptr const held = memberAt(operand, attribute, wrapper);
    if (!held)
        throw absent("a member " + *operand.key + " of " + operand.attribute + " in " +
                     std::string(entity.uriPath().view()));
    return valueOf(held);
}

}  // namespace Vgwctl
