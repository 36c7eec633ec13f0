#include <qor/attrlog/flow/StreamAdapter.h>

#include <qor/attrlog/flow/Demuxer.h>
#include <qor/attrlog/flow/ReadOnly.h>
#include <qor/core/Format.h>
#include <qor/core/ValidPtr.h>

namespace Qor {

StreamAdapter::SyncMode StreamAdapter::SyncModeInstance(U32 number) {
    if (number > resync) throwRangeException("Qor::StreamAdapter::SyncMode");
    return static_cast<SyncMode>(number);
}

StreamAdapter::StreamAdapter(AdapterState::Bits bits, U32 version,
                             Qor::Ptr<NboAttrLog::Out> const& out, PtrInterface* owner)
    : out_(out),
      msgChannel_(dynamic_cast<MsgChannel::Constrainer::QorEntry*>(owner)),
      version_(version) {
    qorState() = bits;
    isRegisteredFlagIs(false);
}

StreamAdapter::~StreamAdapter() { swapEntity(nullptr); }

bool StreamAdapter::isStreamAdapter() const { return true; }

String8 StreamAdapter::name() const { return entity_ ? String8(entity_->name()) : String8(); }

void StreamAdapter::notifierIs(Qor::Ptr<PtrInterface const> const& notifier) {
    swapEntity(dynamic_cast<Entity const*>(notifier.ptr()));
    isRegisteredFlagIs(false);
}

void StreamAdapter::swapEntity(Entity const* entity) {
    Entity const* const old = std::exchange(entity_, entity);
    if (!holdsEntity_ || old == entity) return;
    if (entity != nullptr) entity->qorNewRef();
    if (old != nullptr) old->qorDeleteRef();
}

void StreamAdapter::isWeakReferenceIs(bool isWeak) {
    if (holdsEntity_ == !isWeak) return;
    holdsEntity_ = !isWeak;
    if (entity_ == nullptr) return;
    if (isWeak) {
        entity_->qorDeleteRef();
    } else {
        entity_->qorNewRef();
    }
}

Entity const* StreamAdapter::qorNotifierEntity() const { return entity_; }

Entity* StreamAdapter::qorNotifierEntity() { return const_cast<Entity*>(entity_); }

NboAttrLog::Demuxer const* StreamAdapter::streamDemuxer() const { return qorRawDemuxer(); }

NboAttrLog::Demuxer* StreamAdapter::streamDemuxer() { return qorRawDemuxer(); }

// The demuxer unties the Out when it ends, and so cannot be outlived by who asks that.
NboAttrLog::Demuxer* StreamAdapter::connectionsDemuxer() const noexcept {
    return out_ ? NboAttrLog::demuxerOf(*out_) : nullptr;
}

void StreamAdapter::streamDemuxerIs(NboAttrLog::Demuxer* demuxer) { demuxer_ = demuxer; }

void StreamAdapter::handleSyncMode() {}

AttributeId StreamAdapter::handleAttrFlowOut(AttributeId) { return 0; }

AttributeId StreamAdapter::sendAtOnce() { return everything; }

// Of the top level, whose attributes hold nothing.
void StreamAdapter::freeResyncState(Qor::Ptr<NboAttrLog::FlowOut> const&) {}

void StreamAdapter::qorOnInit() {
    if (entityId_.isNull()) doAssignEntityId();
    flagIs(AdapterState::steadyState | AdapterState::flowOutEnabled, true);
}

void StreamAdapter::qorInstantiateSerialize() {}

void StreamAdapter::doSerializeOrphan() {}

void StreamAdapter::handleAttrDeserialization(AttributeId id, DeserializationOptions options,
                                              U32 size, Qor::Ptr<NboAttrLog::In> const& in) {
    if (in) doBaseQorNboAttrLogSaMsg(id, options, size, *in);
}

void StreamAdapter::handleAttrTransaction(AttributeId, AttrTransactionType, U32) {}

void StreamAdapter::doAssignEntityId() {
    auto* const demuxer = qorRawDemuxer();
    if (demuxer == nullptr) return;
    entityIdIs(demuxer->newEntityId());
    demuxer->adapterIs(*this);
}

Qor::Ptr<NboAttrLog::FlowOut> StreamAdapter::flowOutIs(Qor::Ptr<NboAttrLog::Out> const&,
                                                       NboAttrLog::ConnectDesc const&, bool,
                                                       AttributeId) {
    return make<NboAttrLog::FlowOut>(*this);
}

EntityId StreamAdapter::realEntityId() const { return entityId_; }

void StreamAdapter::doNotification(AttributeId, void*) {}

void StreamAdapter::leave() {
    streamDemuxerIs(nullptr);
    out_ = nullptr;
}

U32 StreamAdapter::audit() const {
    U32 errors = 0;
    errors += steadyState() && flowOut_ ? 1 : 0;
    auto* const demuxer = qorRawDemuxer();
    errors += demuxer && hasUnifiedEntityId() && demuxer->adapter(entityId_) != this ? 1 : 0;
    return errors;
}

void StreamAdapter::entityIdInitializedIs(bool initialized) {
    if (!initialized) entityId_ = EntityId();
}

void StreamAdapter::syncModeIs(SyncMode mode) { syncMode_ = mode; }

void StreamAdapter::entityIdIs(EntityId const& id) { entityId_ = id; }

void StreamAdapter::msgChannelIs(MsgChannel::Constrainer::QorEntry* entry) { msgChannel_ = entry; }

void StreamAdapter::notificationDisabledDueToMsgChannelIs(bool disabled) {
    flagIs(AdapterState::flowOutSuspended, disabled);
    if (!disabled && flowOut_) flowOut_->owes();
}

void StreamAdapter::remounted() {
    if (flowOut_) flowOut_->owes();
}

void StreamAdapter::qorDoZombieReactors(bool zombie) {
    if (zombie != qorMarkedForDeletion()) qorMarkedForDeletionIs(zombie);
}

void StreamAdapter::doRemountSelf(Qor::Ptr<NboAttrLog::Out> const&) {}

void StreamAdapter::doThis() {
    if (auto* const demuxer = qorRawDemuxer()) demuxer->sendWhole(*this);
}

void StreamAdapter::doFixChildFlags(Qor::Ptr<StreamAdapter> const& child) {
    child->flagIs(AdapterState::flowOutEnabled, has(AdapterState::flowOutEnabled));
}

void StreamAdapter::doEntityIdIs(EntityId const& id, Qor::Ptr<NboAttrLog::Demuxer> const& demuxer,
                                 bool isPeers) {
    Qor::Ptr<StreamAdapter> const held(this);
    if (demuxer_ != nullptr && !entityId_.isNull() && entityId_ != id) {
        Qor::Ptr<NboAttrLog::Out> const out = out_;
        demuxer_->reactorDel(entityId_);
        out_ = out;
    }
    if (!isPeers) {
        streamDemuxerIs(demuxer.ptr());
        entityIdIs(id);
        return;
    }
    demuxer->needPeersId(id);
    takesPeersId(id, *demuxer);
}

void StreamAdapter::takesPeersId(EntityId const& id, NboAttrLog::Demuxer& demuxer) {
    entityIdIs(id);
    demuxer.adapterIs(*this);
    flagIs(AdapterState::flowOutEnabled, true);
    if (!flowOut_) flagIs(AdapterState::steadyState, true);
}

bool StreamAdapter::readOnlyRemoteOk(AttributeId) const { return false; }

void StreamAdapter::doThrowReadOnly(char const* attributeName) const {
    throw ReadOnlyException(format("%s of %s is read-only here", attributeName,
                                   entity_ ? entity_->fullName().charPtr() : "a gone entity"));
}

void StreamAdapter::doBaseQorNboAttrLogSaMsg(AttributeId, DeserializationOptions, U32,
                                             NboAttrLog::In&) {
    if (auto* const demuxer = qorRawDemuxer()) demuxer->unknownAttributesInc(1);
}

}  // namespace Qor
