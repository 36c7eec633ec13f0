// The members of an entity: attributes of every kind, and operations.
#include <algorithm>

#include <modelc/check/EntityCheck.h>
#include <modelc/check/Initials.h>
#include <modelc/check/NameRules.h>
#include <modelc/check/ValueCheck.h>

namespace Modelc {
namespace {

constexpr std::string_view typeExpected =
    "a type of the language, an enumeration, a value, an extern value, or owns or refers and an "
    "entity";
constexpr std::string_view keyExpected =
    "Qor::String8, Qor::Name, U8, U16, U32, U64, I32, an extern value, or an ordered value with a "
    "hash and without fractions";

bool sameSignature(Operation const& a, Operation const& b) {
    auto const same = [](Argument const& x, Argument const& y) { return x.type == y.type; };
    return a.result == b.result && a.isConst == b.isConst && a.isStatic == b.isStatic &&
           std::equal(a.arguments.begin(), a.arguments.end(), b.arguments.begin(),
                      b.arguments.end(), same);
}

}  // namespace

void EntityCheck::member(Tree::EntityMember const& tree, bool gapsAllowed, Numbering& numbering,
                         Entity& result) {
    auto const* form = std::get_if<Tree::OperationForm>(&tree.form);
    Member const* const inherited =
        result.base == nullptr ? nullptr : findMember(*result.base, tree.name.text);
    auto const* declared = inherited == nullptr ? nullptr : std::get_if<Operation>(inherited);
    bool const overrides = form != nullptr && declared != nullptr && declared->isVirtual;
    if (overrides) {
        numbering.inherited(tree.id, tree.name.text, declared->id, result.base->type->fullName);
    } else {
        numbering.own(tree.id, tree.name.text, gapsAllowed);
    }
    if (inherited != nullptr && !overrides) {
        context_.report(
            tree.name.at,
            "a base of " + quoted(result.name) + " has the member " + quoted(tree.name.text),
            "a name of its own, or a virtual operation of the base");
        return;
    }
    if (!checkName(tree, result)) return;
    if (form != nullptr) {
        operation(tree, *form, result);
    } else {
        attribute(tree, std::get<Tree::AttributeForm>(tree.form), result);
    }
}

bool EntityCheck::checkName(Tree::EntityMember const& tree, Entity const& result) {
    Member const* const found = findMember(result, tree.name.text);
    bool const isOwn = found != nullptr && (result.base == nullptr ||
                                            findMember(*result.base, tree.name.text) != found);
    if (isOwn) {
        context_.report(tree.name.at, "member " + quoted(tree.name.text) + " stands twice",
                        "each name once");
        return false;
    }
    return checkEntityMemberName(context_, tree.name);
}

void EntityCheck::attribute(Tree::EntityMember const& tree, Tree::AttributeForm const& form,
                            Entity& result) {
    Attribute made;
    made.id = static_cast<std::uint32_t>(tree.id.value);
    made.name = tree.name.text;
    made.isVirtual = tree.isVirtual;
    made.doc = tree.doc;
    made.type = context_.resolve(form.type, typeExpected);
    if (form.key) made.key = context_.resolve(*form.key, keyExpected);
    bool const isKnown = made.type != nullptr && (made.key != nullptr || !form.key) &&
                         checkAbove(form.type, made.type, result);
    bool const isArgument = !result.isNamed && result.constructorArgument.name == made.name;
    if (isArgument) made.kind = AttributeKind::constructed;
    bool const fits = isKnown && (form.relation != Tree::Relation::none ? related(form, made)
                                  : form.key                            ? keyed(form, made)
                                                                        : scalar(tree, form, made));
    if (fits) checkModifiers(tree, form, made);
    result.members.emplace_back(std::move(made));
}

bool EntityCheck::checkAbove(Tree::Word const& name, Type const* type, Entity const& result) {
    if (type->kind != TypeKind::entity || type->entity == &result) return true;
    if (complete_.contains(type->entity)) return true;
    context_.report(name.at, quoted(name.text) + " is declared below",
                    "an entity declared above, or the class itself");
    return false;
}

bool EntityCheck::scalar(Tree::EntityMember const& tree, Tree::AttributeForm const& form,
                         Attribute& result) {
    if (result.type->kind == TypeKind::entity) {
        context_.report(form.type.at, "the entity " + quoted(form.type.text) + " stands as a value",
                        "owns or refers in front of it");
        return false;
    }
    if (result.kind == AttributeKind::constructed && form.initial) {
        context_.report(form.initial->at, quoted(tree.name.text) + " is the constructor's argument",
                        "no default");
        return false;
    }
    if (form.initial) {
        result.initial = checkInitial(context_, *result.type, *form.initial).value_or(Initial{});
    }
    return true;
}

bool EntityCheck::keyed(Tree::AttributeForm const& form, Attribute& result) {
    bool const isBuiltin = result.type->kind == TypeKind::builtin;
    bool const isFlag = isBuiltin && result.type->builtin == Builtin::boolean;
    bool const isText = isBuiltin && result.type->builtin == Builtin::text;
    result.kind = isFlag ? AttributeKind::set : AttributeKind::map;
    if (!isFlag && !isText) {
        context_.report(form.type.at, "a collection of " + quoted(form.type.text),
                        "Bool for a set, Qor::String8 for a map, or owns or refers and an entity");
        return false;
    }
    if (canBeKey(*result.key)) return true;
    context_.report(form.key->at, quoted(form.key->text) + " cannot be a key",
                    std::string(keyExpected));
    return false;
}

bool EntityCheck::related(Tree::AttributeForm const& form, Attribute& result) {
    bool const isOwning = form.relation == Tree::Relation::owns;
    result.kind = !isOwning  ? AttributeKind::reference
                  : form.key ? AttributeKind::owning
                             : AttributeKind::child;
    if (result.type->kind != TypeKind::entity) {
        context_.report(form.type.at, quoted(form.type.text) + " is no entity", "an entity");
        return false;
    }
    if (isOwning) return owned(form, result);
    if (!form.key) {
        context_.report(form.type.at, "a single reference to " + quoted(form.type.text),
                        "a key in brackets");
        return false;
    }
    if (canBeKey(*result.key)) return true;
    context_.report(form.key->at, quoted(form.key->text) + " cannot be a key",
                    std::string(keyExpected));
    return false;
}

bool EntityCheck::owned(Tree::AttributeForm const& form, Attribute const& result) {
    if (form.key && result.key->fullName != "Qor::Name") {
        context_.report(form.key->at, "an owning collection keyed by " + quoted(form.key->text),
                        "Qor::Name");
        return false;
    }
    if (form.key && result.type->entity->unit != context_.unit) {
        context_.report(form.type.at,
                        quoted(form.type.text) + " is declared in another description",
                        "an entity of this description, since the collection's link lives in it");
        return false;
    }
    return true;
}

void EntityCheck::ownership(Tree::Entity const& tree, Entity const& result) {
    for (Member const& member : result.members) {
        auto const* attribute = std::get_if<Attribute>(&member);
        bool const isOwner = attribute != nullptr && (attribute->kind == AttributeKind::owning ||
                                                      attribute->kind == AttributeKind::child);
        if (!isOwner || attribute->type == nullptr || attribute->type->kind != TypeKind::entity)
            continue;
        if (attribute->type->entity->isNamed) continue;
        auto const at = std::find_if(tree.members.begin(), tree.members.end(),
                                     [&](auto const& m) { return m.name.text == attribute->name; });
        context_.report(at->name.at, quoted(attribute->name) + " owns a class that has no name",
                        "an entity whose constructor argument is 'name : Qor::Name'");
    }
}

void EntityCheck::checkModifiers(Tree::EntityMember const& tree, Tree::AttributeForm const& form,
                                 Attribute const& result) {
    bool const isPlain = result.kind == AttributeKind::scalar;
    if (form.initial && !isPlain) {
        context_.report(form.initial->at, quoted(tree.name.text) + " cannot have a default",
                        "a default for scalars only");
    }
    bool const mayBeVirtual =
        isPlain || result.kind == AttributeKind::set || result.kind == AttributeKind::map;
    if (tree.isVirtual && !mayBeVirtual) {
        context_.report(tree.name.at, quoted(tree.name.text) + " cannot be virtual",
                        "virtual for scalars, sets, maps and operations only");
    }
    if (tree.isConst || tree.isStatic) {
        context_.report(tree.name.at, quoted(tree.name.text) + " is no operation",
                        "const and static for operations only");
    }
}

void EntityCheck::operation(Tree::EntityMember const& tree, Tree::OperationForm const& form,
                            Entity& result) {
    Operation made;
    made.id = static_cast<std::uint32_t>(tree.id.value);
    made.name = tree.name.text;
    made.isVirtual = tree.isVirtual;
    made.isConst = tree.isConst;
    made.isStatic = tree.isStatic;
    made.doc = tree.doc;
    std::set<std::string> names;
    for (Tree::Argument const& argument : form.arguments) {
        checkArgumentName(context_, argument.name);
        if (!names.insert(argument.name.text).second) {
            context_.report(argument.name.at,
                            "argument " + quoted(argument.name.text) + " stands twice",
                            "each name once");
        }
        Type const* const type = context_.resolve(argument.type, "a type");
        if (type != nullptr) checkAbove(argument.type, type, result);
        made.arguments.push_back({argument.name.text, type});
    }
    if (form.result) made.result = context_.resolve(*form.result, "a type that is no entity");
    if (made.result != nullptr && made.result->kind == TypeKind::entity) {
        context_.report(form.result->at, "the entity " + quoted(form.result->text) + " as a result",
                        "a type that is no entity");
    }
    if (made.isStatic && (made.isConst || made.isVirtual)) {
        context_.report(tree.name.at, quoted(made.name) + " is static",
                        "neither const nor virtual beside it");
    }
    Member const* const inherited =
        result.base == nullptr ? nullptr : findMember(*result.base, made.name);
    if (inherited != nullptr) checkOverride(tree, std::get<Operation>(*inherited), made);
    result.members.emplace_back(std::move(made));
}

void EntityCheck::checkOverride(Tree::EntityMember const& tree, Operation const& declared,
                                Operation& result) {
    result.overrides = true;
    if (result.isVirtual) {
        context_.report(tree.name.at, quoted(result.name) + " is virtual in a base already",
                        "no virtual");
    }
    result.isVirtual = true;
    if (sameSignature(result, declared)) return;
    context_.report(tree.name.at, quoted(result.name) + " differs from the operation of the base",
                    "the same arguments, result and modifiers");
}

}  // namespace Modelc
