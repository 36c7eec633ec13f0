// The text form of numbers and truth values: plain decimal digits without sign, blank or leading
// zero, a '-' before negative ones; "true" and "false"; for fractions the shortest text that reads
// back as the same number. Strep.h tells what all parsers have in common.
#ifndef QOR_CORE_STREPNUMBER_H
#define QOR_CORE_STREPNUMBER_H

#include <qor/core/Export.h>
#include <qor/core/String8.h>
#include <qor/core/Types.h>

#include <concepts>
#include <limits>

namespace Qor {

QOR_EXPORT String8 textOfUnsigned(U64 value);
QOR_EXPORT String8 textOfSigned(I64 value);
QOR_EXPORT String8 textOfBool(bool value);
QOR_EXPORT String8 textOfDouble(double value);

// The number at the position, held against its bounds.
QOR_EXPORT U64 unsignedFromText(String8::IteratorConst& position, String8::IteratorConst const& end,
                                U64 greatest);
QOR_EXPORT I64 signedFromText(String8::IteratorConst& position, String8::IteratorConst const& end,
                              I64 least, I64 greatest);
QOR_EXPORT bool boolFromText(String8::IteratorConst& position, String8::IteratorConst const& end);
QOR_EXPORT double doubleFromText(String8::IteratorConst& position,
                                 String8::IteratorConst const& end);

template <class Number>
concept StrepNumber = std::integral<Number> || std::same_as<Number, double>;

// A template, so that nothing turns into a number or a truth value on the way here.
template <StrepNumber Number>
String8 valueToStrep(Number const& value) {
    if constexpr (std::same_as<Number, bool>) {
        return textOfBool(value);
    } else if constexpr (std::same_as<Number, double>) {
        return textOfDouble(value);
    } else if constexpr (std::unsigned_integral<Number>) {
        return textOfUnsigned(value);
    } else {
        return textOfSigned(value);
    }
}

template <StrepNumber Number>
Number sequenceToValue(String8::IteratorConst& position, String8::IteratorConst const& end,
                       Number*) {
    using Limits = std::numeric_limits<Number>;
    if constexpr (std::same_as<Number, bool>) {
        return boolFromText(position, end);
    } else if constexpr (std::same_as<Number, double>) {
        return doubleFromText(position, end);
    } else if constexpr (std::unsigned_integral<Number>) {
        return static_cast<Number>(unsignedFromText(position, end, Limits::max()));
    } else {
        return static_cast<Number>(signedFromText(position, end, Limits::min(), Limits::max()));
    }
}

}  // namespace Qor

#endif
