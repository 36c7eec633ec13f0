#include <qor/attrlog/flow/EntityAdapter.h>

#include <qor/attrlog/flow/Demuxer.h>
#include <qor/attrlog/flow/FlowOutHold.h>
#include <qor/core/Format.h>
#include <qor/notify/ListRaw.h>

namespace Qor {

Entity::QorNboAttrLogSa::QorNboAttrLogSa(AdapterState::Bits bits, U32 version,
                                         Qor::Ptr<NboAttrLog::Out> const& out, PtrInterface* owner)
    : StreamAdapter(bits, version, out, owner) {}

Entity::QorNboAttrLogSa::~QorNboAttrLogSa() = default;

void Entity::QorNboAttrLogSa::companionIs(Qor::Ptr<Entity::NotifieeConst> companion) {
    companion_ = std::move(companion);
}

void Entity::QorNboAttrLogSa::attachedTo(Entity const& entity) {
    companion_->isWeakReferenceIs(true);
    swapEntity(&entity);
}

// Made to hold its entity first: a notifiee that is weak and on no list has to be watched for.
void Entity::QorNboAttrLogSa::endAdapter() {
    if (auto* const demuxer = streamDemuxer()) demuxer->dropFlow(*this);
    Qor::Ptr<Entity::NotifieeConst> const companion = std::move(companion_);
    if (!companion) return;
    companion->isWeakReferenceIs(false);
    companion->isRegisteredNotifieeIs(false);
    companion->notifierIs(nullptr);
}

void Entity::QorNboAttrLogSa::hasNotificationActiveIs(bool on) {
    if (on == hasNotificationActive()) return;
    StreamAdapter::hasNotificationActiveIs(on);
    if (companion_) companion_->hasNotificationActiveIs(on);
}

// The companion is the registered one.
void Entity::QorNboAttrLogSa::isRegisteredNotifieeIs(bool) const { isRegisteredFlagIs(false); }

void Entity::QorNboAttrLogSa::notifierIs(Qor::Ptr<PtrInterface const> const& notifier) {
    if (companion_) {
        companion_->isWeakReferenceIs(false);
        companion_->notifierIs(notifier);
        companion_->isWeakReferenceIs(true);
    }
    StreamAdapter::notifierIs(notifier);
}

void Entity::QorNboAttrLogSa::qorDoZombieReactors(bool zombie) {
    if (zombie == qorMarkedForDeletion()) return;
    if (companion_ && companion_->qorMarkedForDeletion() != zombie) {
        if (companion_->qorNotifier()) companion_->hasNotificationActiveIs(!zombie);
        companion_->qorMarkedForDeletionIs(zombie);
    }
    qorMarkedForDeletionIs(zombie);
}

void Entity::QorNboAttrLogSa::onZeroReferences() {
    Ptr const held(this);
    if (auto* const demuxer = streamDemuxer()) {
        demuxer->adapterEnds(*this);
    }
    StreamAdapter::notifierIs(nullptr);
}

void Entity::QorNboAttrLogSa::onNotificationException(AttributeId id) {
    if (auto* const demuxer = streamDemuxer()) {
        demuxer->handlerFailed(*this, id);
    } else {
        StreamAdapter::onNotificationException(id);
    }
}

AttributeId Entity::QorNboAttrLogSa::handleAttrFlowOut(AttributeId startAttr) {
    return StreamAdapter::handleAttrFlowOut(startAttr);
}

void Entity::QorNboAttrLogSa::handleAttrTransaction(AttributeId id, AttrTransactionType type, U32) {
    auto* const demuxer = qorRawDemuxer();
    if (demuxer == nullptr || type == begin) return;
    NboAttrLog::FlowIn* const flowIn = demuxer->flowIn(*this);
    bool const isOver = flowIn && (flowIn->handlingTransaction() ||
                                   (type == abort && flowIn->aid() == 0 && !flowIn->iter()));
    if (!isOver) return;
    bool const heldBack = flowIn->heldBack();
    demuxer->flowInDel(entityId());
    if (heldBack) doNotification(id, nullptr);
}

void Entity::QorNboAttrLogSa::onIsNondestructing() {}

void Entity::QorNboAttrLogSa::putTypeChain() {}

void Entity::QorNboAttrLogSa::putConstructorArgument() {
    nboAttrLogOut() << qorRawEntity()->name();
}

bool Entity::QorNboAttrLogSa::convertedToWritable(bool convert) {
    auto* const demuxer = streamDemuxer();
    if (demuxer == nullptr || !demuxer->mayConvert()) return false;
    if (convert) flagIs(AdapterState::readOnlyLocal | AdapterState::readOnlyRemote, false);
    return true;
}

bool Entity::QorNboAttrLogSa::handlingFlowInFor(AttributeId id) const {
    auto const* const demuxer = qorRawDemuxer();
    if (demuxer == nullptr || !demuxer->hasFlowsIn()) [[likely]] {
        return false;
    }
    NboAttrLog::FlowIn* const flowIn = demuxer->flowIn(*this);
    bool const replaces = flowIn && flowIn->iter() && !flowIn->idx() && flowIn->aid() == id;
    if (replaces) flowIn->heldBackIs(true);
    return replaces;
}

bool Entity::QorNboAttrLogSa::prepareImmediateTransmission(AttributeId id, bool defer) {
    NboAttrLog::FlowOut* const flow = flowOut();
    if (flow && defer && flow->attrId() == id && flow->valueIter() && !flow->valueIterKey()) {
        flow->pendingAbortIs(id, true);
        NboAttrLog::qorFlowOutValueDeq(*flow);
    }
    return !defer;
}

void Entity::QorNboAttrLogSa::noteSent() {
    auto* const demuxer = qorRawDemuxer();
    if (demuxer == nullptr) return;
    if (has(AdapterState::isCopy)) {
        demuxer->sendReceipt();
    } else {
        sentAt_ = demuxer->framesSent() + 1;
    }
}

void Entity::QorNboAttrLogSa::beginRecord(AttributeId id, U32 wordB, U8 tag) {
    auto const* const demuxer = enteredDemuxer();
    if (demuxer == nullptr || has(AdapterState::isCopy)) [[unlikely]] {
        return beginOddRecord(id, wordB, tag);
    }
    sentAt_ = demuxer->framesSent() + 1;
    nboAttrLogOut()->nextHeaderIs({entityId(), id, tag, 0, wordB});
}

unsigned char* Entity::QorNboAttrLogSa::claimRecord(AttributeId id, std::size_t payload) {
    auto const* const demuxer = enteredDemuxer();
    if (demuxer == nullptr || has(AdapterState::isCopy)) [[unlikely]] {
        return nullptr;
    }
    U64 const number = demuxer->framesSent() + 1;
    unsigned char* const at = nboAttrLogOut()->claimRecord({entityId(), id}, payload);
    if (at != nullptr) sentAt_ = number;
    return at;
}

// Of a copy, or of an adapter that is not entered.
void Entity::QorNboAttrLogSa::beginOddRecord(AttributeId id, U32 wordB, U8 tag) {
    noteSent();
    nboAttrLogOut()->nextHeaderIs({entityId(), id, tag, 0, wordB});
}

bool Entity::QorNboAttrLogSa::hasCrossed() const {
    auto const* const demuxer = qorRawDemuxer();
    return demuxer && hasSentSince(demuxer->peerHeard());
}

void Entity::QorNboAttrLogSa::tellHeard() {
    auto* const demuxer = streamDemuxer();
    if (demuxer && !has(AdapterState::readOnlyRemote)) demuxer->sendReceipt();
}

void Entity::QorNboAttrLogSa::beginChildRemoval(AttributeId id, U8 tag) {
    tellHeard();
    beginRecord(-id, 0, tag);
}

void Entity::QorNboAttrLogSa::removalSent() {
    auto* const demuxer = streamDemuxer();
    if (demuxer && demuxer->hasFlowsIn()) demuxer->flowsInDelAway();
}

bool Entity::QorNboAttrLogSa::isUnheardOf() const {
    auto const* const demuxer = streamDemuxer();
    return demuxer && announcedAt_ > demuxer->peerHeard();
}

void Entity::QorNboAttrLogSa::isAnnounced() {
    if (auto const* const demuxer = streamDemuxer()) announcedAt_ = demuxer->framesSent();
}

void Entity::QorNboAttrLogSa::sendTransactionMarker(AttributeId id, AttrTransactionType type,
                                                    U32 arg) {
    using Token = NboAttrLog::Out::TransactToken;
    auto const& out = nboAttrLogOut();
    if (!out) return;
    noteSent();
    out->beginFrame(NboAttrLog::FrameKind::transaction, {entityId(), id});
    out << Token::begin << static_cast<U8>(type) << arg << Token::end;
    removalSent();
}

void Entity::QorNboAttrLogSa::sendPendingAborts(NboAttrLog::FlowOut& flow) {
    if (flow.pendingAborts() == 0) [[likely]] {
        return;
    }
    for (auto at = flow.pendingAbortIterator(); at; ++at) {
        if (at->value()) sendTransactionMarker(at.key(), abort, 0);
        flow.pendingAbortDel(at.key());
    }
}

NboAttrLog::FlowOut& Entity::QorNboAttrLogSa::flowOutFor(AttributeId id) {
    if (!flowOut()) {
        streamDemuxer()->createFlowOut(*this, {}, false, NboAttrLog::FlowOut::owesNothing);
        flowOut()->attrIdIs(id);
    }
    return *flowOut();
}

namespace NboAttrLog {

namespace {

// What stands on an entity's list for the attribute log is a companion, whose reactor is its
// adapter.
Entity::QorNboAttrLogSa* adapterOf(Entity::NotifieeConst const& notifiee) {
    if (!notifiee.isStreamAdapter()) return nullptr;
    return const_cast<Entity::QorNboAttrLogSa*>(
        static_cast<Entity::QorNboAttrLogSa const*>(notifiee.qorRawReactor()));
}

bool isOnChannel(Entity::QorNboAttrLogSa const& adapter) {
    return adapter.nboAttrLogOut() && adapter.nboAttrLogOut()->isChannel();
}

// The adapter that the same entity has there under the id that it has here.
Entity::QorNboAttrLogSa* enteredLike(Entity::QorNboAttrLogSa const& adapter, Demuxer& demuxer) {
    if (!adapter.hasUnifiedEntityId()) return nullptr;
    auto* const entered = demuxer.adapter(adapter.entityId());
    bool const isTheSame = entered && entered->qorNotifierEntity() == adapter.qorNotifierEntity();
    return isTheSame ? entered : nullptr;
}

}  // namespace

Entity::QorNboAttrLogSa* adapterOnList(ListRawGeneric const& list, Qor::Ptr<Out const> const& out) {
    Demuxer* demuxer = nullptr;
    for (auto* node = list.head(); node; node = ListRawGeneric::next(*node)) {
        auto* const adapter = adapterOf(*node);
        if (!adapter) return nullptr;  // adapters stand at the head, so no more follow
        if (!out) {
            if (adapter->hasUnifiedEntityId() && isOnChannel(*adapter)) return adapter;
            continue;
        }
        if (adapter->nboAttrLogOut() == out) return adapter;
        if (!demuxer) {
            demuxer = demuxerOf(*out);
            if (!demuxer && out->in()) return nullptr;
        }
        if (auto* const entered = demuxer ? enteredLike(*adapter, *demuxer) : nullptr) {
            return entered;
        }
    }
    return nullptr;
}

Entity::QorNboAttrLogSa* adapterForMsgChannel(ListRawGeneric const& list,
                                              Entity::QorNboAttrLogSa const& other) {
    for (auto* node = list.head(); node; node = ListRawGeneric::next(*node)) {
        auto* const adapter = adapterOf(*node);
        if (!adapter) return nullptr;
        bool const isCandidate =
            adapter->hasUnifiedEntityId() && isOnChannel(*adapter) && adapter != &other;
        if (!isCandidate) continue;
        if (!other.msgChannel() || adapter->msgChannel() == other.msgChannel()) return adapter;
    }
    return nullptr;
}

Qor::Ptr<Entity::QorNboAttrLogSa> deleteAdapter(Entity& entity, Qor::Ptr<Out const> const& out) {
    Demuxer* const demuxer = out ? demuxerOf(*out) : nullptr;
    if (demuxer == nullptr) return nullptr;
    auto* const adapter = entity.qorNboAttrLogSa(out);
    return adapter ? demuxer->reactorDel(adapter->entityId()) : nullptr;
}

bool hasIdOn(Entity& entity, Qor::Ptr<Out> const& out) {
    auto const* const adapter = entity.qorNboAttrLogSa(Qor::Ptr<Out const>(out));
    return adapter && !adapter->entityId().isNull();
}

EntityId entityIdOn(Entity& entity, Qor::Ptr<Out> const& out) {
    auto const* const adapter = entity.qorNboAttrLogSa(Qor::Ptr<Out const>(out));
    if (!adapter || adapter->entityId().isNull()) {
        throw EntityIdUnavailableException(entity.fullName() + " has no id on this connection yet");
    }
    return adapter->entityId();
}

}  // namespace NboAttrLog

}  // namespace Qor
