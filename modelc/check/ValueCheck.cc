#include <modelc/check/ValueCheck.h>

#include <algorithm>

#include <modelc/check/Initials.h>
#include <modelc/check/NameRules.h>

namespace Modelc {
namespace {

constexpr std::string_view memberTypeExpected =
    "a type of the language, an enumeration, a value declared above or an extern value";

bool isReal(Type const& type) {
    return type.kind == TypeKind::builtin && type.builtin == Builtin::real;
}

bool isText(Builtin type) { return type == Builtin::text || type == Builtin::name; }

bool isBoolean(Type const& type) {
    return type.kind == TypeKind::builtin && type.builtin == Builtin::boolean;
}

// What may be equal to nothing, not to itself either.
bool holdsReal(Type const& type) {
    if (type.kind != TypeKind::value) return isReal(type);
    auto const& fields = type.value->fields;
    return std::any_of(fields.begin(), fields.end(), [](ValueField const& field) {
        return field.type != nullptr && holdsReal(*field.type);
    });
}

bool isU32(Type const& type) {
    return type.kind == TypeKind::builtin && type.builtin == Builtin::u32;
}

}  // namespace

bool canBeField(Type const& type) {
    return type.kind != TypeKind::builtin ? type.kind != TypeKind::entity : !isText(type.builtin);
}

bool canBeHashWord(Type const& type) {
    if (type.kind == TypeKind::builtin) return !isReal(type);
    return type.kind != TypeKind::value || type.value->hash;
}

bool canBeKey(Type const& type) {
    if (type.kind == TypeKind::value)
        return type.value->hash && type.value->ordering != Ordering::none && !holdsReal(type);
    if (type.kind == TypeKind::builtin) return !isReal(type) && !isBoolean(type);
    return type.kind == TypeKind::external;
}

void ValueCheck::enumeration(Tree::Enumeration const& tree, Enumeration& result) {
    std::set<std::string> names;
    for (Tree::Enumerator const& one : tree.enumerators) {
        if (!names.insert(one.name.text).second) {
            context_.report(one.name.at, "enumerator " + quoted(one.name.text) + " stands twice",
                            "each name once");
            continue;
        }
        enumerator(one, tree.damaged, result);
    }
    if (tree.enumerators.empty() && !tree.damaged) {
        context_.report(tree.name.at, quoted(tree.name.text) + " has no enumerator",
                        "at least one, with the number 0");
    }
}

void ValueCheck::enumerator(Tree::Enumerator const& tree, bool gapsAllowed, Enumeration& result) {
    if (!checkEnumeratorName(context_, tree.name)) return;
    std::string const fullName = result.unit->nameSpace + "::" + tree.name.text;
    if (!enumerators_.insert(fullName).second) {
        context_.report(tree.name.at,
                        "enumerator " + quoted(fullName) + " stands in another enumeration",
                        "a name of its own in the namespace");
    }
    std::uint64_t const expected =
        result.enumerators.empty() ? 0 : std::uint64_t{result.enumerators.back().number} + 1;
    if (tree.number.value != expected && !gapsAllowed) {
        context_.report(tree.number.at,
                        "number " + std::to_string(tree.number.value) + " of " +
                            quoted(tree.name.text) + " breaks the numbering",
                        std::to_string(expected));
    }
    result.enumerators.push_back(
        {tree.name.text, static_cast<std::uint32_t>(tree.number.value), tree.doc});
}

void ValueCheck::value(Tree::Value const& tree, Value& result) {
    Numbering numbering = Numbering::ofValue(context_);
    std::set<std::string> names;
    if (tree.damaged) damaged_.insert(result.type);
    if (tree.orderedBy.text == "fields") result.ordering = Ordering::fields;
    if (tree.orderedBy.text == "hash") result.ordering = Ordering::hash;
    result.hasOperatorNot = tree.hasOperatorNot;
    for (Tree::ValueMember const& member : tree.members) {
        numbering.own(member.id, member.name.text, tree.damaged);
        if (!names.insert(member.name.text).second) {
            context_.report(member.name.at, "member " + quoted(member.name.text) + " stands twice",
                            "each name once");
        } else if (member.computedFrom) {
            hash(member, result);
        } else if (checkValueMemberName(context_, member.name)) {
            member.isConst ? constant(member, result) : field(member, result);
        }
    }
    if (!tree.damaged) checkWhole(tree, result);
    declared_.insert(&result);
}

Type const* ValueCheck::memberType(Tree::ValueMember const& tree, Value const& owner) {
    Type const* const type = context_.resolve(tree.type, memberTypeExpected);
    if (type == nullptr) return nullptr;
    bool const isBelow = type->kind == TypeKind::value && !declared_.contains(type->value);
    if (isBelow || type->kind == TypeKind::entity) {
        std::string const what = type == owner.type ? " holds itself"
                                 : isBelow          ? " is declared below"
                                                    : " is an entity";
        context_.report(tree.type.at, quoted(tree.type.text) + what,
                        std::string(memberTypeExpected));
        return nullptr;
    }
    return type;
}

Initial ValueCheck::initial(Tree::ValueMember const& tree, Type const* type) {
    if (type == nullptr || !tree.initial) return {};
    return checkInitial(context_, *type, *tree.initial).value_or(Initial{});
}

void ValueCheck::field(Tree::ValueMember const& tree, Value& result) {
    if (tree.name.text == "hash") {
        context_.report(tree.name.at, "'hash' is no field", "'hash : U32 computed from (...)'");
        return;
    }
    Type const* type = memberType(tree, result);
    if (type != nullptr && !canBeField(*type)) {
        context_.report(
            tree.type.at, quoted(tree.type.text) + " cannot be a field of a value",
            "a number, Bool, an enumeration, a value declared above or an extern value");
        type = nullptr;
    }
    result.fields.push_back({static_cast<std::uint32_t>(tree.id.value), tree.name.text, type,
                             initial(tree, type), tree.doc});
}

void ValueCheck::constant(Tree::ValueMember const& tree, Value& result) {
    Type const* const type = memberType(tree, result);
    if (!tree.initial) {
        context_.report(tree.name.at, "the constant " + quoted(tree.name.text) + " has no value",
                        "'=' and its value");
    }
    result.constants.push_back({static_cast<std::uint32_t>(tree.id.value), tree.name.text, type,
                                initial(tree, type), tree.doc});
}

void ValueCheck::hash(Tree::ValueMember const& tree, Value& result) {
    Type const* const type = context_.resolve(tree.type, "U32");
    bool const isPlainHash =
        tree.name.text == "hash" && !tree.isConst && type != nullptr && isU32(*type);
    if (!isPlainHash) {
        context_.report(tree.name.at, quoted(tree.name.text) + " cannot be computed",
                        "'hash : U32 computed from (...)'");
        return;
    }
    ValueHash hash{static_cast<std::uint32_t>(tree.id.value), {}, tree.doc};
    for (Tree::Word const& word : *tree.computedFrom) hashWord(word, result, hash);
    result.hash = std::move(hash);
}

void ValueCheck::hashWord(Tree::Word const& word, Value const& result, ValueHash& hash) {
    auto const found = std::find_if(result.fields.begin(), result.fields.end(),
                                    [&](ValueField const& f) { return f.name == word.text; });
    if (found == result.fields.end()) {
        if (damaged_.contains(result.type)) return;
        context_.report(word.at, quoted(word.text) + " is no field of " + result.name,
                        "a field declared above");
        return;
    }
    bool const isTwice =
        std::find(hash.words.begin(), hash.words.end(), &*found) != hash.words.end();
    if (isTwice || (found->type != nullptr && !canBeHashWord(*found->type))) {
        context_.report(
            word.at, quoted(word.text) + (isTwice ? " stands twice" : " has no hash"),
            isTwice
                ? "each field once"
                : "a whole number, Bool, an enumeration, an extern value or a value with a hash");
        return;
    }
    hash.words.push_back(&*found);
}

void ValueCheck::checkWhole(Tree::Value const& tree, Value const& result) {
    bool const isMixed = !result.fields.empty() && !result.constants.empty();
    if (isMixed) {
        context_.report(tree.name.at, quoted(result.name) + " has fields and constants",
                        "the one or the other");
    }
    if (result.ordering == Ordering::hash && !result.hash) {
        context_.report(tree.orderedBy.at, quoted(result.name) + " has no hash to be ordered by",
                        "'hash : U32 computed from (...)' among its members");
    }
    if (result.fields.empty() && (result.ordering != Ordering::none || result.hasOperatorNot)) {
        context_.report(tree.name.at, quoted(result.name) + " has no field to be compared",
                        "a value with fields");
    }
}

}  // namespace Modelc
