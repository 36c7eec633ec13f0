#ifndef OVSDB_RPC_TRANSPORT_H
#define OVSDB_RPC_TRANSPORT_H

// A connected stream of bytes: a unix or TCP socket, or TLS over TCP. Whoever starts an operation
// keeps the transport and the bytes alive until its handler ran; close() ends both operations,
// whose handlers then run with an error. One read and one write at a time. Handlers run on the
// event loop, never inside the call that started them.

#include <cstddef>
#include <functional>
#include <span>
#include <string_view>
#include <system_error>

namespace Ovsdb {

class Transport {
  public:
    using Handler = std::function<void(std::error_code, std::size_t)>;

    Transport() = default;
    Transport(Transport const&) = delete;
    Transport& operator=(Transport const&) = delete;
    virtual ~Transport() = default;

    /// Reads at least one byte, or ends with an error (asio::error::eof when the peer closed).
    virtual void readSome(std::span<char> room, Handler handler) = 0;
    /// Writes all of it.
    virtual void write(std::string_view bytes, Handler handler) = 0;
    virtual void close() = 0;
};

}  // namespace Ovsdb

#endif
