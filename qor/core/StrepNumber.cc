#include <qor/core/Format.h>
#include <qor/core/Strep.h>

#include <array>
#include <charconv>
#include <cmath>

namespace Qor {

namespace {

using Position = String8::IteratorConst;

template <class Number>
String8 printed(Number value) {
    std::array<char, 32> text;
    auto const result = std::to_chars(text.data(), text.data() + text.size(), value);
    return String8(
        std::string_view(text.data(), static_cast<std::size_t>(result.ptr - text.data())));
}

// White space skipped, the bytes up to the end.
std::string_view startOf(Position& position, Position const& end) {
    skipBlanks(position, end);
    return position.rest(end);
}

// The run at the start that consists of the given characters.
std::string_view runOf(std::string_view text, char const* characters) {
    return text.substr(0, std::min(text.find_first_not_of(characters), text.size()));
}

// The digits of a number without sign.
std::string_view digitsOf(std::string_view text, Position const& position) {
    auto const digits = runOf(text, "0123456789");
    if (digits.empty()) throwExpected("a decimal number", position);
    if (digits.size() > 1 && digits.front() == '0') {
        throwExpected("a decimal number without leading zero", position);
    }
    return digits;
}

bool goOver(Position& position, Position const& end, std::string_view word) {
    if (!startOf(position, end).starts_with(word)) return false;
    skipBytes(position, word.size());
    return true;
}

}  // namespace

String8 textOfUnsigned(U64 value) { return printed(value); }
String8 textOfSigned(I64 value) { return printed(value); }
String8 textOfBool(bool value) { return value ? "true" : "false"; }
String8 textOfDouble(double value) { return std::isnan(value) ? String8("nan") : printed(value); }

U64 unsignedFromText(Position& position, Position const& end, U64 greatest) {
    auto const digits = digitsOf(startOf(position, end), position);
    U64 value = 0;
    auto const result = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    if (result.ec != std::errc() || value > greatest) {
        throwExpected(
            format("a number from 0 to %llu", static_cast<unsigned long long>(greatest)).charPtr(),
            position);
    }
    skipBytes(position, digits.size());
    return value;
}

I64 signedFromText(Position& position, Position const& end, I64 least, I64 greatest) {
    auto const text = startOf(position, end);
    bool const isNegative = text.starts_with('-');
    auto const digits = digitsOf(text.substr(isNegative ? 1 : 0), position);
    auto const size = digits.size() + (isNegative ? 1 : 0);
    I64 value = 0;
    auto const result = std::from_chars(text.data(), text.data() + size, value);
    bool const isMinusZero = isNegative && digits == "0";
    if (result.ec != std::errc() || isMinusZero || value < least || value > greatest) {
        throwExpected(format("a number from %lld to %lld", static_cast<long long>(least),
                             static_cast<long long>(greatest))
                          .charPtr(),
                      position);
    }
    skipBytes(position, size);
    return value;
}

bool boolFromText(Position& position, Position const& end) {
    if (goOver(position, end, "true")) return true;
    if (!goOver(position, end, "false")) throwExpected("true or false", position);
    return false;
}

double doubleFromText(Position& position, Position const& end) {
    if (goOver(position, end, "nan")) return std::numeric_limits<double>::quiet_NaN();
    if (goOver(position, end, "inf")) return std::numeric_limits<double>::infinity();
    if (goOver(position, end, "-inf")) return -std::numeric_limits<double>::infinity();
    auto const text = runOf(startOf(position, end), "0123456789.eE+-");
    double value = 0;
    auto const result = std::from_chars(text.data(), text.data() + text.size(), value);
    if (result.ec != std::errc()) throwExpected("a number", position);
    skipBytes(position, static_cast<std::size_t>(result.ptr - text.data()));
    return value;
}

}  // namespace Qor
