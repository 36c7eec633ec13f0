#ifndef OVSDB_STORE_UUID_H
#define OVSDB_STORE_UUID_H

// A row's identity, 16 bytes instead of the 36 characters it has on the wire (RFC 7047 section 3.1,
// RFC 4122 section 3). The order of the values is the order of the texts.

#include <array>
#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace Ovsdb {

class Uuid {
  public:
    static constexpr std::size_t textSize = 36;
    static constexpr std::size_t byteSize = 16;

    constexpr Uuid() = default;
    constexpr Uuid(std::uint64_t high, std::uint64_t low) : high_(high), low_(low) {}

    /// 8-4-4-4-12 hexadecimal digits of either case, nothing else.
    static std::optional<Uuid> parse(std::string_view text);
    /// REQUIRES: bytes.size() == byteSize.
    static Uuid fromBytes(std::string_view bytes);

    /// In lower case, as the server writes it.
    std::string text() const;
    /// Most significant byte first.
    std::array<char, byteSize> bytes() const;

    constexpr bool isZero() const { return (high_ | low_) == 0; }
    constexpr auto operator<=>(Uuid const&) const = default;

  private:
    friend struct UuidHash;

    std::uint64_t high_ = 0;
    std::uint64_t low_ = 0;
};

// Seeded once a process: whoever writes rows may choose their uuids, but not which of them share a
// bucket.
struct UuidHash {
    std::size_t operator()(Uuid const& uuid) const;
};

}  // namespace Ovsdb

#endif
