#ifndef VGWD_SERVE_PEER_HOST_H
#define VGWD_SERVE_PEER_HOST_H

// What a peer's connection asks of the server that it belongs to.

#include <ovsdb/client/Log.h>
#include <qor/entity/Entity.h>
#include <vgwd/serve/Quotas.h>
#include <vgwd/serve/ServeOptions.h>

#include <openssl/types.h>

#include <cstddef>
#include <string>

namespace Vgwd {

class Peer;

class PeerHost {
  public:
    virtual ~PeerHost() = default;

    virtual Qor::Ptr<Qor::Entity> root() = 0;
    virtual ServeOptions const& options() const = 0;
    virtual Quotas& quotas() = 0;
    /// REQUIRES: there is an address of the kind ssl.
    virtual SSL_CTX* tlsContext() = 0;
    virtual void log(Ovsdb::LogLevel level, std::string const& text) = 0;

    /// Why nobody may write what stands at that path; empty: writers may.
    virtual std::string whyReadOnly(std::string const& path, Qor::Entity& entity) = 0;
    /// Why nobody may call operations of what stands at that path; empty: writers may.
    virtual std::string whyNotCalled(std::string const& path, Qor::Entity& entity) = 0;
    /// How many rows of an identity wait for the database, whatever became of its connections.
    virtual std::size_t rowsWaiting(std::string const& identity) = 0;
    /// A writer's record was applied.
    virtual void handleWritten(Peer& peer, Qor::Entity& entity, Qor::AttributeId attribute) = 0;
    /// Something went over the connection, or what it has changed.
    virtual void handleTraffic(Peer& peer) = 0;
    /// The connection has ended; the peer is let go after the present turn.
    virtual void handleEnded(Peer& peer) = 0;
};

}  // namespace Vgwd

#endif
