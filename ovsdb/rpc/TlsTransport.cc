#include <ovsdb/rpc/TlsTransport.h>

#include <openssl/ssl.h>
#include <asio/buffer.hpp>
#include <asio/write.hpp>

namespace Ovsdb {
namespace {

void check(std::error_code error, std::string const& file) {
    if (error) throw std::system_error(error, file);
}

asio::ssl::context clientContext(TlsFiles const& files) {
    asio::ssl::context context(asio::ssl::context::tls_client);
    SSL_CTX_set_min_proto_version(context.native_handle(), TLS1_2_VERSION);
    std::error_code error;
    // The certificate first: a key that belongs to another one is then refused here.
    context.use_certificate_chain_file(files.certificate, error);
    check(error, files.certificate);
    context.use_private_key_file(files.privateKey, asio::ssl::context::pem, error);
    check(error, files.privateKey);
    context.load_verify_file(files.authority, error);
    check(error, files.authority);
    context.set_verify_mode(asio::ssl::verify_peer);
    return context;
}

}  // namespace

TlsTransport::TlsTransport(asio::ip::tcp::socket socket, TlsFiles const& files)
    : context_(clientContext(files)), stream_(std::move(socket), context_) {}

void TlsTransport::handshake(std::function<void(std::error_code)> handler) {
    stream_.async_handshake(asio::ssl::stream_base::client, std::move(handler));
}

void TlsTransport::readSome(std::span<char> room, Handler handler) {
    stream_.async_read_some(asio::buffer(room.data(), room.size()), std::move(handler));
}

void TlsTransport::write(std::string_view bytes, Handler handler) {
    asio::async_write(stream_, asio::buffer(bytes.data(), bytes.size()), std::move(handler));
}

void TlsTransport::close() {
    std::error_code ignored;
    stream_.lowest_layer().close(ignored);
}

}  // namespace Ovsdb
