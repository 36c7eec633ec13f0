// One connection between two processes, over a transport that the caller owns and polls. Either end
// may mount entities of the other's tree by their paths; a mounted copy is kept in step until it is
// unmounted or the connection ends, and stays then as it was. Mounted again over a new connection,
// it is brought up to date, and hears of real differences only.
//
// A session that takes types asks the peer for descriptions of all its types first, and mounts when
// they are there: what is not compiled in here is then kept in dynamic entities. Of a class that is
// announced later and is not known, it asks by name. Any session mounts again when a class becomes
// known that it lacked, whoever described it; what was mounted stays, and onSynced is told once
// more.
//
// A session never blocks and runs only inside service(). It ends once, with one named reason: the
// transport's, the peer's, or a fault of what the peer sent. Any handler that it reaches and any
// call of the listener but onWantsWrite may destroy it. One thread, which it does not outlive.
//
//   Session session(config, transport, root);
//   while (session.closed().length() == 0) { poll; session.service(); }
#ifndef QOR_ATTRLOG_SESSION_SESSION_H
#define QOR_ATTRLOG_SESSION_SESSION_H

#include <qor/attrlog/flow/Demuxer.h>
#include <qor/attrlog/session/StateDigest.h>
#include <qor/attrlog/session/Transport.h>
#include <qor/dynamic/DescribedTypes.h>

#include <deque>
#include <map>
#include <memory>
#include <set>
#include <vector>

namespace Qor {

namespace NboAttrLog {

using MountId = U32;
using CallId = U32;

// What a session tells its user. All calls come from within service().
class QOR_EXPORT SessionListener {
  public:
    virtual ~SessionListener();
    // The peer has announced what was asked for; its state is on the way.
    virtual void onMounted(MountId mount, Ptr<Entity> const& entity);
    // Everything that the peer's entity held when it was mounted has arrived.
    virtual void onSynced(MountId mount);
    // The peer does not give it, or it is of a class that is not known here.
    virtual void onRefused(MountId mount, String8 const& reason);
    // The peer has answered a ping, after so many seconds.
    virtual void onPong(Seconds roundTrip);
    // The peer has called what it was asked to call: the text of the result, empty for none. Or it
    // has not, and `text` tells why.
    virtual void onReturned(CallId call, bool isDone, String8 const& text);
    // The digest of the peer's entity, at the place of the stream where the copy should have it
    // too; or why there is none.
    virtual void onDigested(DigestPage const& page, StateDigest const& digest,
                            String8 const& fault);

    // The peer asks for what stands at `path`, of which it could be given the entity. Why it is not
    // given it; empty: it is.
    virtual String8 onAsked(String8 const& path, bool writable, Entity& entity);
    virtual void onGiven(MountId mount, String8 const& path, bool writable);
    // The peer, which may write, asks for an operation of the entity at `path` to be called. Why it
    // is not; empty: it is. None is unless this is overridden. What an operation requires of its
    // entity and arguments beyond their types stops the process where it does not hold, so whoever
    // lets one be called lets through only those that require nothing.
    virtual String8 onAskedToCall(String8 const& path, String8 const& operation, Entity& entity);
    // The peer has given it back.
    virtual void onTakenBack(MountId mount);
    // A record of the peer, which may write, was applied to the entity, or its snapshot of the
    // attribute has come whole and removed what was not in it.
    virtual void onWritten(Entity& entity, AttributeId attribute);
    // There is something to send where there was nothing; the one call that comes from within a
    // setter, so it may note that service() is due and do no more.
    virtual void onWantsWrite();
};

class QOR_EXPORT Session : private LinkHandler, private OutWaker {
  public:
    struct Config {
        Name name{"session"};
        Demuxer::Side side = Demuxer::Side::connecting;
        // Whether the peer may change what it mounts.
        bool peerMayWrite = false;
        // The longest frame that is taken; at least 64 KiB, for a text under the longest key.
        U32 greatestFrame = defaultGreatestFrame;
        U32 ringBlocks = Out::defaultBlocks;
        Demuxer::Quota quota;
        U32 mounts = 1024;  // that the peer may have
        // Whether classes that are not compiled in here are held by their descriptions.
        bool takesTypes = false;
        DescribedTypes::Quota types;
    };

