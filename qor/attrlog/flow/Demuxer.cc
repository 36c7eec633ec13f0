#include <qor/attrlog/flow/Demuxer.h>

#include <qor/core/Format.h>

#include <algorithm>

namespace Qor {

namespace NboAttrLog {

LinkHandler::~LinkHandler() = default;
bool LinkHandler::mayTake(In&) { return true; }
void LinkHandler::written(Entity&, AttributeId) {}
void LinkHandler::unknownClass(Name const&) {}

Demuxer::Demuxer(Name name, Qor::Ptr<In> in, Qor::Ptr<Out> out, Side side)
    : BaseDemuxer(std::move(name)),
      in_(std::move(in)),
      out_(std::move(out)),
      nextId_(side == Side::accepting ? peersHalf | 3 : 3),
      ownHalf_(nextId_ & peersHalf),
      reserve_(std::max<U64>(Out::blockSize, out_->freeBytes() / 2)) {
    out_->inIs(in_.ptr());
    in_->demuxerIs(this);
}

Demuxer::~Demuxer() {
    close();
    in_->demuxerIs(nullptr);
    out_->inIs(nullptr);
}

Demuxer* demuxerOf(Out const& out) noexcept {
    auto* const in = attrLogIn(out.in());
    return in ? in->demuxer() : nullptr;
}

StreamAdapter* Demuxer::find(EntityId const& id) const noexcept { return adapters_.member(id); }

EntityId Demuxer::newEntityId() noexcept {
    EntityId const id(nextId_);
    nextId_ += 2;
    return id;
}

void Demuxer::adapterIs(StreamAdapter& adapter) {
    ++announced_;
    if (!adapter.hasUnifiedEntityId()) return;
    adapter.demuxer_ = this;
    U64& newest = newestEntered(adapter.entityId());
    bool const isFresh = adapter.entityId().value() > newest;
    if (isFresh) newest = adapter.entityId().value();
    if (!isFresh && adapters_.contains(adapter)) return;
    adapters_.newMember(Qor::Ptr<StreamAdapter>(&adapter), adapter.fwkHash());
    if (isPeers(adapter.entityId())) ++peersEntities_;
    lastFound_ = &adapter;
}

Qor::Ptr<Entity::QorNboAttrLogSa> Demuxer::reactorDel(EntityId const& id) {
    lastFound_ = nullptr;
    Qor::Ptr<StreamAdapter> const gone = adapters_.memberDel(id);
    if (!gone) return nullptr;
    if (isPeers(id)) --peersEntities_;
    flowInDel(id);
    dropFlow(*gone);
    if (gone->qorNotifierEntity()) gone->doRemountSelf(out_);
    gone->leave();
    return Qor::Ptr<Entity::QorNboAttrLogSa>(static_cast<Entity::QorNboAttrLogSa*>(gone.ptr()));
}

void Demuxer::adapterEnds(StreamAdapter& adapter) {
    if (reactorDel(adapter.entityId())) return;
    dropFlow(adapter);
    adapter.leave();
}

void Demuxer::needPeersId(EntityId const& id) {
    if (!isPeers(id) || id == orphanEntityId || id == EntityId(peersHalf | 1)) {
        throw AttrLogRecordException(format("the id %llx is not the peer's to give",
                                            static_cast<unsigned long long>(id.value())));
    }
    auto* const known = id.value() > newestEntered(id) ? nullptr : adapter(id);
    bool const makesRoom = known && isAway(*known);
    if (makesRoom) reactorDel(id);
    if (known && !makesRoom) {
        throw AttrLogRecordException(format("the id %llx stands for another entity",
                                            static_cast<unsigned long long>(id.value())));
    }
    if (peersEntities_ >= quota_.entities) {
        throwRangeException(format("more than %u entities", quota_.entities));
    }
}

bool Demuxer::hasGoneHere(EntityId const& id) const {
    bool const isDrawnHere = id.isUnified() && (id.value() & peersHalf) == ownHalf_ &&
                             id.value() < nextId_ && (id.value() & ~peersHalf) > 1;
    auto const* const known = isDrawnHere ? adapter(id) : nullptr;
    return isDrawnHere && (!known || isAway(*known));
}

bool Demuxer::isOfTheGone(EntityId const& id, bool isCopy) {
    U64& newest = isCopy ? newestOfCopies_ : newestOfOriginals_;
    U64 const number = id.value() & ~peersHalf;
    if (!isPeers(id) || number > newest) {
        if (isPeers(id)) newest = number;
        return false;
    }
    auto const* const known = adapter(id);
    return !known || isAway(*known);
}

bool Demuxer::checkEphemeralEntityDeletion(Qor::Ptr<Entity> const& child, EntityId const& id,
                                           bool) const {
    if (!child) return false;
    auto const* const known = child->qorNboAttrLogSa(Qor::Ptr<Out const>(out_));
    return known && !known->entityId().isNull() && known->entityId() != id;
}

Qor::Ptr<FlowIn> Demuxer::flowInIs(EntityId const& id) {
    if (FlowIn* const known = flowIn(id)) return Qor::Ptr<FlowIn>(known);
    Qor::Ptr<FlowIn> fresh = flowsIn_.newFlow(id);
    if (auto* const here = adapter(id)) here->flagIs(AdapterState::mayHaveFlowIn, true);
    return fresh;
}

void Demuxer::flowInDel(EntityId const& id) {
    Qor::Ptr<FlowIn> gone = flowsIn_.flowDel(id);
    if (!gone) return;
    textDel(*gone);
    flowsIn_.giveBack(std::move(gone));
    // What was held back for the sake of the text may go out now.
    auto* const here = adapter(id);
    if (here) here->flagIs(AdapterState::mayHaveFlowIn, false);
    if (here && here->flowOut()) here->flowOut()->owes();
}

// What went is dropped anew with what stands for it, should it come back, and what still arrives
// for it meanwhile leads to nothing: so a walk may be late.
void Demuxer::flowsInDelAway() {
    U64 const frames = heard_ + framesSent();
    owesWalk_ = frames < walksAgainAt_;
    if (owesWalk_) return;
    U64 steps = 0;
    Qor::Ptr<Out const> const reader(out_);
    flowsIn_.forEachId([&](EntityId const& id) {
        ++steps;
        auto* const here = adapter(id);
        Entity* top = here ? here->qorNotifierEntity() : nullptr;
        while (top && top->qorParent()) top = top->qorParent();
        auto const* const above = top ? top->qorNboAttrLogSa(reader) : nullptr;
        if (above && isAway(*above)) flowInDel(id);
    });
    walksAgainAt_ = frames + steps;
}

void Demuxer::textDel(FlowIn& flowIn) {
    if (flowIn.iter() == nullptr) return;
    openText_ -= std::min<U64>(openText_, flowIn.iter()->text().length());
    flowIn.textDel();
}

void Demuxer::openTextInc(U64 bytes) {
    if (bytes > quota_.openTextBytes - std::min(openText_, quota_.openTextBytes)) {
        throwRangeException(format("more than %llu bytes of texts that have not ended",
                                   static_cast<unsigned long long>(quota_.openTextBytes)));
    }
    openText_ += bytes;
}

void Demuxer::unknownClass(Name const& fullName) {
    if (link_ != nullptr) link_->unknownClass(fullName);
}

void Demuxer::fail(String8 const& reason) {
    if (hasFailed_) return;
    hasFailed_ = true;
    out_->hasLiveBufferIs(false);
    if (link_ != nullptr) link_->failed(reason);
}

void Demuxer::close() {
    hasFailed_ = true;
    out_->hasLiveBufferIs(false);
    isToClose_ = serving_ != 0;
    if (isToClose_) return;
    // Each adapter may be the last to hold its entity, whose end may take more adapters along.
    while (adapters_.size() != 0) {
        for (HashMap<StreamAdapter, EntityId>::IteratorConst at(&adapters_); at; ++at) {
            Qor::Ptr<StreamAdapter> const adapter = at.member();
            reactorDel(adapter->entityId());
            adapter->leave();
        }
    }
    flowsIn_.deleteAll();
    openText_ = 0;
}

}  // namespace NboAttrLog

}  // namespace Qor
