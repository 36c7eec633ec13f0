#include <qor/core/TextUtf8.h>

#include <cstdint>

namespace Qor {

namespace {

struct Lead {
    std::size_t length;
    std::uint32_t bits;    // of the code point, from the first byte
    std::uint32_t lowest;  // the smallest code point that needs this length
};

Lead leadOf(unsigned char byte) noexcept {
    if (byte >= 0xC2 && byte <= 0xDF) return {2, byte & 0x1FU, 0xA0};
    if (byte >= 0xE0 && byte <= 0xEF) return {3, byte & 0x0FU, 0x800};
    if (byte >= 0xF0 && byte <= 0xF4) return {4, byte & 0x07U, 0x10000};
    return {0, 0, 0};
}

}  // namespace

std::size_t printableLength(std::string_view bytes) noexcept {
    if (bytes.empty()) return 0;
    auto const first = static_cast<unsigned char>(bytes.front());
    if (first < 0x80) return first >= 0x20 && first != 0x7F ? 1 : 0;
    auto const lead = leadOf(first);
    if (lead.length == 0 || bytes.size() < lead.length) return 0;
    std::uint32_t point = lead.bits;
    for (auto const c : bytes.substr(1, lead.length - 1)) {
        auto const byte = static_cast<unsigned char>(c);
        if ((byte & 0xC0U) != 0x80U) return 0;
        point = point << 6 | (byte & 0x3FU);
    }
    bool const isSurrogate = point >= 0xD800 && point <= 0xDFFF;
    return point >= lead.lowest && point <= 0x10FFFF && !isSurrogate ? lead.length : 0;
}

}  // namespace Qor
