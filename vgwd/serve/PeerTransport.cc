#include <vgwd/serve/PeerTransport.h>

#include <vgwd/serve/SocketBio.h>
#include <vgwd/serve/TlsContext.h>

#include <openssl/err.h>
#include <openssl/ssl.h>
#include <openssl/x509.h>
#include <sys/socket.h>
#include <cerrno>
#include <cstring>
#include <limits>
#include <stdexcept>

namespace Vgwd {
namespace {

constexpr char const* peerClosed = "the peer has closed the connection";

int lengthOf(std::size_t bytes) {
    constexpr std::size_t most = std::numeric_limits<int>::max();
    return static_cast<int>(std::min(bytes, most));
}

}  // namespace

std::size_t PeerTransport::moved(long count, char const* what) {
    if (count > 0) return static_cast<std::size_t>(count);
    bool const isOver = count < 0 && errno != EAGAIN && errno != EWOULDBLOCK && errno != EINTR;
    bool const isEnd = isOver && (errno == ECONNRESET || errno == EPIPE);
    if (isEnd) closedIs(peerClosed);
    if (isOver && !isEnd) closedIs(std::string(what) + ": " + std::strerror(errno));
    return 0;
}

std::size_t SocketPeerTransport::write(std::string_view bytes) {
    isBlockedIs(false);
    if (closed().length() != 0 || bytes.empty()) return 0;
    if (isDeaf_) return bytes.size();
    long const sent = ::send(socket_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
    // What it has sent before it stopped reading is still to be read, and then its end.
    isDeaf_ = sent < 0 && errno == EPIPE;
    if (isDeaf_) return bytes.size();
    std::size_t const count = moved(sent, "send");
    isBlockedIs(count < bytes.size());
    return count;
}

std::size_t SocketPeerTransport::read(std::span<unsigned char> room) {
    if (closed().length() != 0 || room.empty()) return 0;
    long const count = ::recv(socket_, room.data(), room.size(), 0);
    if (count == 0) closedIs(peerClosed);
    return moved(count, "recv");
}

void TlsPeerTransport::Free::operator()(SSL* ssl) const { SSL_free(ssl); }

TlsPeerTransport::TlsPeerTransport(int socket, SSL_CTX* context) : ssl_(SSL_new(context)) {
    BIO* const bio = ssl_ ? newSocketBio(socket) : nullptr;
    if (bio == nullptr) throw std::runtime_error(tlsFailure());
    SSL_set_bio(ssl_.get(), bio, bio);
    SSL_set_accept_state(ssl_.get());
    // What is written may be asked for again in another place and with more behind it.
    SSL_set_mode(ssl_.get(), SSL_MODE_ENABLE_PARTIAL_WRITE | SSL_MODE_ACCEPT_MOVING_WRITE_BUFFER);
}

void TlsPeerTransport::finish() {
    if (SSL_is_init_finished(ssl_.get()) == 1) SSL_shutdown(ssl_.get());
    ERR_clear_error();
}

void TlsPeerTransport::handleOutcome(int result, char const* what) {
    int const kind = SSL_get_error(ssl_.get(), result);
    wantsWrite_ = kind == SSL_ERROR_WANT_WRITE;
    if (kind == SSL_ERROR_WANT_READ || kind == SSL_ERROR_WANT_WRITE) return;
    bool const isEnd = kind == SSL_ERROR_ZERO_RETURN || (kind == SSL_ERROR_SYSCALL && errno == 0);
    bool const isReset = kind == SSL_ERROR_SYSCALL && (errno == ECONNRESET || errno == EPIPE);
    if (isEnd || isReset) return closedIs(peerClosed);
    std::string const why = kind == SSL_ERROR_SYSCALL ? std::strerror(errno) : tlsFailure();
    closedIs(std::string(what) + ": " + why);
}

bool TlsPeerTransport::shakeHands() {
    ERR_clear_error();
    int const result = SSL_do_handshake(ssl_.get());
    if (result == 1) {
        wantsWrite_ = false;
        return true;
    }
    handleOutcome(result, "TLS handshake");
    return false;
}

std::string TlsPeerTransport::commonName() const {
    X509* const certificate = SSL_get0_peer_certificate(ssl_.get());
    if (certificate == nullptr) return {};
    X509_NAME* const subject = X509_get_subject_name(certificate);
    int const first = X509_NAME_get_index_by_NID(subject, NID_commonName, -1);
    // Two names would leave open which of them counts.
    if (first < 0 || X509_NAME_get_index_by_NID(subject, NID_commonName, first) >= 0) return {};
    unsigned char* bytes = nullptr;
    int const length =
        ASN1_STRING_to_UTF8(&bytes, X509_NAME_ENTRY_get_data(X509_NAME_get_entry(subject, first)));
    if (length < 0) return {};
    std::string const name(reinterpret_cast<char const*>(bytes), static_cast<std::size_t>(length));
    OPENSSL_free(bytes);
    return name.find('\0') == std::string::npos ? name : std::string();
}

std::size_t TlsPeerTransport::write(std::string_view bytes) {
    isBlockedIs(false);
    if (closed().length() != 0 || bytes.empty()) return 0;
    ERR_clear_error();
    int const count = SSL_write(ssl_.get(), bytes.data(), lengthOf(bytes.size()));
    if (count <= 0) handleOutcome(count, "TLS");
    isBlockedIs(count <= 0);
    return count > 0 ? static_cast<std::size_t>(count) : 0;
}

std::size_t TlsPeerTransport::read(std::span<unsigned char> room) {
    if (closed().length() != 0 || room.empty()) return 0;
    ERR_clear_error();
    int const count = SSL_read(ssl_.get(), room.data(), lengthOf(room.size()));
    if (count <= 0) handleOutcome(count, "TLS");
    return count > 0 ? static_cast<std::size_t>(count) : 0;
}

}  // namespace Vgwd
