#include <kelp/EthAddr.h>

#include <kelp/QuotedText.h>
#include <qor/attrlog/NboAttrLogIn.h>
#include <qor/attrlog/NboAttrLogOut.h>

#include <ostream>

namespace Kelp {

EthAddr::EthAddr(Qor::NboAttrLog::In* in, Qor::StreamBogon) {
    for (auto& word : words_) word = in->nextU16();
}

Qor::String8 EthAddr::stringValue() const {
    constexpr char digits[] = "0123456789abcdef";
    std::array<char, 17> text;
    auto const all = number();
    for (std::size_t at = 0, shift = 44; at < text.size(); ++at) {
        if (at % 3 == 2) {
            text[at] = ':';
        } else {
            text[at] = digits[all >> shift & 0xF];
            shift -= 4;
        }
    }
    return std::string_view(text.data(), text.size());
}

void EthAddr::refuse(std::string_view text, std::size_t column, char const* expected) {
    Qor::throwRangeException(Qor::format("EthAddr %s: expected %s at column %zu",
                                         Qor::valueToStrep(Qor::String8(text)).charPtr(), expected,
                                         column));
}

void EthAddr::refuseNumber(Qor::U64 number) {
    Qor::throwRangeException(Qor::format("EthAddr 0x%llx: expected a number of at most 48 bits",
                                         static_cast<unsigned long long>(number)));
}

Qor::String8 valueToStrep(EthAddr const& address) { return "'" + address.stringValue() + "'"; }

EthAddr sequenceToValue(Qor::String8::IteratorConst& position,
                        Qor::String8::IteratorConst const& end, EthAddr*) {
    return valueOfQuotedText<EthAddr>(position, end);
}

std::ostream& operator<<(std::ostream& stream, EthAddr const& address) {
    return stream << address.stringValue();
}

Qor::Ptr<Qor::NboAttrLog::Out> const& operator<<(Qor::Ptr<Qor::NboAttrLog::Out> const& out,
                                                 EthAddr const& address) {
    return out << address.words()[0] << static_cast<Qor::U32>(address.number());
}

}  // namespace Kelp
