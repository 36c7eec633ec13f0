#include <kelp/IpAddr.h>

#include <qor/attrlog/NboAttrLogIn.h>

#include <kelp/QuotedText.h>
#include <qor/attrlog/NboAttrLogOut.h>

#include <array>
#include <charconv>
#include <ostream>

namespace Kelp {

IpAddr::IpAddr(Qor::NboAttrLog::In* in, Qor::StreamBogon) : IpAddr(fromHostOrder(in->nextU32())) {}

Qor::String8 IpAddr::stringValue() const {
    std::array<char, sizeof "255.255.255.255"> text;
    char* at = text.data();
    for (int shift = 24; shift >= 0; shift -= 8) {
        at = std::to_chars(at, text.data() + text.size(), hostOrder() >> shift & 0xFFU).ptr;
        if (shift > 0) *at++ = '.';
    }
    return std::string_view(text.data(), static_cast<std::size_t>(at - text.data()));
}

void IpAddr::refuse(std::string_view text, std::size_t column, char const* expected) {
    Qor::throwRangeException(Qor::format("IpAddr %s: expected %s at column %zu",
                                         Qor::valueToStrep(Qor::String8(text)).charPtr(), expected,
                                         column));
}

Qor::String8 valueToStrep(IpAddr address) { return "'" + address.stringValue() + "'"; }

IpAddr sequenceToValue(Qor::String8::IteratorConst& position,
                       Qor::String8::IteratorConst const& end, IpAddr*) {
    return valueOfQuotedText<IpAddr>(position, end);
}

std::ostream& operator<<(std::ostream& stream, IpAddr address) {
    return stream << address.stringValue();
}

Qor::Ptr<Qor::NboAttrLog::Out> const& operator<<(Qor::Ptr<Qor::NboAttrLog::Out> const& out,
                                                 IpAddr address) {
    return out << address.hostOrder();
}

}  // namespace Kelp
