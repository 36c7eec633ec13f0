#include <qor/dynamic/DynamicAdapter.h>

namespace Qor {

template class AdapterLevel<DynamicEntity>;

using Adapter = DynamicEntity::QorNboAttrLogSa;

namespace {

// The handler of the attribute at hand.
struct SendSingle {
    Adapter& adapter;
    template <class S>
    void operator()() const {
        if constexpr (S::isKeyed) {
            return;
        } else if constexpr (S::kind == StreamKind::text) {
            serializeText<S>(adapter);
        } else if constexpr (S::kind == StreamKind::child) {
            serializeChild<S>(adapter);
        } else {
            serializeScalar<S>(adapter);
        }
    }
};

struct SendKey {
    Adapter& adapter;
    DynamicKey const& key;
    template <class S>
    void operator()() const {
        if constexpr (S::isKeyed) serializeChangedKey<S>(adapter, key);
    }
};

}  // namespace

DynamicEntity::QorNboAttrLogSa::QorNboAttrLogSa(AdapterState::Bits bits, U32 version,
                                                Qor::Ptr<NboAttrLog::Out> const& out,
                                                PtrInterface* owner)
    : AdapterLevel(bits, version, out, owner) {}

DynamicEntity::QorNboAttrLogSa::~QorNboAttrLogSa() { Qor::endAdapter(*this); }

Adapter::Ptr DynamicEntity::QorNboAttrLogSa::QorNboAttrLogSaIs(
    AdapterState::Bits bits, Qor::Ptr<DynamicEntity> const& entity, U32 version,
    Qor::Ptr<NboAttrLog::Out> const& out, PtrInterface* owner) {
    return makeAdapter<QorNboAttrLogSa>(bits, entity, version, out, owner);
}

DynamicType const* DynamicEntity::QorNboAttrLogSa::type() const {
    auto const* const entity = static_cast<DynamicEntity const*>(qorNotifierEntity());
    return entity ? &entity->dynamicType() : nullptr;
}

void DynamicEntity::QorNboAttrLogSa::onAttr(AttributeId id) {
    DynamicType const* const of = type();
    DynamicAttribute const* const attribute = of ? of->attribute(id) : nullptr;
    if (!attribute || !attribute->isStreamed()) return;
    DynamicScope const scope(*of, attribute);
    SendSingle const send{*this};
    DynamicStreamList::visitOne(send);
}

void DynamicEntity::QorNboAttrLogSa::onAttrKey(AttributeId id, DynamicKey const& key) {
    DynamicType const* const of = type();
    DynamicAttribute const* const attribute = of ? of->attribute(id) : nullptr;
    if (!attribute) return;
    DynamicScope const scope(*of, attribute);
    SendKey const send{*this, key};
    DynamicStreamList::visitOne(send);
}

void DynamicEntity::QorNboAttrLogSa::onIsNondestructing() { onAttr(isNondestructingId); }

AttributeId DynamicEntity::QorNboAttrLogSa::handleAttrFlowOut(AttributeId startAttr) {
    DynamicType const* const of = type();
    if (!of) return 0;
    DynamicScope const scope(*of);
    return Level::handleAttrFlowOut(startAttr);
}

AttributeId DynamicEntity::QorNboAttrLogSa::sendAtOnce() {
    DynamicType const* const of = type();
    if (!of) return 0;
    DynamicScope const scope(*of);
    return Level::sendAtOnce();
}

void DynamicEntity::QorNboAttrLogSa::freeResyncState(Qor::Ptr<NboAttrLog::FlowOut> const& flow) {
    DynamicType const* const of = type();
    if (!of) return;
    DynamicScope const scope(*of);
    Level::freeResyncState(flow);
}

void DynamicEntity::QorNboAttrLogSa::handleAttrDeserialization(AttributeId id,
                                                               DeserializationOptions options,
                                                               U32 size,
                                                               Qor::Ptr<NboAttrLog::In> const& in) {
    DynamicType const* const of = type();
    if (!of) return;
    DynamicScope const scope(*of);
    Level::handleAttrDeserialization(id, options, size, in);
}

void DynamicEntity::QorNboAttrLogSa::handleAttrTransaction(AttributeId id, AttrTransactionType kind,
                                                           U32 arg) {
    DynamicType const* const of = type();
    if (!of) return;
    DynamicScope const scope(*of);
    Level::handleAttrTransaction(id, kind, arg);
}

void DynamicEntity::QorNboAttrLogSa::doNotification(AttributeId id, void* key) {
    DynamicType const* const of = type();
    if (!of) return;
    DynamicScope const scope(*of);
    Level::doNotification(id, key);
}

void DynamicEntity::QorNboAttrLogSa::syncModeIs(SyncMode mode) {
    DynamicType const* const of = type();
    if (!of) return;
    DynamicScope const scope(*of);
    Level::syncModeIs(mode);
}

void DynamicEntity::QorNboAttrLogSa::qorInstantiateSerialize() {
    DynamicType const* const of = type();
    if (!of) return;
    DynamicScope const scope(*of);
    Level::qorInstantiateSerialize();
}

void DynamicEntity::QorNboAttrLogSa::doRemountSelf(Qor::Ptr<NboAttrLog::Out> const& out) {
    DynamicType const* const of = type();
    if (!of) return;
    DynamicScope const scope(*of);
    Level::doRemountSelf(out);
}

void DynamicEntity::QorNboAttrLogSa::putTypeChain() {
    for (QorType const* at = type(); at && at != Entity::_fwkType(); at = at->base()) {
        nboAttrLogOut() << TypeId(at->fullName());
    }
}

void DynamicEntity::QorNboAttrLogSa::putConstructorArgument() {
    DynamicType const* const of = type();
    if (!of) return;
    DynamicScope const scope(*of);
    Level::putConstructorArgument();
}

void Adapter::QorNboAttrLogSaAdapter_::onAttr(AttributeId id) {
    forward(&QorNboAttrLogSa::onAttr, id);
}

void Adapter::QorNboAttrLogSaAdapter_::onAttrKey(AttributeId id, DynamicKey const& key) {
    forward(&QorNboAttrLogSa::onAttrKey, id, key);
}

bool DynamicEntity::qorHasAttrLogInterface() const { return true; }

Entity::QorNboAttrLogSa* DynamicEntity::qorNboAttrLogSa(
    Qor::Ptr<NboAttrLog::Out const> const& out) {
    return NboAttrLog::adapterOnList(notifierList_, out);
}

Entity::QorNboAttrLogSa* DynamicEntity::qorNboAttrLogSaForMsgChannel(
    Qor::Ptr<Entity::QorNboAttrLogSa> const& other) const {
    return NboAttrLog::adapterForMsgChannel(notifierList_, *other);
}

Qor::Ptr<Entity::QorNboAttrLogSa> DynamicEntity::qorNboAttrLogSaIs(
    BitSet<27, U32> bits, U32 version, Qor::Ptr<NboAttrLog::Out> const& out, PtrInterface* owner) {
    return findOrMakeAdapter(*this, AdapterState::Bits(bits.word()), version, out, owner);
}

Qor::Ptr<Entity::QorNboAttrLogSa> DynamicEntity::qorNboAttrLogSaDel(
    Qor::Ptr<NboAttrLog::Out const> const& out) {
    return NboAttrLog::deleteAdapter(*this, out);
}

}  // namespace Qor
