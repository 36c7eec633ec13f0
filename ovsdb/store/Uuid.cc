#include <ovsdb/store/Uuid.h>

#include <random>

namespace Ovsdb {
namespace {

constexpr std::array<signed char, 256> digitTable() {
    std::array<signed char, 256> table{};
    table.fill(-1);
    for (std::size_t i = 0; i < 10; ++i) table['0' + i] = static_cast<signed char>(i);
    for (std::size_t i = 0; i < 6; ++i) {
        table['a' + i] = static_cast<signed char>(10 + i);
        table['A' + i] = static_cast<signed char>(10 + i);
    }
    return table;
}

constexpr std::array<signed char, 256> digits = digitTable();

constexpr bool isDash(std::size_t at) { return at == 8 || at == 13 || at == 18 || at == 23; }

template <int count>
std::uint64_t takeDigits(char const* at, int& good) {
    std::uint64_t word = 0;
    for (int i = 0; i < count; ++i) {
        // NOLINTNEXTLINE(bugprone-signed-char-misuse): the sign says that it is no digit.
        int const value = digits[static_cast<unsigned char>(at[i])];
        good |= value;
        word = word << 4 | static_cast<std::uint64_t>(value & 15);
    }
    return word;
}

void putBytes(char* to, std::uint64_t word) {
    for (std::size_t i = 0; i < 8; ++i) to[i] = static_cast<char>(word >> (56 - 8 * i));
}

std::uint64_t takeBytes(char const* from) {
    std::uint64_t word = 0;
    for (std::size_t i = 0; i < 8; ++i) word = word << 8 | static_cast<unsigned char>(from[i]);
    return word;
}

std::array<std::uint64_t, 2> drawSeeds() {
    std::random_device source;
    auto const draw = [&] { return std::uint64_t{source()} << 32 | source(); };
    return {draw(), draw()};
}

}  // namespace

std::optional<Uuid> Uuid::parse(std::string_view text) {
    if (text.size() != textSize) return std::nullopt;
    char const* const at = text.data();
    // Negative as soon as one character is no digit, whatever the others are.
    int good = 0;
    std::uint64_t const high = takeDigits<8>(at, good) << 32 | takeDigits<4>(at + 9, good) << 16 |
                               takeDigits<4>(at + 14, good);
    std::uint64_t const low = takeDigits<4>(at + 19, good) << 48 | takeDigits<12>(at + 24, good);
    bool const dashes = at[8] == '-' && at[13] == '-' && at[18] == '-' && at[23] == '-';
    if (good < 0 || !dashes) return std::nullopt;
    return Uuid(high, low);
}

Uuid Uuid::fromBytes(std::string_view bytes) {
    return {takeBytes(bytes.data()), takeBytes(bytes.data() + 8)};
}

std::array<char, Uuid::byteSize> Uuid::bytes() const {
    std::array<char, byteSize> all{};
    putBytes(all.data(), high_);
    putBytes(all.data() + 8, low_);
    return all;
}

std::string Uuid::text() const {
    static constexpr std::string_view hex = "0123456789abcdef";
    std::string all(textSize, '-');
    std::size_t digit = 0;
    for (std::size_t at = 0; at < textSize; ++at) {
        if (isDash(at)) continue;
        std::uint64_t const word = digit < 16 ? high_ : low_;
        all[at] = hex[word >> (60 - 4 * (digit % 16)) & 15];
        ++digit;
    }
    return all;
}

std::size_t UuidHash::operator()(Uuid const& uuid) const {
    static std::array<std::uint64_t, 2> const seeds = drawSeeds();
    __extension__ using Wide = unsigned __int128;
    Wide const mixed = Wide{uuid.high_ ^ seeds[0]} * Wide{uuid.low_ ^ seeds[1]};
    return static_cast<std::size_t>(mixed) ^ static_cast<std::size_t>(mixed >> 64);
}

}  // namespace Ovsdb
