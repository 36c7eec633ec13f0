#ifndef OVSDB_RPC_SOCKET_TRANSPORT_H
#define OVSDB_RPC_SOCKET_TRANSPORT_H

// A unix or TCP socket as a transport.

#include <ovsdb/rpc/Transport.h>

#include <asio/generic/stream_protocol.hpp>

namespace Ovsdb {

class SocketTransport final : public Transport {
  public:
    explicit SocketTransport(asio::generic::stream_protocol::socket socket)
        : socket_(std::move(socket)) {}

    void readSome(std::span<char> room, Handler handler) override;
    void write(std::string_view bytes, Handler handler) override;
    void close() override;

  private:
    asio::generic::stream_protocol::socket socket_;
};

}  // namespace Ovsdb

#endif