    struct Counters {
        U64 bytesIn = 0;
        U64 bytesOut = 0;
        U64 framesIn = 0;
        U64 framesOut = 0;
        U64 pingsIn = 0;        // frames of the peer's that asked; each had one in answer
        U64 flows = 0;          // entities that are behind now
        Seconds since = 0;      // when the session was made
        Seconds lastHeard = 0;  // when bytes came last
    };

    // `root` is the tree of which the peer may mount entities, null for none. A path's first
    // element is its name.
    Session(Config config, Transport& transport, Ptr<Entity> root);
    ~Session() override;
    Session(Session const&) = delete;
    Session& operator=(Session const&) = delete;

    void listenerIs(SessionListener* listener) noexcept { listener_ = listener; }

    // Asks the peer for the entity at `path`. `copy` is what it is kept in; null: an entity of its
    // class is made. A copy that is not `writable` refuses changes here. What stands below another
    // mounted entity is the part of its copy, whatever `copy` is; one above another is refused.
    MountId mount(String8 const& path, bool writable, Ptr<Entity> copy = nullptr);
    // The copy stays as it is, and is kept in step no longer. What stands below it and is mounted
    // by itself is mounted again.
    void unmount(MountId mount);
    // The copy, or null before it is announced.
    Ptr<Entity> mounted(MountId mount) const;
    void ping();
    // Asks the peer to call an operation of its entity at `path`. The arguments are the texts that
    // their types read (QorType::genericIfFromStrep), of an entity its path.
    CallId call(String8 const& path, String8 const& operation,
                std::vector<String8> const& arguments);
    // Asks for the digest of a page of the peer's tree; at most 64 may be under way.
    void askForDigest(DigestPage const& page);

    // Reads, applies, sends and writes until nothing goes on, or until `budget` bytes have come or
    // gone.
    void service(U64 budget = 1U << 20);
    // Whether the last service() ended with more to read at hand.
    bool wantsRead() const noexcept { return wantsRead_; }
    // Whether there are bytes that the transport has not taken, or could be: then service() is due
    // when it takes some.
    bool wantsWrite() const;
    // Whether bytes that come can be taken. While not, what has come waits for room to be answered:
    // the transport is to be waited for to take bytes, and not to bring any.
    bool hasRoom() const;
    // Why the session has ended; empty while it has not.
    String8 const& closed() const noexcept { return reason_; }
    // Ends it, and tells the peer why.
    void close(String8 const& reason);

    Counters counters() const;
    Demuxer const& demuxer() const noexcept { return *demuxer_; }

  private:
    // What a hello begins with: the bytes "QORL", and the protocol.
    static constexpr U32 magic = 0x514F524C;
    static constexpr U32 protocol = 2;

    enum class Op : U8 {
        hello = 1,
        mount = 2,
        mounted = 3,
        synced = 4,
        refused = 5,
        unmount = 6,
        error = 7,
        ping = 8,
        pong = 9,
        call = 20,
        returned = 21,
        digest = 22,
        digested = 23,
        describe = 10,
        described = 11,
        describedAll = 12,
    };
    struct Asked {
        String8 path;
        bool writable = false;
        Ptr<Entity> copy;
        EntityId id = {};
        U32 number = 0;  // that the peer was asked under last; 0: it is to be asked again
        bool isTold = false;
    };
    // What is still to be told of the types that the peer asked for.
    struct Answer {
        U32 number;
        std::vector<QorType*> types;
        std::size_t next = 0;
    };
    static constexpr std::size_t greatestAnswers = 16;
    static constexpr std::size_t greatestNamesAsked = 1024;
    static constexpr std::size_t greatestNamesLacked = 1024;
    struct Given {
        EntityId id;
        bool isSynced = false;
    };
    struct Held {
        String8 path;
        bool writable = false;
    };

    // On the stack of whatever reaches handlers or the listener, which may end the session: false
    // from then on.
    class Alive {
      public:
        explicit Alive(Session const& session) noexcept : isAlive_(session.isAlive_) {}
        explicit operator bool() const noexcept { return *isAlive_; }

      private:
        std::shared_ptr<bool> const isAlive_;
    };

    void handleLink(Frame const& frame, In& in) override;
    bool mayTake(In& in) override;
    void handleOp(Op op, In& in);
    static bool isAnsweredAtOnce(Op op);
    Orphan orphan(EntityId const& id, String8 const& typeName, Name const& name) override;
    Orphan mountedHere(MountId mount, EntityId const& id);
    void failed(String8 const& reason) override;
    void unknownClass(Name const& fullName) override;

