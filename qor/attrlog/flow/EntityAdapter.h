// The stream adapter of an entity: the root of the adapters of all classes, each of which is named
// X::QorNboAttrLogSa and derives from its base class's. The families of <qor/attrlog/family/> say
// what the levels do.
#ifndef QOR_ATTRLOG_FLOW_ENTITYADAPTER_H
#define QOR_ATTRLOG_FLOW_ENTITYADAPTER_H

#include <qor/attrlog/flow/StreamAdapter.h>
#include <qor/notify/EntityNotifiee.h>

namespace Qor {

class QOR_EXPORT Entity::QorNboAttrLogSa : public StreamAdapter {
  public:
    using Ptr = Qor::Ptr<QorNboAttrLogSa>;
    using FlowOut = NboAttrLog::FlowOut;

    ~QorNboAttrLogSa() override;

    void hasNotificationActiveIs(bool hasNotificationActive) override;
    void isRegisteredNotifieeIs(bool isRegisteredNotifiee) const override;
    void notifierIs(Qor::Ptr<PtrInterface const> const& notifier) override;
    void qorDoZombieReactors(bool zombie) override;
    void onZeroReferences() override;
    void onNotificationException(AttributeId id) override;
    AttributeId handleAttrFlowOut(AttributeId startAttr) override;
    void handleAttrTransaction(AttributeId id, AttrTransactionType type, U32 arg) override;

    virtual void onIsNondestructing();
    // Puts the full names of the entity's class and of its bases, most derived first.
    virtual void putTypeChain();
    // Puts what the entity's constructor took.
    virtual void putConstructorArgument();

    // Whether a read-only entity may be changed after all.
    bool convertedToWritable(bool convert);
    // Whether what the peer sends of this attribute will replace a change that is made here now.
    bool handlingFlowInFor(AttributeId id) const;
    // Whether a record of the attribute may go out now although a resynchronisation runs. With
    // `defer` the caller lacks room or has a text to send: never, and a text of the attribute that
    // is half sent is stale.
    bool prepareImmediateTransmission(AttributeId id, bool defer);
    // Begins a record about an attribute, negative to remove. What a copy sends goes behind a
    // receipt of what it had taken from the original.
    void beginRecord(AttributeId id, U32 wordB = 0, U8 tag = 1);
    // The same for a whole record; see NboAttrLog::Out::claimRecord().
    unsigned char* claimRecord(AttributeId id, std::size_t payload);
    // Whether the peer, when it wrote what was read last, had not taken all that was sent for this
    // entity. Always false of a copy.
    bool hasCrossed() const;
    // Whether something was sent for it after that frame.
    bool hasSentSince(U64 frame) const { return !has(AdapterState::isCopy) && sentAt_ > frame; }
    // In front of what takes children away: a peer that writes learns what had been taken of it, so
    // that it lets go of nothing else.
    void tellHeard();
    void beginChildRemoval(AttributeId id, U8 tag = 1);
    // A child was removed, or a snapshot marked: what is half received of what went is dropped, now
    // or soon.
    void removalSent();
    // Whether this end has announced the entity, and the peer, when it wrote, had not taken that.
    bool isUnheardOf() const;
    // The entity is announced, and its whole state follows.
    void isAnnounced();
    // Of a directory's entry: the placing that it was announced for.
    U64 placing() const noexcept { return placing_; }
    void placingIs(U64 placing) noexcept { placing_ = placing; }
    void sendTransactionMarker(AttributeId id, AttrTransactionType type, U32 arg);
    // Aborts what is pending before anything else is sent.
    void sendPendingAborts(NboAttrLog::FlowOut& flowOut);
    // The flow that notes what is owed, made if there is none, and working on that attribute.
    NboAttrLog::FlowOut& flowOutFor(AttributeId id);

    // The notifiee that hears for this adapter; it is attached with the adapter.
    void companionIs(Qor::Ptr<Entity::NotifieeConst> companion);
    // notifierIs() with an entity that the companion is attached to already.
    void attachedTo(Entity const& entity);
    // Lets go of companion and flow; of the destructor of the class whose companion it is.
    void endAdapter();
    Entity::NotifieeConst* companion() const noexcept { return companion_.ptr(); }

    // Keeps handlingScheduledFlowOut for a scope.
    class HandlingScheduledFlowOutAnchor;

  protected:
    QorNboAttrLogSa(AdapterState::Bits bits, U32 version, Qor::Ptr<NboAttrLog::Out> const& out,
                    PtrInterface* owner);

  private:
    void noteSent();
    void beginOddRecord(AttributeId id, U32 wordB, U8 tag);

    Qor::Ptr<Entity::NotifieeConst> companion_;
    U64 sentAt_ = 0;       // the number of the last frame that was sent for the entity
    U64 announcedAt_ = 0;  // of its announcement by this end
    U64 placing_ = 0;
};

class Entity::QorNboAttrLogSa::HandlingScheduledFlowOutAnchor {
  public:
    HandlingScheduledFlowOutAnchor(QorNboAttrLogSa& adapter, bool on) noexcept
        : adapter_(adapter), old_(adapter.handlingScheduledFlowOut()) {
        adapter_.flagIs(AdapterState::handlingScheduledFlowOut, on);
    }
    ~HandlingScheduledFlowOutAnchor() {
        adapter_.flagIs(AdapterState::handlingScheduledFlowOut, old_);
    }
    HandlingScheduledFlowOutAnchor(HandlingScheduledFlowOutAnchor const&) = delete;
    HandlingScheduledFlowOutAnchor& operator=(HandlingScheduledFlowOutAnchor const&) = delete;

  private:
    QorNboAttrLogSa& adapter_;
    bool const old_;
};

namespace NboAttrLog {

// The adapter for `out` among an entity's notifiees, or null.
QOR_EXPORT Entity::QorNboAttrLogSa* adapterOnList(ListRawGeneric const& list,
                                                  Qor::Ptr<Out const> const& out);
QOR_EXPORT Entity::QorNboAttrLogSa* adapterForMsgChannel(ListRawGeneric const& list,
                                                         Entity::QorNboAttrLogSa const& other);
QOR_EXPORT Qor::Ptr<Entity::QorNboAttrLogSa> deleteAdapter(Entity& entity,
                                                           Qor::Ptr<Out const> const& out);
QOR_EXPORT bool hasIdOn(Entity& entity, Qor::Ptr<Out> const& out);
// The id by which a record on `out` names the entity. Raises EntityIdUnavailableException while it
// has none there.
QOR_EXPORT EntityId entityIdOn(Entity& entity, Qor::Ptr<Out> const& out);

}  // namespace NboAttrLog

}  // namespace Qor

#endif
