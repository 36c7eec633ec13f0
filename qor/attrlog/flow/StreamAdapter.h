// What binds an object to one attribute log connection. A stream adapter is made for a pair of an
// entity and an Out, and stands in the connection's demuxer under the entity's id, which owns it.
// When it is taken out there it is tied to no connection any more: whoever holds it may keep it for
// as long as he likes.
// The notifiee that hears for it, its companion, is another object on the entity's list; the
// adapter itself stands on no list.
//
// An adapter holds its entity by a reference, or not at all when it is weak; then the companion
// tells it of the entity's end. Adapter, entity and connection belong to one thread.
#ifndef QOR_ATTRLOG_FLOW_STREAMADAPTER_H
#define QOR_ATTRLOG_FLOW_STREAMADAPTER_H

#include <qor/attrlog/NboAttrLogIn.h>
#include <qor/attrlog/NboAttrLogOut.h>
#include <qor/attrlog/flow/AdapterState.h>
#include <qor/attrlog/flow/ConnectDesc.h>
#include <qor/attrlog/flow/FlowOut.h>
#include <qor/attrlog/flow/MsgChannel.h>

namespace Qor {

namespace NboAttrLog {
class Demuxer;
}

class QOR_EXPORT StreamAdapter : public PtrInterface::NotifieeConst {
  public:
    using Ptr = Qor::Ptr<StreamAdapter>;

    // How the entity is kept in step.
    enum SyncMode : U32 {
        live = 0,      // changes are sent as they come
        released = 1,  // the source has let the entity go; it stays as it was last
        resync = 2,    // whole states are sent, and what they don't hold is removed
    };
    // Raises Qor::RangeException for any other number.
    static SyncMode SyncModeInstance(U32 number);

    enum AttrTransactionType : U8 { begin = 0, abort = 1, end = 2 };

    // How a record is to be read; nothing is defined yet.
    using DeserializationOptions = U32;

    ~StreamAdapter() override;

    // The state of a resynchronisation, or null while none runs.
    NboAttrLog::FlowOut* flowOut() const noexcept { return flowOut_.ptr(); }
    Qor::Ptr<NboAttrLog::Out> const& nboAttrLogOut() const noexcept { return out_; }
    EntityId entityId() const noexcept { return entityId_; }
    bool hasUnifiedEntityId() const noexcept { return entityId_.isUnified(); }
    SyncMode syncMode() const noexcept { return syncMode_; }
    MsgChannel::Constrainer::QorEntry* msgChannel() const noexcept { return msgChannel_; }
    U32 version() const noexcept { return version_; }

    // The state word.
    AdapterState::Bits state() const noexcept { return qor_bitSet(); }
    bool has(U32 flag) const noexcept { return (state().word() & flag) != 0; }
    void stateIs(AdapterState::Bits bits) noexcept { qorState() = bits; }
    void flagIs(U32 flag, bool on) noexcept {
        U32 const word = state().word();
        qorState() = AdapterState::Bits(on ? word | flag : word & ~flag);
    }
    bool isActive() const noexcept { return has(AdapterState::isActive); }
    // Whether its flow gets no turns, until the peer has announced the entity again or the
    // framework lets it.
    bool isHeldUp() const noexcept {
        return has(AdapterState::remountPending | AdapterState::flowOutSuspended);
    }
    // The peer has announced the entity again, with which its flags were replaced: a flow that was
    // held up goes on.
    void remounted();
    bool steadyState() const noexcept { return has(AdapterState::steadyState); }
    bool handlingScheduledFlowOut() const noexcept {
        return has(AdapterState::handlingScheduledFlowOut);
    }

