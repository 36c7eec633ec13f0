#include <vgwd/serve/TlsContext.h>

#include <openssl/err.h>
#include <openssl/ssl.h>
#include <stdexcept>

namespace Vgwd {
namespace {

void need(bool holds, std::string const& file) {
    if (!holds) throw std::runtime_error(file + ": " + tlsFailure());
}

}  // namespace

void TlsContext::Free::operator()(SSL_CTX* context) const { SSL_CTX_free(context); }

TlsContext::TlsContext(Ovsdb::TlsFiles const& files) : context_(SSL_CTX_new(TLS_server_method())) {
    SSL_CTX* const context = context_.get();
    need(context != nullptr, "TLS");
    ERR_clear_error();
    SSL_CTX_set_min_proto_version(context, TLS1_2_VERSION);
    // The certificate first: a key that belongs to another one is then refused here.
    need(SSL_CTX_use_certificate_chain_file(context, files.certificate.c_str()) == 1,
         files.certificate);
    need(SSL_CTX_use_PrivateKey_file(context, files.privateKey.c_str(), SSL_FILETYPE_PEM) == 1,
         files.privateKey);
    need(SSL_CTX_load_verify_file(context, files.authority.c_str()) == 1, files.authority);
    SSL_CTX_set_verify(context, SSL_VERIFY_PEER | SSL_VERIFY_FAIL_IF_NO_PEER_CERT, nullptr);
    // A peer whose certificate was withdrawn must not come back on an old session.
    SSL_CTX_set_session_cache_mode(context, SSL_SESS_CACHE_OFF);
    SSL_CTX_set_num_tickets(context, 0);
    SSL_CTX_set_options(context, SSL_OP_NO_TICKET | SSL_OP_NO_RENEGOTIATION);
}

std::string tlsFailure() {
    unsigned long const code = ERR_get_error();
    if (code == 0) return "an unknown failure";
    char const* const reason = ERR_reason_error_string(code);
    return reason != nullptr ? reason : "failure " + std::to_string(code);
}

}  // namespace Vgwd
