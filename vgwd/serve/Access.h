#ifndef VGWD_SERVE_ACCESS_H
#define VGWD_SERVE_ACCESS_H

// Who may read the tree, who may write it, and who is told to go. The decision is made once, when
// the connection is made, from what the kernel or a certificate says of the peer; nothing that the
// peer says of itself counts.
//
//     over unix:   our own user and root                        write
//                  members of the write group                   write
//                  members of the read group                    read
//     over tcp:    nobody can be told apart: anyone on this
//                  machine reads, if that was allowed           read
//     over ssl:    whose certificate our authority signed       read
//                  and bears one of the names for writers       write
//     anyone else, and whoever can't be identified              refused

#include <sys/types.h>
#include <cstdint>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace Vgwd {

enum class PeerRole : std::uint8_t { refused, reader, writer };

/// What the kernel says of the process at the other end of a unix socket.
struct Credentials {
    uid_t user = 0;
    pid_t process = 0;
    std::vector<gid_t> groups;  ///< all of them
};

/// Nothing when the kernel does not tell.
std::optional<Credentials> credentialsOf(int socket);

/// Who the peer is and what it may do. The name is what quotas are kept for.
struct Identity {
    std::string name;  ///< as "uid 1000", "cn leaf-1", "tcp"
    PeerRole role = PeerRole::refused;
    std::string refusal;  ///< why, when it is refused
};

struct Access {
    uid_t owner = 0;  ///< our own user
    std::optional<gid_t> readGroup;
    std::optional<gid_t> writeGroup;
    bool tcpReads = false;
    std::set<std::string, std::less<>> writerNames;  ///< common names of certificates

    Identity ofUnixPeer(std::optional<Credentials> const& credentials) const;
    Identity ofTcpPeer() const;
    /// Empty: the certificate bears no common name.
    Identity ofTlsPeer(std::string const& commonName) const;
};

}  // namespace Vgwd

#endif
