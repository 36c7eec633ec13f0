#ifndef VGWCTL_LINK_CONNECTION_H
#define VGWCTL_LINK_CONNECTION_H

// A connection to an agent: a socket, and the attribute log's session on it. It works in step()
// alone.

#include <vgwctl/link/Deadline.h>
#include <vgwctl/link/Socket.h>
#include <vgwctl/link/TlsTransport.h>

#include <ovsdb/remote/Remote.h>
#include <ovsdb/remote/TlsFiles.h>
#include <qor/attrlog/session/Session.h>

#include <poll.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace Vgwctl {

/// Where the agent listens.
struct Target {
    Ovsdb::Remote remote;
    Ovsdb::TlsFiles tls;
};

/// Is given all bytes that come from the agent, before they are understood.
class ByteTap {
  public:
    virtual ~ByteTap() = default;
    /// A connection begins.
    virtual void connected() = 0;
    virtual void heard(std::span<unsigned char const> bytes) = 0;
};

/// How every session of ours is set up.
Qor::NboAttrLog::Session::Config sessionConfig();

class Connection : private Qor::NboAttrLog::SessionListener {
  public:
    using Session = Qor::NboAttrLog::Session;
    using MountId = Qor::NboAttrLog::MountId;

    /// Raises LinkFailure when there is none to be had, Failure when the time is over.
    Connection(Target const& target, Deadline const& deadline);
    /// Over a socket that is connected to the target.
    Connection(Target const& target, Descriptor socket, ByteTap* tap);
    ~Connection() override;

    /// Mounts what stands at `path` and waits until its state is here; `copy` is what it is kept
    /// in, null for a new one. Raises Failure when the agent refuses.
    Qor::Entity::Ptr mount(std::string_view path, bool isWritable, Qor::Entity::Ptr const& copy,
                           Deadline const& deadline);
    /// The same without the wait.
    void beginMount(std::string_view path, bool isWritable, Qor::Entity::Ptr const& copy);
    /// What was mounted last, once its state is here; null until then. Raises Failure when the
    /// agent refuses.
    Qor::Entity::Ptr mounted() const;
    /// Serves the session, and waits for something to do until the time is over. Raises LinkFailure
    /// when the connection has ended.
    void step(Deadline const& until);
    /// What step() would wait for, unless it is due.
    pollfd awaited() const;
    /// Whether the last step() left something to do at hand.
    bool isDue() const;
    /// Calls an operation of the agent's entity; the text of its result. Raises Failure, with the
    /// agent's words, when it was not done.
    std::string call(std::string_view path, std::string_view operation,
                     std::vector<std::string> const& arguments, Deadline const& deadline);
    /// The digest of a page of the agent's tree, and of the same page of the process's tree, taken
    /// at the place of the stream where both should be the same. None when it is not there any
    /// more.
    struct Digests {
        Qor::NboAttrLog::StateDigest agents;
        Qor::NboAttrLog::StateDigest own;
    };
    std::optional<Digests> digest(Qor::NboAttrLog::DigestPage const& page,
                                  Deadline const& deadline);
    /// Until all that was changed here has gone to the agent, and been answered for.
    void flush(Deadline const& deadline);

    Session& session() { return *session_; }
    std::string const& remote() const { return remote_; }

  private:
    class TappedTransport;

    void onMounted(MountId mount, Qor::Entity::Ptr const& entity) override;
    void onSynced(MountId mount) override;
    void onRefused(MountId mount, Qor::String8 const& reason) override;
    void onPong(Qor::Seconds roundTrip) override;
    void onReturned(Qor::NboAttrLog::CallId call, bool isDone, Qor::String8 const& text) override;
    void onDigested(Qor::NboAttrLog::DigestPage const& page,
                    Qor::NboAttrLog::StateDigest const& digest, Qor::String8 const& fault) override;

    /// Whether bytes have come or gone.
    bool serve();

    std::string const remote_;
    Descriptor socket_;
    std::unique_ptr<TappedTransport> transport_;
    std::optional<Session> session_;
    Qor::Entity::Ptr entity_;  // of the mount that is waited for
    bool isSynced_ = false;
    bool isMoving_ = false;  // in the last serve()
    std::optional<std::string> refusal_;
    bool hasPong_ = false;
    std::optional<std::pair<bool, std::string>> returned_;  // whether it was done, and the text
    std::optional<Digests> digests_;
    bool hasDigest_ = false;
};

}  // namespace Vgwctl

#endif
