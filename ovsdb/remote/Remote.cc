#include <ovsdb/remote/Remote.h>

#include <algorithm>
#include <charconv>

namespace Ovsdb {
namespace {

// The longest path that fits into a socket address with its closing NUL.
constexpr std::size_t maxPath = 107;

[[noreturn]] void refuse(std::string_view text, std::string_view why) {
    throw RemoteError("remote \"" + std::string(text) + "\": " + std::string(why));
}

bool takePrefix(std::string_view& rest, std::string_view prefix) {
    if (!rest.starts_with(prefix)) return false;
    rest.remove_prefix(prefix.size());
    return true;
}

std::uint16_t parsePort(std::string_view text, std::string_view digits) {
    std::uint16_t port = 0;
    auto const [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), port);
    if (error != std::errc() || end != digits.data() + digits.size() || port == 0)
        refuse(text, "\"" + std::string(digits) + "\" is no port, expected 1 to 65535");
    return port;
}

void parseHostPort(std::string_view text, std::string_view rest, Remote& remote) {
    std::string_view tail;
    if (takePrefix(rest, "[")) {
        std::size_t const close = rest.find(']');
        if (close == std::string_view::npos) refuse(text, "expected ] behind the IPv6 address");
        remote.host = rest.substr(0, close);
        tail = rest.substr(close + 1);
        if (!tail.empty() && tail.front() != ':') refuse(text, "expected : behind ]");
    } else {
        std::size_t const colon = rest.find(':');
        if (colon != std::string_view::npos && rest.find(':', colon + 1) != std::string_view::npos)
            refuse(text, "an IPv6 address stands in brackets: [2001:db8::1]");
        remote.host = rest.substr(0, colon);
        if (colon != std::string_view::npos) tail = rest.substr(colon);
    }
    if (remote.host.empty()) refuse(text, "expected a host");
    if (!tail.empty()) remote.port = parsePort(text, tail.substr(1));
}

}  // namespace

Remote parseRemote(std::string_view text) {
    Remote remote;
    std::string_view rest = text;
    if (takePrefix(rest, "unix:")) {
        if (rest.empty()) refuse(text, "expected the path of a socket");
        if (rest.size() > maxPath)
            refuse(text, "a socket's path has at most " + std::to_string(maxPath) + " bytes");
        remote.path = rest;
    } else if (takePrefix(rest, "tcp:")) {
        remote.kind = Remote::Kind::tcp;
        parseHostPort(text, rest, remote);
    } else if (takePrefix(rest, "ssl:")) {
        remote.kind = Remote::Kind::ssl;
        parseHostPort(text, rest, remote);
    } else {
        refuse(text, "expected unix:PATH, tcp:HOST:PORT or ssl:HOST:PORT");
    }
    return remote;
}

std::vector<Remote> parseRemotes(std::string_view text) {
    std::vector<Remote> remotes;
    for (std::size_t from = 0; from <= text.size();) {
        std::size_t const comma = std::min(text.find(',', from), text.size());
        remotes.push_back(parseRemote(text.substr(from, comma - from)));
        from = comma + 1;
    }
    return remotes;
}

std::string Remote::text() const {
    if (kind == Kind::unixSocket) return "unix:" + path;
    std::string const shown = host.find(':') == std::string::npos ? host : "[" + host + "]";
    return (kind == Kind::tcp ? "tcp:" : "ssl:") + shown + ":" + std::to_string(port);
}

}  // namespace Ovsdb
