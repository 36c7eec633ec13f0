// One connection's end of the attribute log: who stands under which id, what is half received, and
// what is still owed to the peer.
//
// It owns the adapters of its connection, in a table by id. Frames that have arrived are handed to
// them by serveFrames(); flows that are owed take turns in serveFlows(), each a slice of bytes, so
// that no large one holds up the others. Nothing runs by itself: a session calls both. Flows use no
// more than part of the ring out, so that changes of entities that are in step find room.
//
// What ends the connection is told once, to failed(): a fault of the peer's bytes, a record that is
// too long, no memory for one. From then on nothing is read or written.
//
// A demuxer is counted; handlers that it calls may let it, its adapters and their entities go. One
// thread.
#ifndef QOR_ATTRLOG_FLOW_DEMUXER_H
#define QOR_ATTRLOG_FLOW_DEMUXER_H

#include <qor/attrlog/flow/DemuxerManager.h>
#include <qor/attrlog/flow/EntityAdapter.h>
#include <qor/attrlog/flow/FlowQueue.h>
#include <qor/attrlog/flow/FlowsIn.h>

#include <array>
#include <limits>

namespace Qor {

namespace NboAttrLog {

// What the demuxer leaves to the session above it.
class QOR_EXPORT LinkHandler {
  public:
    virtual ~LinkHandler();
    // A frame that concerns the connection itself; reading is limited to its payload.
    virtual void handleLink(Frame const& frame, In& in) = 0;
    // Whether such a frame is taken now. If not, it stays with all that stands behind it until it
    // is asked for again; reading is limited to its payload.
    virtual bool mayTake(In& in);
    // An entity without a parent was announced: what stands for it here, and the flags of its
    // adapter. With a null entity it is skipped, and counted.
    struct Orphan {
        Qor::Ptr<Entity> entity;
        AdapterState::Bits flags;
    };
    virtual Orphan orphan(EntityId const& id, String8 const& typeName, Name const& name) = 0;
    // A record was applied to the entity, or a snapshot of the attribute has come whole.
    virtual void written(Entity& entity, AttributeId attribute);
    // An entity was announced whose class is not known here. It is left out, or stands here as one
    // of a class above.
    virtual void unknownClass(Name const& fullName);
    // The connection can't go on; told once.
    virtual void failed(String8 const& reason) = 0;
};

class QOR_EXPORT Demuxer : public BaseDemuxer {
  public:
    using Ptr = Qor::Ptr<Demuxer>;

    // The two ends of a connection draw their ids from disjoint halves.
    enum class Side : U8 { connecting, accepting };

    // What one peer may make this process hold.
    struct Quota {
        U32 entities = 4'000'000;  // that it has announced, and that are there still
        U64 openTextBytes = 64U << 20;
    };

    // How much went over the connection, and what happened to it.
    struct Counters {
        U64 framesIn = 0;
        U64 unknownEnums = 0;       // kept as they are
        U64 unknownAttributes = 0;  // skipped
        U64 unknownEntities = 0;    // records for what is gone here, skipped
        U64 refusedLocally = 0;     // changes of what may not be changed here
        U64 flowsMade = 0;
        U64 unknownClasses = 0;  // entities of a class that is not known here, skipped
        U64 refusedToPeer = 0;   // values that are this process's alone, skipped
    };

    Demuxer(Name name, Qor::Ptr<In> in, Qor::Ptr<Out> out, Side side);
    ~Demuxer() override;

    Qor::Ptr<In> const& in() const noexcept { return in_; }
    Qor::Ptr<Out> const& out() const noexcept { return out_; }
    // Peers below 2 send no transaction markers.
    U32 protocol() const noexcept { return protocol_; }
    void protocolIs(U32 protocol) noexcept { protocol_ = protocol; }
    void linkHandlerIs(LinkHandler* handler) noexcept { link_ = handler; }
    // Whether the handler is told of what records have changed. Off until told otherwise.
    void tellsWrittenIs(bool tells) noexcept { tellsWritten_ = tells; }
    // Whether what is read-only here may be made writable.
    bool mayConvert() const noexcept { return mayConvert_; }
    void mayConvertIs(bool mayConvert) noexcept { mayConvert_ = mayConvert; }
    // Whether isNondestructing is applied when the peer tells another than the entity's here. It
    // switches the counting of references off, which is no matter of another process's: a session
    // lets it be skipped, and counted.
    bool peerMayUncount() const noexcept { return peerMayUncount_; }
    void peerMayUncountIs(bool mayUncount) noexcept { peerMayUncount_ = mayUncount; }
    void quotaIs(Quota const& quota) noexcept { quota_ = quota; }
    Counters const& counters() const noexcept { return counters_; }

