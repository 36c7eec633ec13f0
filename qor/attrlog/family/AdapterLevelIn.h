// The inbound half of AdapterLevel.
#ifndef QOR_ATTRLOG_FAMILY_ADAPTERLEVELIN_H
#define QOR_ATTRLOG_FAMILY_ADAPTERLEVELIN_H

#include <qor/attrlog/family/AdapterLevel.h>

namespace Qor {

namespace family {

/// Raises where a record of the peer may not be applied, if so.
QOR_EXPORT void needMayApply(Entity::QorNboAttrLogSa& adapter, AttributeId id);
/// Where an adapter's records are read from, borrowed: the given In, or the one behind its Out;
/// null if none.
inline NboAttrLog::In* inOf(Entity::QorNboAttrLogSa const& adapter, Ptr<NboAttrLog::In> const& in) {
    if (!adapter.qorRawEntity() || !adapter.qorRawDemuxer()) return nullptr;
    auto const& out = adapter.nboAttrLogOut();
    return in ? in.ptr() : NboAttrLog::attrLogIn(out ? out->in() : nullptr);
}
/// The first candidate of an alias frame that `isKnown`; 0 if there is none.
QOR_EXPORT AttributeId selectAlias(InboundRecord& record, bool (*isKnown)(AttributeId id));

}  // namespace family

template <class X, class Base>
void AdapterLevel<X, Base>::handleAttrDeserialization(AttributeId id,
                                                      StreamAdapter::DeserializationOptions options,
                                                      U32 size, Ptr<NboAttrLog::In> const& given) {
    NboAttrLog::In* const in = family::inOf(*this, given);
    if (!in) return;
    Ptr<Entity> const entity(this->qorRawEntity());
    bool const echoOnly = static_cast<bool>(given);
    InboundRecord record{*in, *this->qorRawDemuxer(), id, size, echoOnly};
    record.origin = in->readPosition();
    record.hasCrossed = this->hasCrossed();
    if (echoOnly) return take(record, options);
    if (this->has(AdapterState::isActive | AdapterState::readOnlyRemote)) [[unlikely]] {
        family::needMayApply(*this, id);
    }
    IsActiveAnchor const active(*this);
    take(record, options);
}

template <class X, class Base>
inline void AdapterLevel<X, Base>::take(InboundRecord& record,
                                        StreamAdapter::DeserializationOptions options) {
    readAlias(record);
    if (record.id == NboAttrLog::syncModeAttributeId) return readSyncMode(*this, record.in);
    if (!readAny(record)) {
        this->doBaseQorNboAttrLogSaMsg(record.id, options, record.size, record.in);
    }
}

template <class X, class Base>
void AdapterLevel<X, Base>::readAlias(InboundRecord& record) {
    if constexpr (Adapter::QorStreamed::hasChildren) {
        bool const isAlias = record.id == NboAttrLog::aliasFrameAttributeId ||
                             record.id == -NboAttrLog::aliasFrameAttributeId;
        if (!isAlias) return;
        AttributeId const selected = family::selectAlias(record, [](AttributeId id) {
            AttributeId const wanted = withoutSign(id);
            return !Adapter::QorStreamed::whileTrue([wanted]<class S>() {
                return !(S::kind == StreamKind::childMember || S::kind == StreamKind::child) ||
                       S::id != wanted;
            });
        });
        if (selected != 0) record.id = selected;
    }
}

template <class X, class Base>
bool AdapterLevel<X, Base>::readAny(InboundRecord& record) {
    if (readOwn(record)) return true;
    if constexpr (isFirstLevel) {
        return false;
    } else {
        return Base::readAny(record);
    }
}

template <class X, class Base>
inline bool AdapterLevel<X, Base>::readOwn(InboundRecord& record) {
    AttributeId const wanted = withoutSign(record.id);
    return !Adapter::QorStreamed::whileTrue([&]<class S>() {
        constexpr bool canBeRemoved = S::isKeyed || S::kind == StreamKind::child;
        if (S::id != wanted || (record.id < 0 && !canBeRemoved)) return true;
        this->template read<S>(record);
        return false;
    });
}

template <class X, class Base>
template <class S>
void AdapterLevel<X, Base>::read(InboundRecord& record) {
    constexpr bool isChild = S::kind == StreamKind::childMember || S::kind == StreamKind::child;
    if constexpr (S::kind == StreamKind::entry) {
        S::read(self(), record);
    } else if constexpr (isChild) {
        record.id < 0 ? readChildRemoval<S>(self(), record) : readAnnouncement<S>(self(), record);
    } else if constexpr (S::kind == StreamKind::scalar) {
        readScalar<S>(self(), record);
    } else if constexpr (S::kind == StreamKind::text) {
        readText<S>(self(), record);
    } else if (record.id < 0) {
        readRemoval<S>(self(), record);
    } else if constexpr (S::kind == StreamKind::flagMember) {
        readFlagMember<S>(self(), record);
    } else if constexpr (S::kind == StreamKind::textMember) {
        readTextMember<S>(self(), record);
    } else {
        readReference<S>(self(), record);
    }
}

template <class X, class Base>
void AdapterLevel<X, Base>::handleAttrTransaction(AttributeId id, Transaction type, U32 arg) {
    if (!Adapter::QorStreamed::has(id)) return Base::handleAttrTransaction(id, type, arg);
    if (!this->qorRawEntity()) return;
    Ptr<Adapter> const held(&self());
    if (auto* const demuxer = this->qorRawDemuxer()) {
        Ptr<NboAttrLog::FlowIn> flow(demuxer->flowIn(*this));
        if (!this->has(AdapterState::syncModeFanOut) && type == StreamAdapter::begin && !flow) {
            flow = demuxer->flowInIs(*this);
            flow->aidIs(id);
            flow->heardAtBeginIs(demuxer->peerHeard());
        } else if (type == StreamAdapter::end && flow && flow->aid() == id) {
            flow->handlingTransactionIs(true);
        }
    }
    Adapter::QorStreamed::forEach([&]<class S>() {
        if (S::id == id) handleTransactionOf<S>(self(), type);
    });
    // NOLINTNEXTLINE(bugprone-parent-virtual-call): no level between has this attribute.
    Entity::QorNboAttrLogSa::handleAttrTransaction(id, type, arg);
}

template <class X, class Base>
void AdapterLevel<X, Base>::syncModeIs(StreamAdapter::SyncMode mode) {
    Base::syncModeIs(mode);
    beginOrEndLocally();
}

template <class X, class Base>
void AdapterLevel<X, Base>::beginOrEndLocally() {
    auto const* const demuxer = this->streamDemuxer();
    if (!demuxer || demuxer->protocol() >= 2 || !this->isActive()) return;
    auto const type =
        this->syncMode() == StreamAdapter::resync ? StreamAdapter::begin : StreamAdapter::end;
    Adapter::QorStreamed::forEach([&]<class S>() {
        if constexpr (S::isKeyed || S::kind == StreamKind::child) {
            this->handleAttrTransaction(S::id, type, 0);
        }
    });
}

}  // namespace Qor

#endif
