#include <tcp/SocketOptions.h>

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

namespace Tcp {

void setForSession(int socket) {
    int const on = 1;
    int const idle = 60;
    int const interval = 10;
    int const tries = 3;
    ::setsockopt(socket, SOL_SOCKET, SO_KEEPALIVE, &on, sizeof on);
    ::setsockopt(socket, IPPROTO_TCP, TCP_KEEPIDLE, &idle, sizeof idle);
    ::setsockopt(socket, IPPROTO_TCP, TCP_KEEPINTVL, &interval, sizeof interval);
    ::setsockopt(socket, IPPROTO_TCP, TCP_KEEPCNT, &tries, sizeof tries);
    ::setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
}

}  // namespace Tcp