    void handleHello(In& in);
    void handleMount(In& in);
    void handleMounted(In& in);
    void handleUnmount(In& in);
    void handleAnswer(Op op, In& in);
    void handleCall(In& in);
    void handleReturned(In& in);
    void handleDigest(In& in);
    void handleDigested(In& in);
    void tellDigest();
    String8 called(String8 const& path, String8 const& operation,
                   std::vector<String8> const& arguments);
    void giveAsked(MountId mount, Held const& asked, bool mayHoldBack);
    String8 whyNotGiven(Held const& asked, Ptr<Entity> const& entity);
    bool isOnItsWay(Entity const& entity) const;
    String8 whyNotAbove(Entity const& entity) const;
    void giveHeld();
    void give(MountId mount, Entity& entity, bool writable);
    void letGo(EntityId const& id);
    void refuse(MountId mount, String8 const& reason);
    static String8 findCopy(Asked& asked, String8 const& typeName, Name const& name);
    void refuseHere(EntityId const& id, String8 const& reason);
    Ptr<Entity> entityAt(String8 const& path) const;
    AdapterState::Bits flagsForPeer(bool writable) const;
    template <class... Field>
    void send(Op op, Field const&... field);
    void written(Entity& entity, AttributeId attribute) override;
    void onFirstFrame() override;
    bool serveTurn(U64 budget, U64 readEnd);
    bool readAll(U64 end);
    bool writeAll();
    void tellSynced();
    // As it is told: 1 KiB at most, whoever wrote what stands in it.
    static String8 toldText(String8 const& reason);

    // The types of both ends.
    void askForTypes(Name const& fullName);
    bool awaitsTypes() const noexcept { return typesAsked_ != typesAnswered_; }
    void askFor(MountId mount, Asked& asked);
    void askForAll();
    EntityId giveBack(Asked& asked);
    std::map<MountId, Asked>::iterator askedUnder(U32 number);
    void handleDescribe(In& in);
    void handleDescribed(In& in);
    void handleDescribedAll(In& in);
    void describeTypes();
    void askOn();
    bool mayLackLess() const noexcept;
    void mountWhatWasLacked();
    void mountAllAgain();
    void mountAgain(std::pair<MountId const, Asked>& one);
    bool holdBackForType(EntityId const& id, Name const& fullName);

    Config const config_;
    Transport& transport_;
    Ptr<Entity> const root_;
    Demuxer::Ptr demuxer_;
    SessionListener* listener_ = nullptr;
    std::shared_ptr<bool> const isAlive_ = std::make_shared<bool>(true);
    std::map<MountId, Asked> asked_;  // of the peer
    std::map<U32, MountId> numbers_;  // that the peer was asked under
    std::map<MountId, Given> given_;  // to the peer, by its own numbers
    std::map<MountId, Held> held_;    // until what stands above has been announced
    MountId lastMount_ = 0;
    U32 lastNumber_ = 0;
    CallId lastCall_ = 0;
    std::deque<DigestPage> digestsAsked_;
    std::deque<DigestPage> digestsOwed_;
    bool hasHello_ = false;
    bool wantsRead_ = false;
    U64 answered_ = 0;            // bytes of answers, since the ring out had room
    bool mayTellDigest_ = false;  // in this service()
    DescribedTypes types_;        // that the peer describes now
    U32 typesAsked_ = 0;          // numbers of questions
    U32 typesAnswered_ = 0;
    std::set<Name> namesAsked_;
    std::deque<Name> namesToAsk_;  // when the peer has answered some of what it was asked
    std::set<Name> lacked_;        // classes that were announced and are not known here
    U32 publications_ = 0;         // of types, when lacked_ was looked through
    std::deque<Answer> answers_;
    String8 reason_;
    U64 pingsIn_ = 0;
    Seconds since_;
    Seconds lastHeard_;
};

template <class... Field>
void Session::send(Op op, Field const&... field) {
    auto const& out = demuxer_->out();
    out->beginFrame(FrameKind::link, {});
    out << Out::TransactToken::begin << static_cast<U8>(op);
    (static_cast<void>(out << field), ...);
    out << Out::TransactToken::end;
}

}  // namespace NboAttrLog

}  // namespace Qor

#endif