    // Adapters by id.
    Entity::QorNboAttrLogSa* adapter(EntityId const& id) const noexcept {
        if (lastFound_ == nullptr || lastFound_->entityId() != id) lastFound_ = find(id);
        return static_cast<Entity::QorNboAttrLogSa*>(lastFound_);
    }
    U32 adapters() const noexcept { return adapters_.size(); }
    // Those whose entities the peer has announced.
    U32 peersEntities() const noexcept { return peersEntities_; }
    EntityId newEntityId() noexcept;
    // Enters an adapter under its id, and keeps it.
    void adapterIs(StreamAdapter& adapter);
    // Takes the adapter out and hands it over; null if there is none. Its flows end.
    Qor::Ptr<Entity::QorNboAttrLogSa> reactorDel(EntityId const& id);
    // The adapter's entity has gone.
    void adapterEnds(StreamAdapter& adapter);
    // Raises AttrLogRecordException where an id is not the peer's to give, or stands for another
    // entity. A child that was taken out of its place here, and lives on, makes room.
    void needPeersId(EntityId const& id);
    // Whether an id was drawn here for what has gone since: the peer is to hear of that, and what
    // it says of the entity meanwhile is skipped.
    bool hasGoneHere(EntityId const& id) const;
    // An adapter is to be entered under that id soon: its place in the table comes meanwhile.
    void expectAdapter(EntityId const& id) const noexcept {
        adapters_.expectHash(HashMapKey<EntityId>::hash(id));
    }
    // Notes that the peer announces that id, of a tree of which this end holds the copy or not.
    // Ids are announced in rising order for the first time: whether it is announced once more,
    // for what has gone here since.
    bool isOfTheGone(EntityId const& id, bool isCopy);
    // Copies are mounted anew: what has gone may come again.
    void forgetTheGone() noexcept { newestOfCopies_ = 0; }
    // Whether `child`, which stands where the peer announces an entity of that id, is another one
    // that has to make room: it was announced on this connection under another id. `isCollected`
    // tells whether it stands in a collection.
    bool checkEphemeralEntityDeletion(Qor::Ptr<Entity> const& child, EntityId const& id,
                                      bool isCollected) const;

    // Who wrote last, where both ends write at once. Each end counts the frames that it sends and
    // those that it takes; a copy tells the count in front of what it writes, and only there.
    U64 framesSent() const noexcept { return out_->frames(); }
    U64 peerHeard() const noexcept { return peerHeard_; }
    void sendReceipt();

    // What is half received, by entity id.
    FlowIn* flowIn(EntityId const& id) const noexcept { return flowsIn_.flow(id); }
    FlowIn* flowIn(StreamAdapter const& adapter) const noexcept {
        bool const isEntered = adapter.hasUnifiedEntityId();
        if (isEntered && !adapter.has(AdapterState::mayHaveFlowIn)) [[likely]] {
            return nullptr;
        }
        return flowIn(adapter.entityId());
    }
    bool hasFlowsIn() const noexcept { return !flowsIn_.isEmpty(); }
    Qor::Ptr<FlowIn> flowInIs(EntityId const& id);
    Qor::Ptr<FlowIn> flowInIs(StreamAdapter& adapter) {
        adapter.flagIs(AdapterState::mayHaveFlowIn, true);
        return flowInIs(adapter.entityId());
    }
    void flowInDel(EntityId const& id);
    // Drops what is half received of all that was taken out of its place, and lives on. That takes
    // a walk over all that is half received, so the next one waits for as many frames.
    void flowsInDelAway();
    // Frees a text that was half received.
    void textDel(FlowIn& flowIn);
    // Accounts for a text that is half received. Raises RangeException over the quota.
    void openTextInc(U64 bytes);
    U64 openText() const noexcept { return openText_; }

    void unknownEnumsInc(U32 count) noexcept { counters_.unknownEnums += count; }
    // Tells the session of a class that is not known here.
    void unknownClass(Name const& fullName);
    // An entity is left out, since no class of its is known here.
    void leftOutInc() noexcept { ++counters_.unknownClasses; }
    void refusedToPeerInc(U32 count) noexcept { counters_.refusedToPeer += count; }
    void unknownAttributesInc(U32 count) noexcept { counters_.unknownAttributes += count; }

    // Gives the adapter a flow from `startAttr` on, in the place of one that it has, and a place in
    // the queue.
    void createFlowOut(StreamAdapter& adapter, ConnectDesc const& desc, bool flag,
                       AttributeId startAttr);
    // Sends everything as far as there is room. A flow is made for what is left.
    void sendWhole(StreamAdapter& adapter);
    // Whether a flow may send more in this turn.
    bool continueFlowOut() const noexcept {
        return out_->hasLiveBuffer() && out_->freeBytes() >= reserve_ &&
               out_->written() < sliceEnd_;
    }
    // Gives flows turns until `budget` bytes are written, room is out or nothing is owed. Whether
    // there is more to send.
    bool serveFlows(U64 budget);
    bool owes() const noexcept { return !ready_.isEmpty() || mayRetry(); }
    // Flows, those included that wait for an id.
    std::size_t flows() const noexcept { return ready_.size() + waiting_.size(); }
    void wake(FlowOut& flow);
    // What flows wait for may never come: they look once more.
    void targetHasGone() noexcept { ++announced_; }

    // Hands up to `budget` frames that have arrived to their adapters. The number of frames.
    std::size_t serveFrames(std::size_t budget);

