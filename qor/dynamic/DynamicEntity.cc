#include <qor/dynamic/DynamicEntity.h>

#include <qor/attrlog/MessageSize.h>
#include <qor/dynamic/DynamicAttributes.h>

namespace Qor {

namespace {

void fill(DynamicEntity::Slot& slot, DynamicAttribute const& attribute) {
    switch (attribute.sort) {
        case DynamicSort::nondestructing:
        case DynamicSort::operation:
            return;
        case DynamicSort::value:
        case DynamicSort::text:
        case DynamicSort::constant:
            slot.emplace<AnyValue>(attribute.initial);
            return;
        case DynamicSort::flagMember:
            slot.emplace<DynamicEntity::FlagMap>();
            return;
        case DynamicSort::textMember:
            slot.emplace<DynamicEntity::TextMap>();
            return;
        case DynamicSort::reference:
        case DynamicSort::childMember:
            slot.emplace<DynamicEntity::EntityMap>();
            return;
        case DynamicSort::child:
            slot.emplace<Qor::Ptr<Entity>>();
            return;
    }
}

// By name, since a type may have been described anew while entities of the old one live on.
bool isOf(QorType const* type, QorType const& declared) {
    while (type && type != &declared && type->fullName() != declared.fullName()) {
        type = type->base();
    }
    return type != nullptr;
}

}  // namespace

constinit NotifieeKind const DynamicEntity::NotifieeConst::qorKind{NotifieeKind::Below{},
                                                                   Entity::NotifieeConst::qorKind};

DynamicKey::DynamicKey(NboAttrLog::In* in, StreamBogon)
    : AnyValue(*DynamicScope::attribute().key, *in) {}

DynamicValue::DynamicValue(NboAttrLog::In* in, StreamBogon)
    : AnyValue(*DynamicScope::attribute().value, *in) {}

DynamicEntity::DynamicEntity(DynamicType& type, Name name)
    : Entity(std::move(name)), type_(type), slots_(std::make_unique<Slot[]>(type.table().size())) {
    for (DynamicAttribute const& attribute : type.table()) {
        fill(slots_[attribute.index], attribute);
    }
}

// What it owns goes, and is told, in the order of the attributes; see dropOwned().
DynamicEntity::~DynamicEntity() {
    DynamicScope const scope(type_);
    DynamicAttributeList::forEach([this]<class A>() {
        if constexpr (A::kind == AttributeKind::childMap) {
            delAll<A>(*this);
        } else if constexpr (A::kind == AttributeKind::child) {
            delDynamicChild(*this);
        }
    });
    orphanOwned<DynamicAttributeList>(*this);
}

void DynamicEntity::constructedIs(DynamicAttribute const& attribute, AnyValue value) {
    std::get<AnyValue>(slots_[attribute.index]) = std::move(value);
}

void DynamicEntity::isNondestructingIs(bool isNondestructing) {
    changeNondestructing(*this, isNondestructing);
}

void DynamicEntity::zeroReferencesIs(bool) { tellZeroReferences(*this); }

String8 DynamicEntity::attributeString(AttributeId id) const {
    QorAttr::Ptr const attribute = type_.attr(id);
    return attribute ? String8(attribute->name()) : Entity::attributeString(id);
}

bool DynamicEntity::qorIsCollection(AttributeId id) const {
    DynamicAttribute const* const attribute = type_.attribute(id);
    return (attribute && attribute->isKeyed()) || Entity::qorIsCollection(id);
}

Qor::Ptr<Entity> DynamicEntity::qorPathStep(String8 const* elements, std::size_t count,
                                            std::size_t* used) {
    QorAttr::Ptr const known = count == 0 ? nullptr : type_.attr(Name(elements[0]));
    DynamicAttribute const* const attribute = known ? type_.attribute(known->id()) : nullptr;
    if (!attribute) return nullptr;
    if (attribute->sort == DynamicSort::child) {
        *used = 1;
        return std::get<Qor::Ptr<Entity>>(slots_[attribute->index]);
    }
    if (attribute->sort != DynamicSort::childMember || count < 2) return nullptr;
    *used = 2;
    auto* const member =
        std::get<EntityMap>(slots_[attribute->index]).member(DynamicKey(Name(elements[1])));
    return member ? member->value() : nullptr;
}

DynamicEntity::NotifieeConst::NotifieeConst() { kindIs(qorKind); }

DynamicEntity::NotifieeConst::~NotifieeConst() = default;

Qor::Ptr<DynamicEntity const> DynamicEntity::NotifieeConst::notifier() const {
    return dynamic_cast<DynamicEntity const*>(qorNotifier());
}

void DynamicEntity::NotifieeConst::onAttr(AttributeId) {}
void DynamicEntity::NotifieeConst::onAttrKey(AttributeId, DynamicKey const&) {}

Qor::Ptr<DynamicEntity> DynamicEntity::Notifiee::notifier() const {
    return const_cast<DynamicEntity*>(dynamic_cast<DynamicEntity const*>(qorNotifier()));
}

namespace {

// A class may own its like; but what is within each other ends one within the other.
void needShallow(Entity const& owner) {
    constexpr int greatestDepth = 64;
    int depth = 0;
    for (Entity const* at = &owner; at; at = at->qorParent()) {
        if (++depth > greatestDepth) throwRangeException("entities more than 64 deep");
    }
}

void take(DynamicEntity& owner, Entity& child) {
    child.parentAttrIdIs(DynamicScope::attribute().id);
    child.parentIs(Ptr<Entity>(&owner));
}

}  // namespace

void DynamicTextAttr::set(DynamicEntity& entity, DynamicKey const& key, String8 const& text) {
    if (!NboAttrLog::fitsTextRecord(key)) {
        throwRangeException(String8(name) + ": a key that no record can hold");
    }
    setKeyed<DynamicTextAttr>(entity, key, text);
}

Ptr<Entity> newDynamicChild(DynamicEntity& owner, Name const& name) {
    needShallow(owner);
    return validPtr(DynamicScope::attribute().valueType->newInstance(name));
}

Ptr<Entity> setDynamicChildMember(DynamicEntity& owner, Name const& name) {
    using A = DynamicChildMapAttr;
    DynamicKey const key(name);
    if (A::Member* const member = A::map(owner).member(key)) return member->value();
    Ptr<Entity> child = newDynamicChild(owner, name);
    newKeyed<A>(owner, key, child);
    take(owner, *child);
    tellKeyed<A>(owner, key);
    return child;
}

void DynamicChildMapAttr::notify(Qor::Entity& owner, DynamicKey const& key,
                                 Ptr<Member> const& member) {
    member->value()->parentIs(nullptr);
    tellKeyed<DynamicChildMapAttr>(static_cast<DynamicEntity&>(owner), key);
}

Ptr<Entity> delDynamicChildMember(DynamicEntity& owner, DynamicKey const& key) {
    using A = DynamicChildMapAttr;
    Ptr<A::Member> const gone = A::map(owner).memberDel(key);
    if (!gone) return nullptr;
    A::notify(owner, key, gone);
    return gone->value();
}

Ptr<Entity> setDynamicChild(DynamicEntity& owner, Name const& name) {
    using A = DynamicChildAttr;
    Ptr<Entity>& field = A::field(owner);
    if (field && field->qorName() == name) return field;
    Ptr<Entity> child = newDynamicChild(owner, name);
    if (field) field->parentIs(nullptr);
    take(owner, *child);
    // The old one goes when all is told: its end may run any code.
    Ptr<Entity> const old = std::exchange(field, child);
    tellScalar<A>(owner);
    return child;
}

Ptr<Entity> delDynamicChild(DynamicEntity& owner) {
    using A = DynamicChildAttr;
    Ptr<Entity> gone = std::exchange(A::field(owner), nullptr);
    if (gone) {
        gone->parentIs(nullptr);
        tellScalar<A>(owner);
    }
    return gone;
}

void setDynamicReference(DynamicEntity& entity, DynamicKey const& key, Ptr<Entity> const& target) {
    bool const fits = !target || isOf(target->fwkType(), *DynamicScope::attribute().valueType);
    if (!fits) NboAttrLog::throwWrongEntityType();
    setReference<DynamicReferenceAttr>(entity, key, target);
}

}  // namespace Qor
