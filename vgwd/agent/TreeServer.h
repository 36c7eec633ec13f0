#ifndef VGWD_AGENT_TREE_SERVER_H
#define VGWD_AGENT_TREE_SERVER_H

// Serves the agent's tree, and says which of it may be written: everyone who may connect reads all
// of it, and writers may change what docs/agent.md says is theirs.

#include <vgwd/agent/DatabaseSession.h>
#include <vgwd/agent/StateTree.h>
#include <vgwd/serve/PeerBooks.h>
#include <vgwd/serve/Server.h>

#include <asio/io_context.hpp>

#include <string>

namespace Vgwd {

class TreeServer final : private ServerListener {
  public:
    TreeServer(asio::io_context& loop, StateTree& tree, DatabaseSession& database,
               Ovsdb::LogSink log);

    /// Raises std::runtime_error, which names what can't be listened on.
    void start(ServeOptions options);
    /// Nobody waits to be let in any longer.
    void admit() { server_.admit(); }
    void stop(std::string const& reason) {
        server_.stop(reason);
        books_.stop();
    }
    void reloadCertificates() { server_.reloadCertificates(); }
    Server const& server() const { return server_; }

  private:
    std::string whyReadOnly(std::string const& path, Qor::Entity& entity) override;
    std::string whyNotCalled(std::string const& path, Qor::Entity& entity) override;
    std::size_t rowsWaiting(std::string const& identity) override;
    void onWritten(Peer const& peer, Qor::Entity& entity, Qor::AttributeId attribute) override;
    void onTraffic(Peer const& peer) override;

    void keepPaths(Peer const& peer, Qor::AttributeId attribute);

    StateTree& tree_;
    DatabaseSession& database_;
    Vgw::Config::Ptr paths_;  // as they were at the start: what is told there is no peer's to write
    PeerBooks books_;         // is told of each session that the server ends, its own end included
    Server server_;
};

}  // namespace Vgwd

#endif
