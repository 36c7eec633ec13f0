#include <modelc/check/EntityCheck.h>

#include <algorithm>

#include <modelc/check/Initials.h>
#include <modelc/check/NameRules.h>

namespace Modelc {
namespace {

constexpr std::string_view frameworkEntity = "Qor::Entity";
constexpr std::string_view baseExpected = "Qor::Entity or an entity declared above";

Member const* findOwnMember(Entity const& entity, std::string const& name) {
    auto const found = std::find_if(entity.members.begin(), entity.members.end(),
                                    [&](Member const& m) { return nameOf(m) == name; });
    return found == entity.members.end() ? nullptr : &*found;
}

}  // namespace

Member const* findMember(Entity const& entity, std::string const& name) {
    for (Entity const* at = &entity; at != nullptr; at = at->base) {
        if (Member const* found = findOwnMember(*at, name)) return found;
    }
    return nullptr;
}

void EntityCheck::base(Tree::Entity const& tree, Entity& result) {
    if (tree.base.text.empty()) {
        baseless_.insert(&result);
        return;
    }
    if (tree.base.text == frameworkEntity) return;
    Symbol const* const found = context_.symbols.lookUp(tree.base.text, *context_.unit);
    if (found == nullptr || found->type->kind != TypeKind::entity) {
        baseless_.insert(&result);
        if (found == nullptr && context_.isIncomplete) return;
        std::string const what = found == nullptr ? "unknown base " : "no entity: ";
        context_.report(tree.base.at, what + quoted(tree.base.text), std::string(baseExpected));
        return;
    }
    result.base = found->type->entity;
}

// A circle of bases is cut at each class on it, so that nothing later runs in it.
void EntityCheck::checkChain(Tree::Entity const& tree, Entity& result) {
    std::uint32_t level = 1;
    Entity const* at = result.base;
    while (at != nullptr && at != &result && level <= deepest) {
        at = at->base;
        ++level;
    }
    bool const isCircle = at == &result;
    bool const isBelow = result.base != nullptr && !complete_.contains(result.base);
    if (level <= deepest && !isCircle && !isBelow) return;
    std::string const what = isCircle  ? " is a base of itself"
                             : isBelow ? " has a base that is declared below it"
                                       : " has bases nested too deep";
    context_.report(tree.base.at, quoted(result.name) + what,
                    isCircle || isBelow ? std::string(baseExpected)
                                        : "at most " + std::to_string(deepest) + " levels");
    result.base = nullptr;
    baseless_.insert(&result);
}

void EntityCheck::members(Tree::Entity const& tree, Entity& result) {
    checkChain(tree, result);
    bool const isOpen = baseless_.contains(&result);
    if (result.base != nullptr && baseless_.contains(result.base)) baseless_.insert(&result);
    result.hasFactory = tree.hasFactory;
    constructor(tree, result);
    Numbering numbering = Numbering::ofEntity(context_, result.level());
    for (Tree::EntityMember const& one : tree.members) {
        if (isOpen || baseless_.contains(&result)) {
            Numbering unknown(context_, 0, 0xffffffff);
            member(one, true, unknown, result);
        } else {
            member(one, tree.damaged, numbering, result);
        }
    }
    if (!tree.damaged) constructorArgument(tree, result);
    kind(tree, result);
    complete_.insert(&result);
}

void EntityCheck::constructor(Tree::Entity const& tree, Entity& result) {
    Tree::Argument const& argument = tree.constructorArgument;
    if (argument.name.text.empty()) return;
    Type const* const type = context_.resolve(argument.type, "Qor::Name or a value type");
    result.constructorArgument = {argument.name.text, type};
    result.isNamed = argument.name.text == "name";
    if (result.isNamed && type != nullptr && type->fullName != "Qor::Name") {
        context_.report(argument.type.at,
                        "the name of " + quoted(result.name) + " is a " + type->fullName,
                        "Qor::Name");
    }
    if (!result.isNamed && tree.hasFactory) {
        context_.report(tree.name.at, quoted(result.name) + " has a factory but no name",
                        "the constructor argument 'name : Qor::Name'");
    }
}

// An argument other than the name is an attribute of the class, or the base's own argument passed
// on.
void EntityCheck::constructorArgument(Tree::Entity const& tree, Entity& result) {
    Tree::Argument const& argument = tree.constructorArgument;
    if (baseless_.contains(&result)) return;
    Argument const& own = result.constructorArgument;
    bool const isBases = result.base != nullptr &&
                         result.base->constructorArgument.name == own.name &&
                         result.base->constructorArgument.type == own.type;
    if (result.base != nullptr && !result.base->isNamed && !isBases) {
        context_.report(argument.name.at, quoted(own.name) + " is not what the base is built from",
                        quoted(result.base->constructorArgument.name));
        return;
    }
    if (result.isNamed || isBases) return;
    Member const* const found = findOwnMember(result, own.name);
    auto const* attribute = found == nullptr ? nullptr : std::get_if<Attribute>(found);
    bool const fits = attribute != nullptr && attribute->kind == AttributeKind::constructed &&
                      attribute->type == own.type;
    if (fits || own.type == nullptr) return;
    context_.report(argument.name.at,
                    "constructor argument " + quoted(own.name) + " is no attribute of that type",
                    "'name : Qor::Name' or a scalar attribute of " + result.name);
}

void EntityCheck::kind(Tree::Entity const& tree, Entity& result) {
    if (!tree.as || baseless_.contains(&result)) return;
    Member const* const found = result.base == nullptr ? nullptr : findMember(*result.base, "type");
    auto const* attribute = found == nullptr ? nullptr : std::get_if<Attribute>(found);
    bool const fits = attribute != nullptr && attribute->kind == AttributeKind::scalar &&
                      attribute->type != nullptr && attribute->type->kind == TypeKind::enumeration;
    if (!fits) {
        context_.report(tree.as->at, "no base of " + quoted(result.name) + " tells kinds apart",
                        "a base with an attribute 'type' of an enumeration");
        return;
    }
    auto const& all = attribute->type->enumeration->enumerators;
    auto const named = std::find_if(all.begin(), all.end(),
                                    [&](Enumerator const& e) { return e.name == tree.as->text; });
    if (named == all.end()) {
        context_.report(tree.as->at, quoted(tree.as->text) + " is no enumerator",
                        "an enumerator of " + attribute->type->fullName);
        return;
    }
    if (!kinds_.insert(&*named).second) {
        context_.report(tree.as->at, "another class stands as " + quoted(tree.as->text),
                        "an enumerator of its own");
    }
    result.kind = KindMark{attribute, &*named};
}

}  // namespace Modelc
