#ifndef VGWD_SERVE_PEER_H
#define VGWD_SERVE_PEER_H

// One connection of someone who mounts the tree: found out who it is, then a session.
//
// Everything happens on the event loop, in turns of a limited number of bytes, whatever the peer
// does: one that sends without end, reads slowly or not at all costs a turn now and then, and
// memory for its ring. A peer that is not heard of after something was sent to it is asked whether
// it is there (PeerTimes); at rest nothing is sent.
//
// Not thread-safe. Kept by its server, and while a handler of its own waits for the socket.

#include <qor/attrlog/session/Session.h>
#include <vgwd/serve/PeerHost.h>
#include <vgwd/serve/PeerTransport.h>

#include <asio/io_context.hpp>
#include <asio/posix/stream_descriptor.hpp>
#include <asio/steady_timer.hpp>

#include <map>
#include <memory>
#include <optional>

namespace Vgwd {

class Peer final : public std::enable_shared_from_this<Peer>,
                   private Qor::NboAttrLog::SessionListener {
  public:
    using Session = Qor::NboAttrLog::Session;
    using Kind = ListenAddress::Kind;
    struct Mount {
        std::string path;
        bool isWritable = false;
    };

    /// Takes the connected socket, which does not block.
    Peer(asio::io_context& loop, PeerHost& host, int socket, Kind kind, std::string name);
    ~Peer() override;

    /// Finds out who it is, and begins or refuses.
    void start();
    /// Ends the connection and tells the peer why, as far as it takes that at once.
    void close(std::string const& reason);

    std::string const& name() const { return name_; }
    Identity const& identity() const { return identity_; }
    Kind kind() const { return kind_; }
    std::map<Qor::NboAttrLog::MountId, Mount> const& mounts() const { return mounts_; }
    /// REQUIRES: hasSession().
    Session const& session() const { return *session_; }
    bool hasSession() const { return session_.has_value(); }
    /// Does not answer: asked whether it is there, and not heard of for the told limit.
    bool isSilent() const { return isSilent_; }

    /// Frames both ways, without those about the link itself and those that excuse() was told of.
    Qor::U64 frames() const;
    /// Of the frames sent so far, so many more only tell what the books of the sessions say.
    void excuse(Qor::U64 frames) { excused_ += frames; }

  private:
    Qor::String8 onAsked(Qor::String8 const& path, bool writable, Qor::Entity& entity) override;
    Qor::String8 onAskedToCall(Qor::String8 const& path, Qor::String8 const& operation,
                               Qor::Entity& entity) override;
    void onGiven(Qor::NboAttrLog::MountId mount, Qor::String8 const& path, bool writable) override;
    void onTakenBack(Qor::NboAttrLog::MountId mount) override;
    void onWritten(Qor::Entity& entity, Qor::AttributeId attribute) override;
    void onPong(Qor::Seconds roundTrip) override;
    void onWantsWrite() override { schedule(); }

    void shakeHands();
    void begin(Identity identity);
    void refuse(std::string const& reason);
    void makeSession(bool mayWrite, Qor::Ptr<Qor::Entity> root);
    void schedule();
    void runTurn();
    bool serve();
    void noteTraffic();
    void countHeld();
    std::string whyNoMoreRows() const;
    void closeFor(std::string const& reason);
    void await();
    void awaitReadable();
    void awaitWritable();
    void end(std::string const& reason);

    void limitHello();
    void watchSilence();
    void handleSilence();
    void handleUnanswered();

    asio::io_context& loop_;
    PeerHost& host_;
    asio::posix::stream_descriptor socket_;
    Kind const kind_;
    std::string const name_;
    Identity identity_;
    std::unique_ptr<PeerTransport> transport_;
    TlsPeerTransport* tls_ = nullptr;  // the transport, if it is one
    std::optional<Session> session_;
    std::map<Qor::NboAttrLog::MountId, Mount> mounts_;
    QuotaUse taken_;
    asio::steady_timer deadline_;
    asio::steady_timer silence_;
    Qor::U64 framesSeen_ = 0;
    Qor::U64 framesHeard_ = 0;  // that had come when the peer was last heard
    Qor::U64 answeredOut_ = 0;  // that had gone then, those that count
    Qor::U64 excused_ = 0;
    Qor::U64 pings_ = 0;
    Qor::U64 pongs_ = 0;
    bool isScheduled_ = false;
    bool awaitsReadable_ = false;
    bool awaitsWritable_ = false;
    bool watchesSilence_ = false;
    bool isSilent_ = false;
    bool isOver_ = false;
};

}  // namespace Vgwd

#endif
