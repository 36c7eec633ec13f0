#include <vgwctl/state/Place.h>

#include <vgwctl/options/Failure.h>

#include <qor/tree/EntityPath.h>

#include <algorithm>
#include <cctype>

namespace Vgwctl {
namespace {

using Qor::Entity;
using Qor::GenericIf;

// What is compared of a class's name.
std::string folded(std::string_view name) {
    std::string text;
    for (char const c : name)
        if (c != '_') text += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return text;
}

std::string namesOf(Qor::QorType const& type) {
    std::string names;
    for (auto const& attribute : type.attributes())
        names += (names.empty() ? "" : ", ") + std::string(attribute->name().view());
    return names;
}

// The owner and the collection, when a path ends in the name of one.
bool isCollectionPath(std::string_view path, Entity::Ptr& owner, Qor::QorAttr const*& attribute) {
    std::size_t const slash = path.rfind('/');
    if (slash == 0 || slash == std::string_view::npos) return false;
    owner = entityAt(path.substr(0, slash));
    if (!owner) return false;
    attribute = owner->fwkType()->attr(Qor::Name(path.substr(slash + 1))).ptr();
    return attribute != nullptr && attribute->flags().isCollection() &&
           attribute->flags().isEntity();
}

std::vector<Entity::Ptr> membersOf(Entity& owner, Qor::QorAttr const& attribute) {
    std::vector<Entity::Ptr> members;
    for (auto at = wrapped(owner, false)->attributeIteratorConst(attribute.id()); at; ++at)
        if (auto const member = at.value()->entity()) members.push_back(member);
    return members;
}

std::vector<Entity::Ptr> rowsAt(std::string_view path) {
    if (Entity::Ptr const entity = entityAt(path)) {
        auto const* const directory = dynamic_cast<Qor::Dir const*>(entity.ptr());
        if (directory == nullptr) return {entity};
        return membersOf(*entity, neededAttribute(*entity->fwkType(), "entry"));
    }
    Entity::Ptr owner;
    Qor::QorAttr const* attribute = nullptr;
    if (!isCollectionPath(path, owner, attribute)) throw absent(std::string(path));
    return membersOf(*owner, *attribute);
}

}  // namespace

GenericIf::Ptr wrapped(Entity& entity, bool isConst) {
    return entity.fwkType()->genericIf_(&entity, isConst);
}

Entity::Ptr entityAt(std::string_view path) {
    try {
        return Qor::entityAt(Qor::String8(path));
    } catch (Qor::RangeException const& e) {
        throw Failure(e.what());
    }
}

Entity::Ptr neededEntity(std::string_view path) {
    Entity::Ptr entity = entityAt(path);
    if (entity) return entity;
    Entity::Ptr owner;
    Qor::QorAttr const* attribute = nullptr;
    if (isCollectionPath(path, owner, attribute))
        throw Failure(std::string(path) + " is a collection, and no entity: see list and find");
    throw absent(std::string(path));
}

bool standsAt(std::string_view path) {
    Entity::Ptr owner;
    Qor::QorAttr const* attribute = nullptr;
    return entityAt(path) || isCollectionPath(path, owner, attribute);
}

Attributes heldAttributes(Qor::QorType const& type) {
    Attributes held;
    for (auto const& attribute : type.attributes()) {
        bool const isHeld = attribute->flags().isCollection() || attribute->flags().isStored();
        if (isHeld && !attribute->introspection().isFunction()) held.push_back(attribute.ptr());
    }
    return held;
}

Qor::QorAttr const& neededAttribute(Qor::QorType const& type, std::string_view name) {
    for (auto const& attribute : type.attributes())
        if (attribute->name().view() == name) return *attribute;
    throw Failure(std::string(type.fullName().view()) + " has no attribute " + std::string(name) +
                      "; it has " + namesOf(type),
                  ExitCode::absent);
}

Qor::QorType& neededType(std::string_view name) {
    if (Qor::QorType* const type = Qor::QorType::type(Qor::Name(name))) return *type;
    std::vector<Qor::QorType*> found;
    for (Qor::QorType* const type : Qor::QorType::types())
        if (folded(type->name().view()) == folded(name)) found.push_back(type);
    if (found.empty()) throw absent("the class " + std::string(name));
    if (found.size() > 1)
        throw Failure(std::string(name) + " may be " + std::string(found[0]->fullName().view()) +
                      " or " + std::string(found[1]->fullName().view()));
    return *found.front();
}

bool isOwnedIn(Entity const& owner, Qor::QorAttr const& attribute, Entity const& child) {
    return child.qorParent() == &owner &&
           (attribute.flags().isInstantiating() || child.parentAttrId() == attribute.id());
}

bool holdsChildren(Entity const& owner, Qor::QorAttr const& attribute) {
    if (!attribute.flags().isEntity()) return false;
    return attribute.flags().isInstantiating() || dynamic_cast<Qor::Dir const*>(&owner) != nullptr;
}

std::string_view entryStateOf(Entity const& entity) {
    auto const* const directory = dynamic_cast<Qor::Dir const*>(entity.qorParent());
    if (directory == nullptr) return {};
    switch (directory->entryState(Qor::Name(Qor::pathElements(entity.uriPath()).back()))) {
        case Qor::Dir::EntryState::ready:
            return {};
        case Qor::Dir::EntryState::pending:
            return "pending";
        case Qor::Dir::EntryState::stale:
            return "stale";
        case Qor::Dir::EntryState::released:
            return "released";
    }
    return {};
}

void forEachChild(Entity& entity, std::function<void(Qor::QorAttr const&, Entity&)> const& visit) {
    GenericIf::Ptr const wrapper = wrapped(entity, false);
    auto const visitOwned = [&](Qor::QorAttr const& attribute, GenericIf::Ptr const& held) {
        Entity::Ptr const child = held ? held->entity() : nullptr;
        if (child && isOwnedIn(entity, attribute, *child)) visit(attribute, *child);
    };
    for (Qor::QorAttr const* const attribute : heldAttributes(*entity.fwkType())) {
        if (!attribute->flags().isEntity()) continue;
        if (!attribute->flags().isCollection()) {
            visitOwned(*attribute, wrapper->attributeOp(attribute->id()));
            continue;
        }
        for (auto at = wrapper->attributeIteratorConst(attribute->id()); at; ++at)
            visitOwned(*attribute, at.value());
    }
}

// The depth is that of the tree, which a session bounds.
void forEachBelow(Entity& entity, std::function<void(Entity&)> const& visit) {
    visit(entity);
    forEachChild(entity, [&](Qor::QorAttr const&, Entity& child) { forEachBelow(child, visit); });
}

Qor::QorType& neededClass(std::string_view name) {
    Qor::QorType& type = neededType(name);
    if (!type.isEntity())
        throw Failure(std::string(type.fullName().view()) + " is a type of values, of no entities");
    return type;
}

std::vector<Entity::Ptr> rowsOf(std::string_view word, Entity& root) {
    if (!word.empty() && word.front() == '/') return rowsAt(word);
    Qor::QorType const& type = neededClass(word);
    std::vector<Entity::Ptr> rows;
    forEachBelow(root, [&](Entity& entity) {
        if (entity.fwkType()->isA(type)) rows.emplace_back(&entity);
    });
    return rows;
}

}  // namespace Vgwctl
