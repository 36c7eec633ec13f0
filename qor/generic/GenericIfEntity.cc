#include <qor/generic/GenericIfEntity.h>

#include <qor/core/Format.h>
#include <qor/tree/EntityPath.h>

namespace Qor {

namespace {

using OpId = GenericIf::AttributeOp::OpId;

[[noreturn]] void refuse(char const* attribute, OpId op) {
    GenericIf::throwOpNotSupportedException(attribute, op, false);
}

void needNoKey(char const* attribute, GenericIf const* key) {
    if (key) {
        GenericIf::throwBadIndexAttrException(attribute);
    }
}

GenericIf const& needValue(char const* name, GenericIf const* value) {
    if (!value) {
        GenericIf::throwTypeException(name);
    }
    return *value;
}

// What one dispatch works on.
struct Call {
    GenericAttribute const& attribute;
    OpId op;
    Entity& entity;
    GenericIf const* key;
    GenericIf const* value;
    bool isConst;
};

GenericIf::Ptr onSingle(Call const& call) {
    GenericAttribute const& attribute = call.attribute;
    if (call.op == OpId::opGet) {
        needNoKey(attribute.name, call.key);
        return attribute.get(call.entity, nullptr, call.isConst);
    }
    if (call.op == OpId::opSet && attribute.set) {
        needNoKey(attribute.name, call.key);
        attribute.set(call.entity, nullptr, needValue(attribute.name, call.value));
        return nullptr;
    }
    if (call.op == OpId::opSet && attribute.make) {
        needNoKey(attribute.name, call.key);
        return attribute.make(call.entity, call.value, call.isConst);
    }
    if (call.op == OpId::opDel && attribute.del) {
        needNoKey(attribute.name, call.key);
        return attribute.del(call.entity, nullptr, call.isConst);
    }
    refuse(attribute.name, call.op);
}

GenericIf::Ptr setMember(Call const& call) {
    GenericAttribute const& attribute = call.attribute;
    if (attribute.make) {
        needNoKey(attribute.name, call.key);
        return attribute.make(call.entity, call.value, call.isConst);
    }
    GenericIf const& key = needValue(attribute.keyName(), call.key);
    attribute.set(call.entity, &key, needValue(attribute.name, call.value));
    return nullptr;
}

GenericIf::Ptr onCollection(Call const& call) {
    GenericAttribute const& attribute = call.attribute;
    switch (call.op) {
        case OpId::opGet:
            return attribute.get(call.entity, &needValue(attribute.keyName(), call.key),
                                 call.isConst);
        case OpId::opCount:
            return wrapped(attribute.count(call.entity), call.isConst);
        case OpId::opVersion:
            return wrapped(attribute.version(call.entity), call.isConst);
        case OpId::opExists:
            return wrapped(attribute.exists(call.entity, needValue(attribute.keyName(), call.key)),
                           call.isConst);
        case OpId::opSet:
            return setMember(call);
        case OpId::opDel:
            return attribute.del(call.entity, &needValue(attribute.keyName(), call.key),
                                 call.isConst);
        default:
            refuse(attribute.name, call.op);
    }
}

}  // namespace

GenericIfEntity::GenericIfEntity(Qor::Ptr<Entity> const& entity, bool isConst)
    : GenericIf(isConst) {
    GenericIfEntity::notifierIs(Qor::Ptr<PtrInterface const>(entity));
}

GenericIfEntity::~GenericIfEntity() = default;

GenericIf::Ptr GenericIfEntity::genericClone() const {
    return make<GenericIfEntity>(const_cast<GenericIfEntity*>(this)->entity(), isConst());
}

void GenericIfEntity::notifierIs(Qor::Ptr<PtrInterface const> const& notifier) {
    Qor::Ptr<PtrInterface const> const checked(dynamic_cast<Entity const*>(notifier.ptr()));
    GenericIf::notifierIs(checked);
    isRegisteredNotifieeIs(false);
}

QorType* GenericIfEntity::fwkType() const { return Entity::_fwkType(); }

GenericAttribute const* GenericIfEntity::qorAttribute(AttributeId) const { return nullptr; }

Entity& GenericIfEntity::needEntity() const {
    auto* const entity = const_cast<PtrInterface*>(qorNotifier());
    if (!entity) {
        throwTypeException(fwkType()->qorName().charPtr());
    }
    return static_cast<Entity&>(*entity);
}

GenericIf::Ptr GenericIfEntity::attributeOp(AttributeOp const& op, PtrConst const& key,
                                            Ptr const& value) {
    needChangeable(op);
    GenericAttribute const* const attribute = qorAttribute(op.attributeId);
    return attribute ? applied(*attribute, op, key.ptr(), value.ptr())
                     : frameworkOp(op, key.ptr(), value.ptr());
}

GenericIf::Ptr GenericIfEntity::applied(GenericAttribute const& attribute, AttributeOp const& op,
                                        GenericIf const* key, GenericIf const* value) {
    Call const call{attribute, op.opId, needEntity(), key, value, isConst()};
    switch (attribute.kind) {
        case AttributeKind::scalar:
        case AttributeKind::constField:
        case AttributeKind::child:
            return onSingle(call);
        case AttributeKind::valueMap:
        case AttributeKind::refMap:
        case AttributeKind::childMap:
            return onCollection(call);
        case AttributeKind::operation:
            if (op.opId != OpId::opGet) {
                refuse(attribute.name, op.opId);
            }
            return attribute.get(call.entity, key, call.isConst);
    }
    refuse(attribute.name, op.opId);
}

// What an argument list may be given to, and ignored.
bool GenericIfEntity::isFrameworkOperation(AttributeId id) noexcept {
    return id == hasAttrLogInterfaceId || id == saForMsgChannelId;
}

GenericIf::Ptr GenericIfEntity::frameworkOp(AttributeOp const& op, GenericIf const* key,
                                            GenericIf const* value) {
    String8 const name = attributeString(op.attributeId);
    bool const isWritten = op.attributeId == isNondestructingId && op.opId == OpId::opSet;
    if (!fwkType()->attr(op.attributeId)) {
        throwUnknownAttrException(
            format("%s: attribute %d", fwkType()->qorName().charPtr(), op.attributeId).charPtr());
    }
    if (op.opId != OpId::opGet && !isWritten) {
        refuse(name.charPtr(), op.opId);
    }
    Entity& entity = needEntity();
    if (!isFrameworkOperation(op.attributeId)) {
        needNoKey(name.charPtr(), key);
    }
    if (isWritten) {
        entity.isNondestructingIs(needed<bool>(value, name.charPtr()));
        return nullptr;
    }
    return frameworkValue(entity, op.attributeId, name.charPtr());
}

GenericIf::Ptr GenericIfEntity::frameworkValue(Entity const& entity, AttributeId id,
                                               char const* name) const {
    switch (id) {
        case fwkKeyId:
        case entityNameId:
            return wrapped(entity.name(), isConst());
        case entityFullNameId:
            return wrapped(entity.fullName(), isConst());
        case entityUriPathId:
            return wrapped(entity.uriPath(), isConst());
        case isNondestructingId:
            return wrapped(entity.isNondestructing(), isConst());
        case hasAttrLogInterfaceId:
        case saForMsgChannelId:
            return wrapped(entity.qorHasAttrLogInterface(), isConst());
        default:
            refuse(name, OpId::opGet);
    }
}

void const* GenericIfEntity::genericValue(Qor::Ptr<QorType const> const& type) const {
    if (type && fwkType()->isA(*type)) {
        return qorNotifier();
    }
    throwTypeException(fwkType()->qorName().charPtr());
}

String8 GenericIfEntity::attributeString(AttributeId id) const {
    String8 const name = GenericIf::attributeString(id);
    auto const* const entity = static_cast<Entity const*>(qorNotifier());
    return name == "unknown" && entity ? entity->attributeString(id) : name;
}

String8 GenericIfEntity::strRep() const {
    return valueToStrepOfRawPtr(static_cast<Entity const*>(qorNotifier()));
}

Qor::Ptr<Entity const> GenericIfEntity::entityConst() const {
    return Qor::Ptr<Entity const>(static_cast<Entity const*>(qorNotifier()));
}

Qor::Ptr<Entity> GenericIfEntity::entity() {
    return Qor::Ptr<Entity>(static_cast<Entity*>(const_cast<PtrInterface*>(qorNotifier())));
}

GenericWalk const& GenericIfEntity::walkOf(AttributeId id) const {
    GenericAttribute const* const attribute = qorAttribute(id);
    if (!attribute || !attribute->walk) {
        throwUnknownAttrException(attributeString(id).charPtr());
    }
    return *attribute->walk;
}

GenericIf::AttributeIteratorConst GenericIfEntity::attributeIteratorConst(AttributeId id) {
    GenericWalk const& walk = walkOf(id);
    return {Ptr(this), id, walk.atStart(needEntity())};
}

GenericIf::AttributeIteratorConst GenericIfEntity::attributeIteratorKeyConst(AttributeId id,
                                                                             PtrConst const& key) {
    GenericWalk const& walk = walkOf(id);
    return {Ptr(this), id, walk.atKey(needEntity(), needValue("qor_index", key.ptr()))};
}

GenericIf::AttributeIteratorConst GenericIfEntity::attributeIteratorHashConst(AttributeId id,
                                                                              PtrConst const& key) {
    GenericWalk const& walk = walkOf(id);
    return {Ptr(this), id, walk.atHash(needEntity(), needValue("qor_index", key.ptr()))};
}

GenericIf::Ptr GenericIfEntity::attributeIterator_iterObj(AttributeIteratorConst const& iterator) {
    GenericWalk const& walk = walkOf(iterator.id());
    return walk.isThere(iterator.iterator()) ? walk.value(iterator.iterator(), isConst()) : nullptr;
}

GenericIf::Ptr GenericIfEntity::attributeIterator_iterInc(AttributeIteratorConst const& iterator) {
    walkOf(iterator.id()).step(iterator.iterator());
    return nullptr;
}

GenericIf::PtrConst GenericIfEntity::attributeIterator_iterKey(
    AttributeIteratorConst const& iterator) {
    GenericWalk const& walk = walkOf(iterator.id());
    return walk.isThere(iterator.iterator()) ? walk.key(iterator.iterator()) : nullptr;
}

GenericIf::AttributeIteratorConst GenericIfEntity::attributeIterator_iterClone(
    AttributeIteratorConst const& iterator) {
    return {Ptr(this), iterator.id(), walkOf(iterator.id()).clone(iterator.iterator())};
}

bool GenericIfEntity::attributeIterator_nonNull(AttributeIteratorConst const& iterator) {
    return walkOf(iterator.id()).isThere(iterator.iterator());
}

GenericIf::Ptr GenericIfEntity::attributeIterator_iterDel(AttributeIteratorConst const& iterator) {
    walkOf(iterator.id()).end(iterator.iterator());
    return nullptr;
}

void GenericIfEntity::qorHeard(AttributeId id) {
    if (!qorOnAttribute(id, nullptr)) {
        onAttribute(id);
    }
}

GenericIf::Ptr wrappedEntity(Entity* entity, QorType* declared, bool isConst) {
    return (entity ? entity->fwkType() : declared)->genericIf_(entity, isConst);
}

}  // namespace Qor
