#include <vgwd/serve/Access.h>

#include <sys/socket.h>
#include <algorithm>
#include <cerrno>

namespace Vgwd {
namespace {

constexpr uid_t superUser = 0;

bool isMember(Credentials const& credentials, std::optional<gid_t> group) {
    return group && std::find(credentials.groups.begin(), credentials.groups.end(), *group) !=
                        credentials.groups.end();
}

// Beside the peer's own group those that it is a member of.
bool addGroups(int socket, std::vector<gid_t>& groups) {
    std::size_t const own = groups.size();
    std::vector<gid_t> further(64);
    auto size = static_cast<socklen_t>(further.size() * sizeof(gid_t));
    int got = ::getsockopt(socket, SOL_SOCKET, SO_PEERGROUPS, further.data(), &size);
    if (got < 0 && errno == ERANGE) {
        further.resize(size / sizeof(gid_t));
        got = ::getsockopt(socket, SOL_SOCKET, SO_PEERGROUPS, further.data(), &size);
    }
    // A kernel that tells no further groups lets fewer in.
    if (got < 0) return errno == ENOPROTOOPT;
    further.resize(size / sizeof(gid_t));
    groups.insert(groups.begin() + static_cast<std::ptrdiff_t>(own), further.begin(),
                  further.end());
    return true;
}

}  // namespace

std::optional<Credentials> credentialsOf(int socket) {
    ucred peer{};
    socklen_t size = sizeof peer;
    if (::getsockopt(socket, SOL_SOCKET, SO_PEERCRED, &peer, &size) < 0 || size != sizeof peer)
        return std::nullopt;
    if (peer.uid == static_cast<uid_t>(-1) || peer.gid == static_cast<gid_t>(-1))
        return std::nullopt;
    Credentials credentials{peer.uid, peer.pid, {peer.gid}};
    if (!addGroups(socket, credentials.groups)) return std::nullopt;
    return credentials;
}

Identity Access::ofUnixPeer(std::optional<Credentials> const& credentials) const {
    if (!credentials) return {"unknown", PeerRole::refused, "who you are can't be learned"};
    std::string const name = "uid " + std::to_string(credentials->user);
    bool const isWriter = credentials->user == owner || credentials->user == superUser ||
                          isMember(*credentials, writeGroup);
    if (isWriter) return {name, PeerRole::writer, {}};
    if (isMember(*credentials, readGroup)) return {name, PeerRole::reader, {}};
    return {name, PeerRole::refused, name + " may not read here"};
}

Identity Access::ofTcpPeer() const {
    if (tcpReads) return {"tcp", PeerRole::reader, {}};
    return {"tcp", PeerRole::refused, "who you are can't be learned over tcp"};
}

Identity Access::ofTlsPeer(std::string const& commonName) const {
    if (commonName.empty()) return {"tls", PeerRole::refused, "the certificate has no common name"};
    bool const isWriter = writerNames.contains(commonName);
    return {"cn " + commonName, isWriter ? PeerRole::writer : PeerRole::reader, {}};
}

}  // namespace Vgwd
