#ifndef VGWD_SERVE_SERVE_OPTIONS_H
#define VGWD_SERVE_SERVE_OPTIONS_H

// How the tree is served: where, to whom, and within which limits.

#include <ovsdb/remote/TlsFiles.h>
#include <vgwd/serve/Access.h>
#include <vgwd/serve/ListenAddress.h>
#include <vgwd/serve/Quotas.h>

#include <chrono>
#include <string>
#include <vector>

namespace Vgwd {

/// How long a peer may leave us waiting.
struct PeerTimes {
    /// From the connection to its first message, TLS included; then it is cut.
    std::chrono::milliseconds hello{10000};
    /// Something was sent to it and nothing came back: it is asked whether it is there.
    std::chrono::milliseconds pingAfter{10000};
    /// It was asked and has not answered: over a network it is cut, on this machine, where it can
    /// only be stopped or busy, it is said. 0: never.
    std::chrono::milliseconds silence{60000};
};

struct ServeOptions {
    std::vector<ListenAddress> listen;
    std::string runDirectory;  ///< its lock is held: sockets in it need no other
    Access access;
    Ovsdb::TlsFiles tls;
    PeerTimes times;
    QuotaLimits quotas;
    /// Who connects waits until Server::admit(), but no longer than this.
    std::chrono::milliseconds admission{0};
};

}  // namespace Vgwd

#endif
