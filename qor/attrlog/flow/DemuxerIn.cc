// The demuxer's way in: frames to their adapters.
#include <qor/attrlog/flow/Demuxer.h>
#include <qor/core/Format.h>

#include <exception>

namespace Qor {

namespace NboAttrLog {

namespace {

struct Announcement {
    String8 typeName;
    Name name;
    EntityId id;
};

// The sections stand in their order; what follows the first class of the chain is for readers that
// lack it.
Announcement readOrphan(In& in) {
    Announcement result;
    U64 const end = in.limit();
    while (in.available() != 0) {
        auto const section = static_cast<PayloadSection>(in.nextU8());
        U32 const length = in.nextU32();
        U64 const sectionEnd = in.readPosition() + length;
        if (length > in.available())
            throw AttrLogRecordException("a section past its record's end");
        in.limitIs(sectionEnd);
        if (section == PayloadSection::typeChain) result.typeName = in.nextString();
        if (section == PayloadSection::name) result.name = Name(in.nextString());
        if (section == PayloadSection::entityId) result.id = in.nextEntityId();
        in.readPositionIs(sectionEnd);
        in.limitIs(end);
    }
    return result;
}

}  // namespace

// An id that nobody stands under any more is that of an entity which went here meanwhile.
Ptr<Entity> In::nextEntity() {
    EntityId const id = nextEntityId();
    if (id.isNull() || demuxer_ == nullptr) return nullptr;
    auto* const adapter = demuxer_->adapter(id);
    return Ptr<Entity>(adapter ? adapter->qorNotifierEntity() : nullptr);
}

std::size_t Demuxer::serveFrames(std::size_t budget) {
    Ptr const held(this);
    std::size_t served = 0;
    // What frames lead to goes out in turns as well: the peer is to get the first of it soon.
    sliceEnd_ = out_->written() + firstSliceBytes;
    try {
        Serving const serving(*this);
        Frame frame;
        holdsBack_ = false;
        while (!hasFailed_ && served < budget && in_->nextFrame(frame)) {
            if (!mayTake(frame)) break;
            ++heard_;
            serveFrame(frame);
            in_->frameDone(frame);
            ++served;
        }
        // A frame longer than the ring: it grows as the bytes come.
        bool const isCut = !hasFailed_ && !holdsBack_ && served < budget;
        if (isCut && in_->room().empty()) in_->grow();
        if (!hasFailed_ && owesWalk_) flowsInDelAway();
    } catch (std::exception const& failure) {
        fail(failure.what());
    }
    sliceEnd_ = noEnd;
    counters_.framesIn += served;
    closeIfDue();
    return served;
}

bool Demuxer::mayTake(Frame const& frame) {
    bool const isLink = frame.kind == FrameKind::link && link_ != nullptr;
    holdsBack_ = isLink && !link_->mayTake(*in_);
    if (holdsBack_) in_->putBack(frame);
    return !holdsBack_;
}

void Demuxer::serveFrame(Frame const& frame) {
    switch (frame.kind) {
        case FrameKind::record:
            return serveRecord(frame);
        case FrameKind::transaction:
            return serveTransaction(frame);
        case FrameKind::link:
            if (link_ != nullptr) link_->handleLink(frame, *in_);
            return;
        case FrameKind::receipt:
            peerHeard_ = in_->nextU64();
            return;
    }
}

Entity::QorNboAttrLogSa* Demuxer::receiver(Frame const& frame) {
    auto* found = adapter(frame.header.entityId);
    if (found && isAway(*found)) {
        reactorDel(frame.header.entityId);
        found = nullptr;
    }
    bool const isThere = found && found->qorRawEntity();
    counters_.unknownEntities += isThere ? 0 : 1;
    return isThere ? found : nullptr;
}

void Demuxer::serveRecord(Frame const& frame) {
    if (frame.header.entityId == orphanEntityId) return serveOrphan(frame);
    auto* const found = receiver(frame);
    if (!found) return;
    Qor::Ptr<Entity::QorNboAttrLogSa> const held(found);
    Qor::Ptr<Entity> const entity(tellsWritten_ ? found->qorRawEntity() : nullptr);
    found->handleAttrDeserialization(frame.header.attributeId, 0, frame.payloadSize, nullptr);
    if (entity && link_ != nullptr) link_->written(*entity, frame.header.attributeId);
}

void Demuxer::serveTransaction(Frame const& frame) {
    U8 const type = in_->nextU8();
    U32 const arg = in_->nextU32();
    if (type > StreamAdapter::end) {
        throw AttrLogRecordException(format("a transaction marker of the unknown type %u", type));
    }
    auto* const found = receiver(frame);
    if (!found) return;
    Qor::Ptr<Entity::QorNboAttrLogSa> const held(found);
    AttributeId const id = frame.header.attributeId;
    bool const isRefused = found->has(AdapterState::readOnlyRemote) &&
                           !found->readOnlyRemoteOk(id) && !found->convertedToWritable(false);
    if (isRefused) {
        throwInternalException(String8("write-update from readonly proxy: ") +
                               found->qorNotifierEntity()->fullName());
    }
    Qor::Ptr<Entity> const entity(tellsWritten_ ? found->qorNotifierEntity() : nullptr);
    found->handleAttrTransaction(id, static_cast<StreamAdapter::AttrTransactionType>(type), arg);
    if (entity && link_ != nullptr && type == StreamAdapter::end) link_->written(*entity, id);
}

void Demuxer::serveOrphan(Frame const& frame) {
    if (frame.header.attributeId != orphanAttributeId) {
        ++counters_.unknownAttributes;
        return;
    }
    Announcement const told = readOrphan(*in_);
    LinkHandler::Orphan const here =
        link_ != nullptr ? link_->orphan(told.id, told.typeName, told.name) : LinkHandler::Orphan();
    if (!here.entity) {
        ++counters_.unknownEntities;
        return;
    }
    if (this->adapter(told.id)) return;  // announced before
    AdapterState::Bits const flags(here.flags.word() | AdapterState::isCopy);
    auto const adapter = here.entity->qorNboAttrLogSaIs(flags, 1, out_, nullptr);
    adapter->doEntityIdIs(told.id, Ptr(this), true);
}

}  // namespace NboAttrLog

}  // namespace Qor
