#ifndef TESTS_SUPPORT_TREECLIENT_CONNECTION_H
#define TESTS_SUPPORT_TREECLIENT_CONNECTION_H

// One connection to an agent that serves its tree, and the copies that are mounted over it. With
// `reconnects` a lost connection is made again, and what was mounted is mounted again into the
// copies that are there. What happens is told as lines on standard output.

#include <qor/attrlog/session/Session.h>
#include <qor/entity/Entity.h>

#include <optional>
#include <string>
#include <vector>

namespace TreeClient {

struct Mount {
    std::string path;
    bool isWritable = false;
    Qor::Ptr<Qor::Entity> copy;
    Qor::NboAttrLog::MountId id = 0;
    bool isSynced = false;
};

class Connection final : private Qor::NboAttrLog::SessionListener {
  public:
    /// Of a unix socket's path, or, all digits, a port of 127.0.0.1.
    Connection(std::string address, bool reconnects, bool isQuiet);
    ~Connection() override { drop(); }

    void add(std::string path, bool isWritable);
    bool remove(std::string const& path);
    /// Connects if need be. False when it is lost and not to be made again.
    bool keep();
    void service();
    void ping() { session_->ping(); }
    int socket() const { return socket_; }
    bool wantsWrite() const { return session_ && session_->wantsWrite(); }
    bool isSynced() const;
    Qor::NboAttrLog::Session::Counters counters() const;
    std::vector<Mount> const& mounts() const { return mounts_; }
    /// What stands at that path in the copies, or null.
    Qor::Ptr<Qor::Entity> at(std::string const& path) const;

  private:
    void onMounted(Qor::NboAttrLog::MountId id, Qor::Ptr<Qor::Entity> const& entity) override;
    void onSynced(Qor::NboAttrLog::MountId id) override;
    void onRefused(Qor::NboAttrLog::MountId id, Qor::String8 const& reason) override;
    void onPong(Qor::Seconds) override;

    bool connect();
    void drop();
    void ask(Mount& mount);
    Mount* mountOf(Qor::NboAttrLog::MountId id);
    void say(std::string const& line) const;

    std::string const address_;
    bool const reconnects_;
    bool const isQuiet_;
    int socket_ = -1;
    std::optional<Qor::NboAttrLog::FdTransport> transport_;
    std::optional<Qor::NboAttrLog::Session> session_;
    std::vector<Mount> mounts_;
};

}  // namespace TreeClient

#endif
