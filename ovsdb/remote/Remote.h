#ifndef OVSDB_REMOTE_REMOTE_H
#define OVSDB_REMOTE_REMOTE_H

// Where a database server listens, in OVSDB's connection strings (ovsdb(7), "Active Connection
// Methods"):
//
//     unix:PATH      tcp:HOST:PORT      tcp:[IPv6]:PORT      ssl:HOST:PORT      ssl:[IPv6]:PORT
//
// PORT is 1 to 65535 and may be left out with its colon: 6640 then. Several remotes, parted by
// commas, are the members of a cluster, tried in turn. What can't be read raises RemoteError, which
// names the text and what is wrong with it.

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace Ovsdb {

class RemoteError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

struct Remote {
    enum class Kind { unixSocket, tcp, ssl };

    static constexpr std::uint16_t defaultPort = 6640;

    Kind kind = Kind::unixSocket;
    std::string path;  ///< of a unix socket
    std::string host;  ///< name or address, IPv6 without its brackets
    std::uint16_t port = defaultPort;

    /// The text it is read from, the port always given.
    std::string text() const;

    bool operator==(Remote const&) const = default;
};

/// One remote.
Remote parseRemote(std::string_view text);
/// At least one remote, parted by commas.
std::vector<Remote> parseRemotes(std::string_view text);

}  // namespace Ovsdb

#endif
