#include <vgwd/serve/ListenAddress.h>

#include <asio/ip/address.hpp>

#include <charconv>

namespace Vgwd {
namespace {

// The longest path that fits into a socket address with its closing NUL.
constexpr std::size_t maxPath = 107;

[[noreturn]] void refuse(std::string_view text, std::string_view why) {
    throw Ovsdb::RemoteError("\"" + std::string(text) + "\": " + std::string(why));
}

bool takePrefix(std::string_view& rest, std::string_view prefix) {
    if (!rest.starts_with(prefix)) return false;
    rest.remove_prefix(prefix.size());
    return true;
}

std::uint16_t portOf(std::string_view text, std::string_view digits) {
    std::uint16_t port = 0;
    auto const [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), port);
    if (error != std::errc() || end != digits.data() + digits.size())
        refuse(text, "\"" + std::string(digits) + "\" is no port, expected 0 to 65535");
    return port;
}

// An address in figures, as it is to be written.
std::string hostOf(std::string_view text, std::string_view figures) {
    if (figures.size() >= 2 && figures.front() == '[' && figures.back() == ']')
        figures = figures.substr(1, figures.size() - 2);
    std::error_code error;
    auto const address = asio::ip::make_address(std::string(figures), error);
    if (error) refuse(text, "\"" + std::string(figures) + "\" is no address in figures");
    return address.to_string();
}

void takePath(std::string_view text, std::string_view path, ListenAddress& address) {
    if (path.empty()) refuse(text, "expected the path of a socket");
    if (path.size() > maxPath)
        refuse(text, "a socket's path has at most " + std::to_string(maxPath) + " bytes");
    address.path = path;
}

void takeActive(std::string_view text, std::string_view rest, ListenAddress& address) {
    std::size_t const colon = rest.rfind(':');
    if (colon == std::string_view::npos || rest.ends_with(']'))
        refuse(text, "expected ADDRESS:PORT");
    address.host = hostOf(text, rest.substr(0, colon));
    address.port = portOf(text, rest.substr(colon + 1));
}

void takePassive(std::string_view text, std::string_view rest, std::string_view any,
                 ListenAddress& address) {
    std::size_t const colon = std::min(rest.find(':'), rest.size());
    address.port = portOf(text, rest.substr(0, colon));
    address.host = hostOf(text, colon < rest.size() ? rest.substr(colon + 1) : any);
}

void needLoopback(std::string_view text, ListenAddress const& address) {
    if (address.kind != ListenAddress::Kind::tcp) return;
    if (!asio::ip::make_address(address.host).is_loopback())
        refuse(text, "tcp: is for an address of the loopback; use ssl: for others");
}

}  // namespace

std::string ListenAddress::text() const {
    if (kind == Kind::unixSocket) return "unix:" + path;
    std::string const figures = host.find(':') == std::string::npos ? host : "[" + host + "]";
    return (kind == Kind::tcp ? "tcp:" : "ssl:") + figures + ":" + std::to_string(port);
}

ListenAddress parseListenAddress(std::string_view text) {
    ListenAddress address;
    std::string_view rest = text;
    bool const isPassive =
        rest.starts_with("punix:") || rest.starts_with("ptcp:") || rest.starts_with("pssl:");
    if (isPassive) rest.remove_prefix(1);
    if (takePrefix(rest, "unix:")) {
        takePath(text, rest, address);
        return address;
    }
    if (takePrefix(rest, "tcp:"))
        address.kind = ListenAddress::Kind::tcp;
    else if (takePrefix(rest, "ssl:"))
        address.kind = ListenAddress::Kind::ssl;
    else
        refuse(text, "expected unix:PATH, tcp:ADDRESS:PORT or ssl:ADDRESS:PORT");
    bool const isTcp = address.kind == ListenAddress::Kind::tcp;
    if (isPassive)
        takePassive(text, rest, isTcp ? "127.0.0.1" : "0.0.0.0", address);
    else
        takeActive(text, rest, address);
    needLoopback(text, address);
    return address;
}

}  // namespace Vgwd
