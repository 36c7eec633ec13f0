#include <qor/dynamic/DynamicWrapper.h>

namespace Qor {

DynamicEntity::GenericIf_::GenericIf_(DynamicType& type, Qor::Ptr<Entity> const& entity,
                                      bool isConst)
    : EntityWrapper(entity, isConst), type_(type) {}

DynamicEntity::GenericIf_::~GenericIf_() = default;

QorType* DynamicEntity::GenericIf_::fwkType() const { return &type_; }

void DynamicEntity::GenericIf_::notifierIs(Qor::Ptr<PtrInterface const> const& notifier) {
    bool const isOwn = notifier && notifier->fwkType() == &type_;
    EntityWrapper::notifierIs(isOwn ? notifier : nullptr);
}

GenericIf::Ptr DynamicEntity::GenericIf_::attributeOp(AttributeOp const& op, PtrConst const& key,
                                                      GenericIf::Ptr const& value) {
    DynamicScope const at = scope(op.attributeId);
    return EntityWrapper::attributeOp(op, key, value);
}

void DynamicEntity::GenericIf_::handleNotification(ActivityConfig* config) {
    DynamicScope const at(type_);
    EntityWrapper::handleNotification(config);
}

GenericIf::AttributeIteratorConst DynamicEntity::GenericIf_::attributeIteratorConst(
    AttributeId id) {
    DynamicScope const at = scope(id);
    return EntityWrapper::attributeIteratorConst(id);
}

GenericIf::AttributeIteratorConst DynamicEntity::GenericIf_::attributeIteratorKeyConst(
    AttributeId id, PtrConst const& key) {
    DynamicScope const at = scope(id);
    return EntityWrapper::attributeIteratorKeyConst(id, key);
}

GenericIf::AttributeIteratorConst DynamicEntity::GenericIf_::attributeIteratorHashConst(
    AttributeId id, PtrConst const& key) {
    DynamicScope const at = scope(id);
    return EntityWrapper::attributeIteratorHashConst(id, key);
}

GenericIf::Ptr DynamicEntity::GenericIf_::attributeIterator_iterObj(
    AttributeIteratorConst const& iterator) {
    DynamicScope const at = scope(iterator.id());
    return EntityWrapper::attributeIterator_iterObj(iterator);
}

GenericIf::Ptr DynamicEntity::GenericIf_::attributeIterator_iterInc(
    AttributeIteratorConst const& iterator) {
    DynamicScope const at = scope(iterator.id());
    return EntityWrapper::attributeIterator_iterInc(iterator);
}

GenericIf::PtrConst DynamicEntity::GenericIf_::attributeIterator_iterKey(
    AttributeIteratorConst const& iterator) {
    DynamicScope const at = scope(iterator.id());
    return EntityWrapper::attributeIterator_iterKey(iterator);
}

GenericIf::AttributeIteratorConst DynamicEntity::GenericIf_::attributeIterator_iterClone(
    AttributeIteratorConst const& iterator) {
    DynamicScope const at = scope(iterator.id());
    return EntityWrapper::attributeIterator_iterClone(iterator);
}

bool DynamicEntity::GenericIf_::attributeIterator_nonNull(AttributeIteratorConst const& iterator) {
    DynamicScope const at = scope(iterator.id());
    return EntityWrapper::attributeIterator_nonNull(iterator);
}

GenericIf::Ptr DynamicEntity::GenericIf_::attributeIterator_iterDel(
    AttributeIteratorConst const& iterator) {
    DynamicScope const at = scope(iterator.id());
    return EntityWrapper::attributeIterator_iterDel(iterator);
}

void DynamicEntity::GenericIf_::onAttr(AttributeId id) { qorHeard(id); }

void DynamicEntity::GenericIf_::onAttrKey(AttributeId id, DynamicKey const& key) {
    DynamicScope const at = scope(id);
    qorHeardKey<DynamicReferenceAttr>(key);
}

void DynamicEntity::GenericIf_::GenericIf_Adapter_::onAttr(AttributeId id) {
    toOwner([id](GenericIf_& owner) { owner.onAttr(id); });
}

void DynamicEntity::GenericIf_::GenericIf_Adapter_::onAttrKey(AttributeId id,
                                                              DynamicKey const& key) {
    toOwner([&](GenericIf_& owner) { owner.onAttrKey(id, key); });
}

void DynamicEntity::GenericIf_::GenericIf_Adapter_::qorDropPendingKeys() {
    pending_.clear();
    ForwardingNotifiee::qorDropPendingKeys();
}

PendingKey<DynamicKey>& DynamicEntity::GenericIf_::GenericIf_Adapter_::pending(
    DynamicAttribute const& attribute) {
    if (pending_.size() <= attribute.index) pending_.resize(attribute.index + 1);
    return pending_[attribute.index];
}

}  // namespace Qor
