// An Ethernet address (IEEE 802, EUI-48): six octets as three 16-bit words, the first word of the
// first two octets, the earlier octet in its upper half. A plain value; the default is all zero.
// Comparing and hashing allocate nothing.
#ifndef KELP_ETHADDR_H
#define KELP_ETHADDR_H

#include <kelp/Export.h>
#include <qor/attrlog/Declarations.h>
#include <qor/attrlog/PlainForm.h>
#include <qor/core/String8.h>
#include <qor/core/Types.h>

#include <array>
#include <compare>
#include <iosfwd>
#include <string_view>

namespace Kelp {

class KELP_EXPORT EthAddr {
  public:
    /// The record of this type in the registry; never null.
    static Qor::QorType* _fwkType();

    constexpr EthAddr() noexcept = default;

    // 00:00:5e:00:53:01 is (0x0000, 0x5e00, 0x5301).
    constexpr EthAddr(Qor::U16 first, Qor::U16 second, Qor::U16 third) noexcept
        : words_{first, second, third} {}

    // The low 48 bits of a number: 0x00005e005301 is 00:00:5e:00:53:01. More than 48 bits raise
    // Qor::RangeException.
    static constexpr EthAddr fromNumber(Qor::U64 number);

    // Six octets of two hexadecimal digits in either case with colons between them, nothing else.
    // Any other text raises Qor::RangeException, which tells the column.
    constexpr explicit EthAddr(std::string_view text) : EthAddr(fromNumber(numberOf(text))) {}

    // Reads what operator<< on the stream wrote.
    EthAddr(Qor::NboAttrLog::In* in, Qor::StreamBogon);

    constexpr std::array<Qor::U16, 3> const& words() const noexcept { return words_; }
    constexpr Qor::U64 number() const noexcept {
        return Qor::U64{words_[0]} << 32 | Qor::U64{words_[1]} << 16 | words_[2];
    }

    // The same on every machine.
    constexpr Qor::U32 hash() const noexcept;

    // In lower case.
    Qor::String8 stringValue() const;

    friend constexpr bool operator==(EthAddr const&, EthAddr const&) noexcept = default;
    // In the order of the octets.
    friend constexpr std::strong_ordering operator<=>(EthAddr const&,
                                                      EthAddr const&) noexcept = default;

  private:
    static constexpr Qor::U64 numberOf(std::string_view text);
    static constexpr int hexDigit(char c) noexcept;
    [[noreturn]] static void refuse(std::string_view text, std::size_t column,
                                    char const* expected);
    [[noreturn]] static void refuseNumber(Qor::U64 number);

    std::array<Qor::U16, 3> words_{};
};

// The address between single quotes.
KELP_EXPORT Qor::String8 valueToStrep(EthAddr const& address);
KELP_EXPORT EthAddr sequenceToValue(Qor::String8::IteratorConst& position,
                                    Qor::String8::IteratorConst const& end, EthAddr* selector);

KELP_EXPORT std::ostream& operator<<(std::ostream& stream, EthAddr const& address);

// On the wire: the six octets in their order.
KELP_EXPORT Qor::Ptr<Qor::NboAttrLog::Out> const& operator<<(
    Qor::Ptr<Qor::NboAttrLog::Out> const& out, EthAddr const& address);

constexpr EthAddr EthAddr::fromNumber(Qor::U64 number) {
    if (number >> 48 != 0) refuseNumber(number);
    return EthAddr(static_cast<Qor::U16>(number >> 32),
                   static_cast<Qor::U16>(number >> 16 & 0xFFFF),
                   static_cast<Qor::U16>(number & 0xFFFF));
}

constexpr Qor::U32 EthAddr::hash() const noexcept {
    Qor::U64 mixed = number() * 0x9E3779B97F4A7C15ULL;
    mixed = (mixed ^ mixed >> 32) * 0xD6E8FEB86659FD93ULL;
    return static_cast<Qor::U32>(mixed >> 32);
}

constexpr int EthAddr::hexDigit(char c) noexcept {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

constexpr Qor::U64 EthAddr::numberOf(std::string_view text) {
    constexpr std::size_t length = 17;
    Qor::U64 number = 0;
    for (std::size_t at = 0; at < length; ++at) {
        bool const isColon = at % 3 == 2;
        int const digit = at < text.size() ? hexDigit(text[at]) : -1;
        if (isColon && (at >= text.size() || text[at] != ':')) refuse(text, at, "a colon");
        if (isColon) continue;
        if (digit < 0) refuse(text, at, "a hexadecimal digit");
        number = number << 4 | static_cast<Qor::U64>(digit);
    }
    if (text.size() > length) refuse(text, length, "the end of the text");
    return number;
}

}  // namespace Kelp

template <>
struct std::hash<Kelp::EthAddr> {
    std::size_t operator()(Kelp::EthAddr const& address) const noexcept { return address.hash(); }
};

template <>
struct Qor::NboAttrLog::PlainForm<Kelp::EthAddr> {
    static constexpr std::size_t size = 6;
    static void store(unsigned char* at, Kelp::EthAddr const& address) noexcept {
        storeNetworkOrder(at, address.words()[0]);
        storeNetworkOrder(at + 2, static_cast<U32>(address.number()));
    }
};

#endif
