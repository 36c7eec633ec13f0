#ifndef OVSDB_RPC_CONNECTOR_H
#define OVSDB_RPC_CONNECTOR_H

// Opens one connection to one remote: address look-up, connect, TLS handshake, all within one time
// limit. The handler runs once, with a transport or with what went wrong in words; cancel() and the
// destructor run nothing any more. An address in figures is used as it stands; only a name is
// looked up (by the event loop library's helper thread).

#include <ovsdb/remote/Remote.h>
#include <ovsdb/remote/TlsFiles.h>
#include <ovsdb/rpc/Transport.h>

#include <asio/io_context.hpp>

#include <chrono>
#include <functional>
#include <memory>
#include <string>

namespace Ovsdb {

class Connector {
  public:
    /// A null transport: `error` tells why.
    using Handler = std::function<void(std::shared_ptr<Transport> transport, std::string error)>;

    explicit Connector(asio::io_context& loop) : loop_(loop) {}
    Connector(Connector const&) = delete;
    Connector& operator=(Connector const&) = delete;
    ~Connector() { cancel(); }

    /// REQUIRES: no attempt is running.
    void connect(Remote const& remote, TlsFiles const& files, std::chrono::milliseconds limit,
                 Handler handler);
    void cancel();
    bool running() const { return attempt_ != nullptr; }

  private:
    class Attempt;

    asio::io_context& loop_;
    std::shared_ptr<Attempt> attempt_;
};

}  // namespace Ovsdb

#endif