    virtual void handleSyncMode();
    // Sends what is owed, from `startAttr` on, as far as there is room. The attribute at which to
    // go on; 0 when this adapter has finished.
    virtual AttributeId handleAttrFlowOut(AttributeId startAttr);
    // As a start attribute: all of them.
    static constexpr AttributeId everything = 1;
    // Frees what the flow holds for the attribute that it works on.
    virtual void freeResyncState(Qor::Ptr<NboAttrLog::FlowOut> const& flowOut);
    // The adapter has been made for sending: it gets an id and is entered in the demuxer.
    virtual void qorOnInit();
    virtual void qorInstantiateSerialize();
    virtual NboAttrLog::Demuxer const* streamDemuxer() const;
    virtual NboAttrLog::Demuxer* streamDemuxer();
    // Borrowed; null when the entity has gone.
    virtual Entity const* qorNotifierEntity() const;
    virtual Entity* qorNotifierEntity();
    // The same two without a virtual call.
    NboAttrLog::Demuxer* qorRawDemuxer() const noexcept {
        return demuxer_ != nullptr ? demuxer_ : connectionsDemuxer();
    }
    // The one it is entered in; null before.
    NboAttrLog::Demuxer* enteredDemuxer() const noexcept { return demuxer_; }
    Entity* qorRawEntity() const noexcept { return const_cast<Entity*>(entity_); }
    // Announces an entity without a parent on this connection, and sends its state.
    virtual void doSerializeOrphan();
    // Decodes one record and applies it, or, with `in`, reads it from there and sends the
    // attribute's present state instead. `size` is the payload's byte count.
    virtual void handleAttrDeserialization(AttributeId id, DeserializationOptions options, U32 size,
                                           Qor::Ptr<NboAttrLog::In> const& in);
    virtual void handleAttrTransaction(AttributeId id, AttrTransactionType type, U32 arg);
    virtual void doAssignEntityId();
    // Makes the state of a resynchronisation from `startAttr` on.
    virtual Qor::Ptr<NboAttrLog::FlowOut> flowOutIs(Qor::Ptr<NboAttrLog::Out> const& out,
                                                    NboAttrLog::ConnectDesc const& desc, bool flag,
                                                    AttributeId startAttr);
    virtual EntityId realEntityId() const;
    // Replays a change of an attribute; `key` points to the key of a keyed one.
    virtual void doNotification(AttributeId id, void* key);
    // Number of inconsistencies; 0 is sound.
    virtual U32 audit() const;
    virtual void entityIdInitializedIs(bool initialized);
    virtual void syncModeIs(SyncMode mode);
    virtual void entityIdIs(EntityId const& id);
    virtual void streamDemuxerIs(NboAttrLog::Demuxer* demuxer);
    virtual void msgChannelIs(MsgChannel::Constrainer::QorEntry* entry);
    virtual void notificationDisabledDueToMsgChannelIs(bool disabled);
    virtual void qorDoZombieReactors(bool zombie);
    // Takes down the adapters of what the entity owns, so that a new snapshot makes them anew.
    virtual void doRemountSelf(Qor::Ptr<NboAttrLog::Out> const& out);
    // Sends the whole state without a flow, as far as that goes. The attribute from which on a flow
    // has to send it; 0 when all is sent.
    virtual AttributeId sendAtOnce();

    bool isStreamAdapter() const override;
    String8 name() const override;
    void notifierIs(Qor::Ptr<PtrInterface const> const& notifier) override;
    // Whether the adapter counts a reference on its entity.
    void isWeakReferenceIs(bool isWeak);

    // Sends the whole state: now as far as there is room, and then in the demuxer's turns.
    void doThis();
    // Whether more may be sent in this turn.
    inline bool continueFlowOut() const;
    // What a child's adapter has of its parent's run-time state.
    void doFixChildFlags(Qor::Ptr<StreamAdapter> const& child);
    // Enters an id that came from the peer, and the adapter in the demuxer.
    void doEntityIdIs(EntityId const& id, Qor::Ptr<NboAttrLog::Demuxer> const& demuxer,
                      bool isPeers);
    // Enters it under an id of the peer's that was found to be free. REQUIRES: it has no id
    void takesPeersId(EntityId const& id, NboAttrLog::Demuxer& demuxer);
    // Whether the peer may write this attribute although the adapter is read-only.
    bool readOnlyRemoteOk(AttributeId id) const;
    [[noreturn]] void doThrowReadOnly(char const* attributeName) const;
    // Takes a record that no case of the class knows: skipped and counted.
    void doBaseQorNboAttrLogSaMsg(AttributeId id, DeserializationOptions options, U32 size,
                                  NboAttrLog::In& in);

    // Of the demuxer's table.
    EntityId const& fwkKey() const noexcept { return entityId_; }
    U32 fwkHash() const noexcept { return HashMapKey<EntityId>::hash(entityId_); }
    StreamAdapter* fwkHmNext() const noexcept { return fwkHmNext_; }
    void fwkHmNextIs(StreamAdapter* next) noexcept { fwkHmNext_ = next; }

  protected:
    StreamAdapter(AdapterState::Bits bits, U32 version, Qor::Ptr<NboAttrLog::Out> const& out,
                  PtrInterface* owner);
    void swapEntity(Entity const* entity);

  private:
    friend class NboAttrLog::Demuxer;
    // It is entered nowhere any more, and sends nothing.
    void leave();
    // Of one that is not entered: the demuxer behind its Out, or null.
    NboAttrLog::Demuxer* connectionsDemuxer() const noexcept;

    Qor::Ptr<NboAttrLog::Out> out_;
    // Of the demuxer's table: its chains lead through these two, which lie in one line of memory.
    EntityId entityId_;
    StreamAdapter* fwkHmNext_ = nullptr;
    NboAttrLog::Demuxer* demuxer_ = nullptr;  // while it is entered there
    Entity const* entity_ = nullptr;
    Qor::Ptr<NboAttrLog::FlowOut> flowOut_;
    MsgChannel::Constrainer::QorEntry* msgChannel_ = nullptr;
    SyncMode syncMode_ = live;
    U32 version_;
    bool holdsEntity_ = true;
};

}  // namespace Qor

#endif
