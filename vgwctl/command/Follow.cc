#include <vgwctl/command/Follow.h>

#include <vgwctl/state/Place.h>

namespace Vgwctl {
namespace {

using Qor::Entity;
using Qor::GenericIf;
using OpId = GenericIf::AttributeOp::OpId;

// What stands in the attribute, if the entity owns it.
Entity::Ptr ownedIn(Entity const& owner, Qor::QorAttr const& attribute,
                    GenericIf::Ptr const& held) {
    Entity::Ptr const child = held ? held->entity() : nullptr;
    return child && isOwnedIn(owner, attribute, *child) ? child : nullptr;
}

GenericIf::Ptr keyFrom(Qor::QorAttr const& attribute, std::string const& key) {
    return attribute.keyType()->genericIfFromStrep(Qor::String8(std::string_view(key)), true);
}

}  // namespace

// Null for one that is not there.
GenericIf::Ptr Follower::memberOf(Followed const& followed, Qor::QorAttr const& attribute,
                                  std::string const& key) {
    GenericIf& wrapper = *followed.wrapper;
    GenericIf::Ptr const member = keyFrom(attribute, key);
    bool const isThere =
        wrapper.attributeOp(attribute.id(), OpId::opExists, member)->strRep() == "true";
    return isThere ? wrapper.attributeOp(attribute.id(), OpId::opGet, member) : nullptr;
}

Follower::~Follower() {
    for (auto& [entity, followed] : followed_) followed.wrapper->watcherIs(nullptr);
}

void Follower::follow(Entity& entity) {
    add(entity, Change::Kind::initial);
    added_.clear();
}

void Follower::onAttribute(GenericIf& wrapper, Qor::AttributeId id, GenericIf::PtrConst& key) {
    Heard heard(wrapper.entityConst().ptr(), id, key ? key->strRep().view() : "");
    if (known_.insert(heard).second) heard_.push_back(std::move(heard));
}

void Follower::add(Entity& entity, Change::Kind kind) {
    std::string const path(entity.uriPath().view());
    if (!wanted_(path) || followed_.contains(&entity)) return;
    Followed& followed = followed_[&entity];
    followed.wrapper = wrapped(entity, false);
    followed.path = path;
    followed.wrapper->watcherIs(this);
    added_.insert(&entity);
    tellState(followed, kind);
    tellEntryState(followed, kind);
    for (Qor::QorAttr const* const attribute : heldAttributes(*entity.fwkType()))
        if (attribute->flags().isEntity()) reconcileAll(followed, *attribute, kind);
}

void Follower::drop(Entity const& entity) {
    auto found = followed_.find(&entity);
    if (found == followed_.end()) return;
    for (auto const& [slot, child] : found->second.children) drop(*child);
    sink_({Change::Kind::deleted, found->second.path, entity.fwkType(), {}, {}, {}});
    found->second.wrapper->watcherIs(nullptr);
    followed_.erase(found);
}

void Follower::reconcile(Followed& followed, Slot const& slot, Entity::Ptr const& child,
                         Change::Kind kind) {
    auto const known = followed.children.find(slot);
    if (known != followed.children.end()) {
        if (known->second == child.ptr()) {
            auto const same = followed_.find(child.ptr());
            if (same != followed_.end()) tellEntryState(same->second, Change::Kind::modified);
            return;
        }
        Entity const& old = *known->second;
        followed.children.erase(known);
        drop(old);
    }
    if (!child) return;
    add(*child, kind);
    if (followed_.contains(child.ptr())) followed.children[slot] = child.ptr();
}

void Follower::reconcileAll(Followed& followed, Qor::QorAttr const& attribute, Change::Kind kind) {
    GenericIf& wrapper = *followed.wrapper;
    Entity const& entity = *wrapper.entityConst();
    if (!attribute.flags().isCollection()) {
        auto const child = ownedIn(entity, attribute, wrapper.attributeOp(attribute.id()));
        return reconcile(followed, {attribute.id(), {}}, child, kind);
    }
    std::map<Slot, Entity::Ptr> now;
    for (auto const& [slot, child] : followed.children)
        if (slot.first == attribute.id()) now[slot] = nullptr;
    for (auto at = wrapper.attributeIteratorConst(attribute.id()); at; ++at)
        now[{attribute.id(), std::string(at.key()->strRep().view())}] =
            ownedIn(entity, attribute, at.value());
    for (auto const& [slot, child] : now) reconcile(followed, slot, child, kind);
}

void Follower::tellState(Followed const& followed, Change::Kind kind) {
    Entity const& entity = *followed.wrapper->entityConst();
    sink_({kind, followed.path, entity.fwkType(), {}, {}, {}});
    for (Qor::QorAttr const* const attribute : heldAttributes(*entity.fwkType())) {
        if (holdsChildren(entity, *attribute)) continue;
        Value value = valueOf(*followed.wrapper, *attribute);
        if (value.isNothing()) continue;
        sink_({kind,
               followed.path,
               entity.fwkType(),
               std::string(attribute->name().view()),
               {},
               std::move(value)});
    }
}

void Follower::tellValue(Followed const& followed, Qor::QorAttr const& attribute,
                         std::string const& key) {
    Change change{Change::Kind::modified,
                  followed.path,
                  followed.wrapper->entityConst()->fwkType(),
                  std::string(attribute.name().view()),
                  {},
                  {}};
    if (key.empty()) {
        change.value = valueOf(*followed.wrapper, attribute);
        return sink_(change);
    }
    change.key = valueOf(keyFrom(attribute, key));
    change.value = valueOf(memberOf(followed, attribute, key));
    sink_(change);
}

void Follower::tellEntryState(Followed& followed, Change::Kind kind) {
    Entity const& entity = *followed.wrapper->entityConst();
    std::string const state(entryStateOf(entity));
    if (state == followed.state) return;
    followed.state = state;
    sink_({kind,
           followed.path,
           entity.fwkType(),
           std::string(entryStateAttribute),
           {},
           textValue(state.empty() ? "ready" : state)});
}

// Of what holds children their coming and going is told, by themselves.
void Follower::tell(Heard const& heard) {
    auto const& [entity, id, key] = heard;
    auto const found = followed_.find(entity);
    if (found == followed_.end() || added_.contains(entity)) return;
    Qor::QorAttr::Ptr const attribute = entity->fwkType()->attr(id);
    if (!attribute) return;
    Followed& followed = found->second;
    if (attribute->flags().isEntity() && key.empty()) {
        reconcileAll(followed, *attribute, Change::Kind::inserted);
    } else if (attribute->flags().isEntity()) {
        reconcile(followed, {id, key},
                  ownedIn(*entity, *attribute, memberOf(followed, *attribute, key)),
                  Change::Kind::inserted);
    }
    if (!holdsChildren(*entity, *attribute)) tellValue(followed, *attribute, key);
}

void Follower::flush() {
    auto const heard = std::move(heard_);
    heard_.clear();
    known_.clear();
    for (Heard const& one : heard) tell(one);
    added_.clear();
}

}  // namespace Vgwctl
