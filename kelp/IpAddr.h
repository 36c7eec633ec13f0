// An IPv4 address (RFC 791): four octets, held as one 32-bit word in network byte order, whatever
// the machine. A plain value; the default is 0.0.0.0. Comparing and hashing allocate nothing.
#ifndef KELP_IPADDR_H
#define KELP_IPADDR_H

#include <kelp/Export.h>
#include <qor/attrlog/Declarations.h>
#include <qor/attrlog/PlainForm.h>
#include <qor/core/String8.h>
#include <qor/core/Types.h>

#include <bit>
#include <compare>
#include <iosfwd>
#include <string_view>

namespace Kelp {

class KELP_EXPORT IpAddr {
  public:
    /// The record of this type in the registry; never null.
    static Qor::QorType* _fwkType();

    constexpr IpAddr() noexcept = default;

    // The word as it lies in memory in network byte order, like the `s_addr` of a socket address.
    constexpr explicit IpAddr(Qor::U32 networkOrder) noexcept : word_(networkOrder) {}

    // Four decimal octets with dots between them, nothing else: no blanks, no leading zeros, no
    // short forms. Any other text raises Qor::RangeException, which tells the column.
    constexpr explicit IpAddr(std::string_view text);

    // Reads what operator<< on the stream wrote.
    KELP_EXPORT IpAddr(Qor::NboAttrLog::In* in, Qor::StreamBogon);

    static constexpr IpAddr fromHostOrder(Qor::U32 number) noexcept {
        return IpAddr(swapped(number));
    }

    constexpr Qor::U32 networkOrder() const noexcept { return word_; }
    // The address as a number: 192.0.2.1 is 0xC0000201.
    constexpr Qor::U32 hostOrder() const noexcept { return swapped(word_); }

    // Different addresses have different hashes; the same on every machine.
    constexpr Qor::U32 hash() const noexcept;

    Qor::String8 stringValue() const;

    friend constexpr bool operator==(IpAddr, IpAddr) noexcept = default;
    // In the order of the octets: 192.0.2.1 is less than 192.0.2.2.
    friend constexpr std::strong_ordering operator<=>(IpAddr left, IpAddr right) noexcept {
        return left.hostOrder() <=> right.hostOrder();
    }

  private:
    static constexpr Qor::U32 swapped(Qor::U32 word) noexcept {
        if constexpr (std::endian::native == std::endian::big) return word;
        return word >> 24 | (word >> 8 & 0xFF00U) | (word << 8 & 0xFF0000U) | word << 24;
    }
    static constexpr Qor::U32 numberOf(std::string_view text);
    [[noreturn]] static void refuse(std::string_view text, std::size_t column,
                                    char const* expected);

    Qor::U32 word_ = 0;
};

// The address between single quotes.
KELP_EXPORT Qor::String8 valueToStrep(IpAddr address);
KELP_EXPORT IpAddr sequenceToValue(Qor::String8::IteratorConst& position,
                                   Qor::String8::IteratorConst const& end, IpAddr* selector);

KELP_EXPORT std::ostream& operator<<(std::ostream& stream, IpAddr address);

// On the wire: the four octets in their order.
KELP_EXPORT Qor::Ptr<Qor::NboAttrLog::Out> const& operator<<(
    Qor::Ptr<Qor::NboAttrLog::Out> const& out, IpAddr address);

constexpr IpAddr::IpAddr(std::string_view text) : word_(swapped(numberOf(text))) {}

constexpr Qor::U32 IpAddr::hash() const noexcept {
    Qor::U32 word = hostOrder();
    word = (word ^ word >> 16) * 0x85EBCA6BU;
    word = (word ^ word >> 13) * 0xC2B2AE35U;
    return word ^ word >> 16;
}

constexpr Qor::U32 IpAddr::numberOf(std::string_view text) {
    auto const isDigit = [text](std::size_t at) {
        return at < text.size() && text[at] >= '0' && text[at] <= '9';
    };
    Qor::U32 number = 0;
    std::size_t at = 0;
    for (int octet = 0; octet < 4; ++octet) {
        if (octet > 0) {
            if (at >= text.size() || text[at] != '.') refuse(text, at, "a dot");
            ++at;
        }
        std::size_t const start = at;
        Qor::U32 value = 0;
        for (; isDigit(at) && value <= 255; ++at) {
            value = value * 10 + static_cast<Qor::U32>(text[at] - '0');
        }
        bool const hasLeadingZero = at - start > 1 && text[start] == '0';
        if (at == start || value > 255 || hasLeadingZero) {
            refuse(text, start, "an octet from 0 to 255 without leading zero");
        }
        number = number << 8 | value;
    }
    if (at != text.size()) refuse(text, at, "the end of the text");
    return number;
}

}  // namespace Kelp

template <>
struct std::hash<Kelp::IpAddr> {
    std::size_t operator()(Kelp::IpAddr address) const noexcept { return address.hash(); }
};

template <>
struct Qor::NboAttrLog::PlainForm<Kelp::IpAddr> {
    static constexpr std::size_t size = sizeof(U32);
    static void store(unsigned char* at, Kelp::IpAddr const& address) noexcept {
        storeNetworkOrder(at, address.hostOrder());
    }
};

#endif
