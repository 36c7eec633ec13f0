#ifndef VGWD_SERVE_LISTEN_ADDRESS_H
#define VGWD_SERVE_LISTEN_ADDRESS_H

// Where the agent listens for those who mount its tree:
//
//     unix:PATH      tcp:ADDR:PORT      ssl:ADDR:PORT      IPv6 addresses between brackets
//
// and the same as the OVSDB tools write what is listened on (ovsdb(7), "Passive Connection
// Methods"): punix:PATH, ptcp:PORT[:ADDR], pssl:PORT[:ADDR]. ADDR is an address in figures; left
// out, it is 127.0.0.1 for ptcp and any for pssl. Port 0 takes a free one. What can't be read
// raises Ovsdb::RemoteError, which names the text and what is wrong with it.
//
// Over plain tcp nobody can be told apart, so only an address of the loopback is taken.

#include <ovsdb/remote/Remote.h>

#include <string>
#include <string_view>

namespace Vgwd {

struct ListenAddress {
    using Kind = Ovsdb::Remote::Kind;

    Kind kind = Kind::unixSocket;
    std::string path;  ///< of a unix socket
    std::string host;  ///< an address, IPv6 without its brackets
    std::uint16_t port = 0;

    /// In the first of the forms.
    std::string text() const;
    bool operator==(ListenAddress const&) const = default;
};

ListenAddress parseListenAddress(std::string_view text);

}  // namespace Vgwd

#endif
