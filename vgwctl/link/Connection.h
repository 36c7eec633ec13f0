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
    Connection(Target const& target, Deadline const& deadline, ByteTap* tap = nullptr);
    ~Connection() override;

    /// Mounts what stands at `path` and waits until its state is here; `copy` is what it is kept
    /// in, null for a new one. Raises Failure when the agent refuses.
    Qor::Entity::Ptr mount(std::string_view path, bool isWritable, Qor::Entity::Ptr const& copy,
                           Deadline const& deadline);
    /// Serves the session, and waits for something to do until the time is over. Raises LinkFailure
    /// when the connection has ended.
    void step(Deadline const& until);
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

    void serve();

    std::string const remote_;
    Descriptor socket_;
    std::unique_ptr<Qor::NboAttrLog::Transport> transport_;
    TlsTransport const* tls_ = nullptr;
    std::unique_ptr<TappedTransport> tapped_;
    std::optional<Session> session_;
    Qor::Entity::Ptr entity_;  // of the mount that is waited for
    bool isSynced_ = false;
    std::optional<std::string> refusal_;
    bool hasPong_ = false;
};

}  // namespace Vgwctl

#endif
