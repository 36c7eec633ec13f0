#ifndef TCP_SOCKET_OPTIONS_H
#define TCP_SOCKET_OPTIONS_H

// How a TCP socket that carries a session is set, at both ends of it.
//
// The kernel asks whether the machine at the other end is still there (keep-alive, RFC 9293,
// section 3.8.4): after a minute of rest, and finds within half a minute more that it is not. So
// nothing of a session's own has to go over a link at rest to find that out. Small frames are sent
// at once (no Nagle's algorithm).

namespace Tcp {

/// Does nothing to a socket of another kind, and nothing where the kernel refuses.
void setForSession(int socket);

}  // namespace Tcp

#endif
