#include <ovsdb/mirror/Values.h>

namespace Ovsdb {
namespace {

int hexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

// Takes one number of an IPv4 address off the front.
std::optional<unsigned> takeOctet(std::string_view& rest) {
    unsigned value = 0;
    std::size_t digits = 0;
    while (digits < rest.size() && rest[digits] >= '0' && rest[digits] <= '9' && digits < 4)
        value = value * 10 + static_cast<unsigned>(rest[digits++] - '0');
    if (digits == 0 || digits > 3 || value > 255 || (digits > 1 && rest[0] == '0'))
        return std::nullopt;
    rest.remove_prefix(digits);
    return value;
}

}  // namespace

Qor::String8 textOf(Uuid const& uuid) { return std::string_view(uuid.text()); }

std::optional<Kelp::IpAddr> ipv4Of(std::string_view text) {
    std::uint32_t number = 0;
    for (int i = 0; i < 4; ++i) {
        if (i > 0) {
            if (text.empty() || text.front() != '.') return std::nullopt;
            text.remove_prefix(1);
        }
        std::optional<unsigned> const octet = takeOctet(text);
        if (!octet) return std::nullopt;
        number = number << 8 | *octet;
    }
    if (!text.empty()) return std::nullopt;
    return Kelp::IpAddr::fromHostOrder(number);
}

std::optional<Kelp::EthAddr> macOf(std::string_view text) {
    if (text.size() != 17) return std::nullopt;
    std::uint64_t number = 0;
    for (std::size_t i = 0; i < 6; ++i) {
        int const high = hexDigit(text[3 * i]);
        int const low = hexDigit(text[3 * i + 1]);
        if (high < 0 || low < 0 || (i < 5 && text[3 * i + 2] != ':')) return std::nullopt;
        number = number << 8 | static_cast<std::uint64_t>(high * 16 + low);
    }
    return Kelp::EthAddr::fromNumber(number);
}

std::optional<Kelp::EthAddr> multicastMacOf(std::string_view text) {
    if (text == "unknown-dst") return Kelp::EthAddr();
    return macOf(text);
}

std::optional<Vxlan::Vni> vniOf(std::optional<std::int64_t> key) {
    if (!key || *key < 0 || *key > std::int64_t{Vxlan::Vni::max}) return std::nullopt;
    return Vxlan::Vni(static_cast<std::uint32_t>(*key));
}

}  // namespace Ovsdb
