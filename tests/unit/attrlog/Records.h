// Frames written out as the format says, without the library's own writer.
#ifndef TESTS_UNIT_ATTRLOG_RECORDS_H
#define TESTS_UNIT_ATTRLOG_RECORDS_H

#include <cstdint>
#include <cstdio>
#include <string>

inline std::string frameHex(unsigned kind, std::uint64_t entity, std::int32_t attribute,
                            std::string const& payload, unsigned tag, unsigned wordB) {
    char head[80];
    std::snprintf(head, sizeof head, "%08x%02x%016llx%08x%02x00000000%08x00",
                  static_cast<unsigned>(25 + payload.size() / 2), kind,
                  static_cast<unsigned long long>(entity), static_cast<unsigned>(attribute), tag,
                  wordB);
    return head + ("01" + payload + "03");
}

// A record in hexadecimal; so is its payload.
inline std::string record(std::uint64_t entity, std::int32_t attribute, std::string const& payload,
                          unsigned tag = 1, unsigned wordB = 0) {
    return frameHex(0, entity, attribute, payload, tag, wordB);
}

// One chunk of a text of which more follows.
inline std::string chunk(std::uint64_t entity, std::int32_t attribute, std::string const& payload) {
    return frameHex(0x80, entity, attribute, payload, 1, 0);
}

// A transaction marker of that type.
inline std::string marker(std::uint64_t entity, std::int32_t attribute, std::string const& type) {
    return frameHex(1, entity, attribute, type + "00000000", 1, 0);
}

inline std::string bytesOf(std::string const& hexadecimal) {
    std::string bytes;
    for (std::size_t at = 0; at + 1 < hexadecimal.size(); at += 2) {
        bytes += static_cast<char>(std::stoi(hexadecimal.substr(at, 2), nullptr, 16));
    }
    return bytes;
}

inline std::string hexOf(std::string const& text) {
    std::string result;
    char digits[3];
    for (char const byte : text) {
        std::snprintf(digits, sizeof digits, "%02x", static_cast<unsigned char>(byte));
        result += digits;
    }
    return result;
}

#endif
