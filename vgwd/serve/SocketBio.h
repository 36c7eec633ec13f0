#ifndef VGWD_SERVE_SOCKET_BIO_H
#define VGWD_SERVE_SOCKET_BIO_H

// A socket as the TLS library reads and writes it. The library's own raises SIGPIPE, which ends the
// process, when the peer has gone.

#include <openssl/types.h>

namespace Vgwd {

/// For a socket that does not block and stays the caller's; null without memory.
BIO* newSocketBio(int socket);

}  // namespace Vgwd

#endif
