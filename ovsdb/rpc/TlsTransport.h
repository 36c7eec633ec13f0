#ifndef OVSDB_RPC_TLS_TRANSPORT_H
#define OVSDB_RPC_TLS_TRANSPORT_H

// TLS 1.2 or later over a connected TCP socket. The context is built from the files at each
// connection, so that renewed certificates are taken up by the next one. Files that can't be read
// raise std::system_error naming the file.

#include <ovsdb/remote/TlsFiles.h>
#include <ovsdb/rpc/Transport.h>

#include <asio/ip/tcp.hpp>
#include <asio/ssl/context.hpp>
#include <asio/ssl/stream.hpp>

namespace Ovsdb {

class TlsTransport final : public Transport {
  public:
    TlsTransport(asio::ip::tcp::socket socket, TlsFiles const& files);

    /// To be done first. REQUIRES: the transport stays alive until the handler ran.
    void handshake(std::function<void(std::error_code)> handler);

    void readSome(std::span<char> room, Handler handler) override;
    void write(std::string_view bytes, Handler handler) override;
    void close() override;

  private:
    asio::ssl::context context_;
    asio::ssl::stream<asio::ip::tcp::socket> stream_;
};

}  // namespace Ovsdb

#endif
