#include <vgwctl/link/TlsTransport.h>

#include <vgwctl/options/Failure.h>

#include <openssl/err.h>
#include <openssl/ssl.h>

#include <cerrno>
#include <cstring>

namespace Vgwctl {
namespace {

std::string lastError() {
    unsigned long const error = ::ERR_get_error();
    if (ERR_SYSTEM_ERROR(error)) return std::strerror(ERR_GET_REASON(error));
    char const* const reason = error != 0 ? ::ERR_reason_error_string(error) : nullptr;
    return reason != nullptr ? reason : "unknown error";
}

void check(int result, std::string const& file) {
    if (result != 1) throw Failure(file + ": " + lastError());
}

}  // namespace

TlsTransport::TlsTransport(int fd, Ovsdb::TlsFiles const& files)
    : context_(::SSL_CTX_new(::TLS_client_method()), &::SSL_CTX_free), tls_(nullptr, &::SSL_free) {
    SSL_CTX* const context = context_.get();
    check(context != nullptr, "TLS");
    check(SSL_CTX_set_min_proto_version(context, TLS1_2_VERSION) == 1, "TLS");
    // The certificate first: a key that belongs to another one is then refused here.
    check(::SSL_CTX_use_certificate_chain_file(context, files.certificate.c_str()),
          files.certificate);
    check(::SSL_CTX_use_PrivateKey_file(context, files.privateKey.c_str(), SSL_FILETYPE_PEM),
          files.privateKey);
    check(::SSL_CTX_load_verify_file(context, files.authority.c_str()), files.authority);
    ::SSL_CTX_set_verify(context, SSL_VERIFY_PEER, nullptr);
    SSL_CTX_set_mode(context, SSL_MODE_ENABLE_PARTIAL_WRITE | SSL_MODE_ACCEPT_MOVING_WRITE_BUFFER);
    tls_.reset(::SSL_new(context));
    check(tls_ != nullptr && ::SSL_set_fd(tls_.get(), fd) == 1, "TLS");
    ::SSL_set_connect_state(tls_.get());
}

TlsTransport::~TlsTransport() = default;

std::size_t TlsTransport::done(int result, std::size_t count, bool& isBlocked) {
    int const systemError = errno;
    int const error = ::SSL_get_error(tls_.get(), result);
    isBlocked = error == SSL_ERROR_WANT_WRITE;
    if (error == SSL_ERROR_NONE) return count;
    if (error == SSL_ERROR_ZERO_RETURN) {
        closed_ = "the peer has closed the connection";
    } else if (error == SSL_ERROR_SYSCALL) {
        closed_ = systemError != 0 ? Qor::String8("TLS: ") + std::strerror(systemError)
                                   : Qor::String8("the peer has closed the connection");
    } else if (error == SSL_ERROR_SSL) {
        closed_ = Qor::String8("TLS: ") + lastError().c_str();
    }
    return 0;
}

std::size_t TlsTransport::write(std::string_view bytes) {
    if (closed_.length() != 0 || bytes.empty()) return 0;
    ::ERR_clear_error();
    std::size_t count = 0;
    int const result = ::SSL_write_ex(tls_.get(), bytes.data(), bytes.size(), &count);
    return done(result, count, isWriteBlocked_);
}

std::size_t TlsTransport::read(std::span<unsigned char> room) {
    if (closed_.length() != 0 || room.empty()) return 0;
    ::ERR_clear_error();
    std::size_t count = 0;
    int const result = ::SSL_read_ex(tls_.get(), room.data(), room.size(), &count);
    return done(result, count, isReadBlocked_);
}

}  // namespace Vgwctl
