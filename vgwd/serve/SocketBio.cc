#include <vgwd/serve/SocketBio.h>

#include <openssl/bio.h>
#include <sys/socket.h>
#include <cerrno>
#include <cstdint>

namespace Vgwd {
namespace {

int socketOf(BIO* bio) {
    return static_cast<int>(reinterpret_cast<std::intptr_t>(BIO_get_data(bio)));
}

bool isForLater() { return errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR; }

int writeTo(BIO* bio, char const* bytes, int count) {
    BIO_clear_retry_flags(bio);
    long const done = ::send(socketOf(bio), bytes, static_cast<std::size_t>(count), MSG_NOSIGNAL);
    if (done < 0 && isForLater()) BIO_set_retry_write(bio);
    return static_cast<int>(done);
}

int readFrom(BIO* bio, char* room, int count) {
    BIO_clear_retry_flags(bio);
    long const done = ::recv(socketOf(bio), room, static_cast<std::size_t>(count), 0);
    if (done < 0 && isForLater()) BIO_set_retry_read(bio);
    return static_cast<int>(done);
}

long control(BIO*, int command, long, void*) { return command == BIO_CTRL_FLUSH ? 1 : 0; }

BIO_METHOD* newMethod() {
    BIO_METHOD* const method = BIO_meth_new(BIO_get_new_index() | BIO_TYPE_SOURCE_SINK, "socket");
    if (method == nullptr) return nullptr;
    BIO_meth_set_write(method, writeTo);
    BIO_meth_set_read(method, readFrom);
    BIO_meth_set_ctrl(method, control);
    return method;
}

}  // namespace

BIO* newSocketBio(int socket) {
    static BIO_METHOD* const method = newMethod();
    BIO* const bio = method != nullptr ? BIO_new(method) : nullptr;
    if (bio == nullptr) return nullptr;
    // NOLINTNEXTLINE(performance-no-int-to-ptr): the library keeps a word for us, never followed.
    BIO_set_data(bio, reinterpret_cast<void*>(static_cast<std::intptr_t>(socket)));
    BIO_set_init(bio, 1);
    return bio;
}

}  // namespace Vgwd
