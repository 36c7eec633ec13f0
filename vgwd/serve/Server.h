#ifndef VGWD_SERVE_SERVER_H
#define VGWD_SERVE_SERVER_H

// Serves the tree to other processes: listens, and keeps a session with each that connects and may
// (Access.h). All of it runs on the agent's event loop, beside the mirror and without waiting.

#include <ovsdb/rpc/Tether.h>
#include <vgwd/serve/Listener.h>
#include <vgwd/serve/Peer.h>
#include <vgwd/serve/PeerHost.h>
#include <vgwd/serve/TlsContext.h>

#include <asio/io_context.hpp>
#include <asio/steady_timer.hpp>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace Vgwd {

class ServerListener {
  public:
    virtual ~ServerListener() = default;
    /// Why nobody may write what stands at that path; empty: writers may.
    virtual std::string whyReadOnly(std::string const& path, Qor::Entity& entity) = 0;
    /// Why nobody may call operations of what stands at that path; empty: writers may.
    virtual std::string whyNotCalled(std::string const& path, Qor::Entity& entity) = 0;
    /// How many rows that writers of an identity have made wait for the database.
    virtual std::size_t rowsWaiting(std::string const& identity) = 0;
    /// A writer has changed an attribute.
    virtual void onWritten(Peer const& peer, Qor::Entity& entity, Qor::AttributeId attribute) = 0;
    /// A session began, ended, or something went over it.
    virtual void onTraffic(Peer const& peer) = 0;
};

class Server final : private PeerHost {
  public:
    Server(asio::io_context& loop, Qor::Ptr<Qor::Entity> root, ServerListener& listener,
           Ovsdb::LogSink log);
    ~Server() override;

    /// Begins to listen, and to take connections, if the options don't say to wait. Raises
    /// std::runtime_error, which names the address or file and what is wrong with it.
    void start(ServeOptions options);
    /// Who has connected and waits is taken, as is everyone from now on.
    void admit();
    /// Ends everything; the peers are told why.
    void stop(std::string const& reason);
    /// The certificates are read again, for connections from now on; files that are no good are
    /// said and change nothing.
    void reloadCertificates();

    std::vector<std::shared_ptr<Peer>> const& peers() const { return peers_; }
    /// Where it listens, free ports told.
    std::vector<ListenAddress> addresses() const;

  private:
    Qor::Ptr<Qor::Entity> root() override { return root_; }
    ServeOptions const& options() const override { return options_; }
    Quotas& quotas() override { return *quotas_; }
    SSL_CTX* tlsContext() override { return tls_->get(); }
    void log(Ovsdb::LogLevel level, std::string const& text) override { log_(level, text); }
    std::string whyReadOnly(std::string const& path, Qor::Entity& entity) override;
    std::string whyNotCalled(std::string const& path, Qor::Entity& entity) override;
    std::size_t rowsWaiting(std::string const& identity) override;
    void handleWritten(Peer& peer, Qor::Entity& entity, Qor::AttributeId attribute) override;
    void handleTraffic(Peer& peer) override { listener_.onTraffic(peer); }
    void handleEnded(Peer& peer) override;

    void accept(int socket, ListenAddress::Kind kind);

    asio::io_context& loop_;
    Qor::Ptr<Qor::Entity> root_;
    ServerListener& listener_;
    Ovsdb::LogSink log_;
    ServeOptions options_;
    std::optional<Quotas> quotas_;
    std::optional<TlsContext> tls_;
    asio::steady_timer admission_;
    Ovsdb::Tether tether_;
    std::vector<std::unique_ptr<Listener>> listeners_;
    std::vector<std::shared_ptr<Peer>> peers_;
    std::uint64_t made_ = 0;  // peers so far: each has a name of its own
};

}  // namespace Vgwd

#endif
