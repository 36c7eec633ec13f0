#include <ovsdb/rpc/SocketTransport.h>

#include <asio/buffer.hpp>
#include <asio/write.hpp>

namespace Ovsdb {

void SocketTransport::readSome(std::span<char> room, Handler handler) {
    socket_.async_read_some(asio::buffer(room.data(), room.size()), std::move(handler));
}

void SocketTransport::write(std::string_view bytes, Handler handler) {
    asio::async_write(socket_, asio::buffer(bytes.data(), bytes.size()), std::move(handler));
}

void SocketTransport::close() {
    std::error_code ignored;
    socket_.close(ignored);
}

}  // namespace Ovsdb