    // Whether frames that have arrived wait for the handler to take one.
    bool holdsBack() const noexcept { return holdsBack_; }

    // Takes an adapter's flow away, and frees what it holds.
    void dropFlow(StreamAdapter& adapter);

    // Ends the connection with a reason; the first one counts.
    void fail(String8 const& reason);
    bool hasFailed() const noexcept { return hasFailed_; }
    // A handler of the adapter's threw; called within the catch clause.
    void handlerFailed(StreamAdapter& adapter, AttributeId id) noexcept;
    // Lets all adapters and flows go. Entities stay. What is being served is ended first: nothing
    // is read or written any more, and they go behind it.
    void close();

  private:
    static constexpr U64 sliceBytes = 65536;
    static constexpr U64 firstSliceBytes = 16384;
    static constexpr U64 peersHalf = U64{1} << 63;
    static constexpr U32 greatestDepth = 64;
    static constexpr U64 noEnd = std::numeric_limits<U64>::max();

    StreamAdapter* find(EntityId const& id) const noexcept;
    bool isPeers(EntityId const& id) const noexcept {
        return id.isUnified() && (id.value() & peersHalf) != ownHalf_;
    }
    U64& newestEntered(EntityId const& id) noexcept {
        return newestEntered_[(id.value() & peersHalf) != 0 ? 1 : 0];
    }
    bool mayRetry() const noexcept { return !waiting_.isEmpty() && announced_ != waitingSince_; }
    // While frames or flows are served.
    class Serving {
      public:
        explicit Serving(Demuxer& demuxer) noexcept : demuxer_(demuxer) { ++demuxer_.serving_; }
        ~Serving() { --demuxer_.serving_; }
        Serving(Serving const&) = delete;
        Serving& operator=(Serving const&) = delete;

      private:
        Demuxer& demuxer_;
    };
    void closeIfDue() {
        if (serving_ == 0 && isToClose_) close();
    }
    void retryWaiting();
    void run(FlowOut& flow);
    bool runPass(FlowOut& flow, StreamAdapter& adapter);
    void park(FlowOut& flow);
    AttributeId sendAtOnce(StreamAdapter& adapter);
    bool mayTake(Frame const& frame);
    void serveFrame(Frame const& frame);
    void serveRecord(Frame const& frame);
    void serveTransaction(Frame const& frame);
    void serveOrphan(Frame const& frame);
    static bool isAway(StreamAdapter const& adapter) noexcept {
        Entity const* const entity = adapter.qorRawEntity();
        return adapter.has(AdapterState::isChild) && entity && !entity->qorParent();
    }
    Entity::QorNboAttrLogSa* receiver(Frame const& frame);

    Qor::Ptr<In> in_;
    Qor::Ptr<Out> out_;
    LinkHandler* link_ = nullptr;
    HashMap<StreamAdapter, EntityId> adapters_;
    // The greatest ids that were entered, of each half: a greater one is nobody's.
    std::array<U64, 2> newestEntered_{};
    // The one that was looked up last: records of an entity come in a row.
    mutable StreamAdapter* lastFound_ = nullptr;
    FlowsIn flowsIn_;
    FlowQueue ready_;
    FlowQueue waiting_;  // for an id of an entity that a reference names
    U64 nextId_;
    U64 ownHalf_;
    U64 reserve_;
    U64 sliceEnd_ = noEnd;
    U64 announced_ = 0;  // counts ids that became known, and targets that went
    U64 waitingSince_ = 0;
    U64 openText_ = 0;
    U64 heard_ = 0;           // frames of the peer's that were taken, the one being read included
    U64 walksAgainAt_ = 0;    // frames of both directions at which flowsInDelAway() walks again
    U64 toldHeard_ = 0;       // what the last receipt said
    U64 peerHeard_ = 0;       // what the peer's last receipt said
    U64 newestOfCopies_ = 0;  // the greatest id that the peer has announced
    U64 newestOfOriginals_ = 0;  // the same, of what the peer made in trees of this end's
    Quota quota_;
    U32 peersEntities_ = 0;
    Counters counters_;
    U32 protocol_ = 2;
    U32 depth_ = 0;
    bool mayConvert_ = false;
    bool peerMayUncount_ = true;
    bool tellsWritten_ = false;
    bool hasFailed_ = false;
    bool holdsBack_ = false;
    U32 serving_ = 0;
    bool isToClose_ = false;  // when what is being served has ended
    bool owesWalk_ = false;
};

// Who serves the In, or null.
inline Demuxer* demuxFor(Qor::Ptr<In const> const& in) noexcept {
    return in ? in->demuxer() : nullptr;
}
// Who serves the In behind an Out, or null.
QOR_EXPORT Demuxer* demuxerOf(Out const& out) noexcept;

}  // namespace NboAttrLog

using NboAttrLog::demuxFor;

inline bool StreamAdapter::continueFlowOut() const {
    auto const* const demuxer = qorRawDemuxer();
    return demuxer != nullptr && demuxer->continueFlowOut();
}

}  // namespace Qor

#endif
