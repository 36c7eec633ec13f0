// The text form of values and its parsers: what valueToStrep prints, sequenceToValue reads back,
// for every value. A parser works on a position and an end and leaves the position behind what it
// has read. What it can't read raises RangeException, which tells the column (bytes from the start,
// counted from 0) and the whole text. Parsers skip white space in front of a value: blank, tab,
// newline, carriage return, vertical tab, form feed.
//
// A type takes part by a function sequenceToValue(position, end, T*) in its own namespace, whose
// last argument only selects the overload and may be null, or by a constructor T(position, end).
//
// Cost: time in proportion to the text, no recursion.
#ifndef QOR_CORE_STREP_H
#define QOR_CORE_STREP_H

#include <qor/core/Exception.h>
#include <qor/core/Expect.h>
#include <qor/core/Export.h>
#include <qor/core/Name.h>
#include <qor/core/StrepNumber.h>
#include <qor/core/String8.h>

#include <typeinfo>

namespace Qor {

// Goes over `pattern`. A blank in the pattern matches any run of white space, also an empty one, so
// that " : " accepts ": ". Where the text differs, the position stops and RangeException is raised.
QOR_EXPORT void needString(String8::IteratorConst& position, String8::IteratorConst const& end,
                           char const* pattern);

// Goes over that many bytes.
inline void skipBytes(String8::IteratorConst& position, std::size_t count) {
    position.indexIs(position.index() + static_cast<U32>(count));
}

// Goes over white space.
QOR_EXPORT void skipBlanks(String8::IteratorConst& position, String8::IteratorConst const& end);

// A string between single quotes. Printable bytes and well-formed UTF-8 stand for themselves. The
// rest is a backslash with a quote, a backslash, n, r, t, or xNN (two hexadecimal digits), so that
// any bytes come back.
QOR_EXPORT String8 valueToStrep(String8 const& value);
QOR_EXPORT String8 sequenceToValue(String8::IteratorConst& position,
                                   String8::IteratorConst const& end, String8* selector);
QOR_EXPORT Name sequenceToValue(String8::IteratorConst& position, String8::IteratorConst const& end,
                                Name* selector);

// Raises the RangeException of a text that can't become a value of that type.
[[noreturn]] QOR_EXPORT void cannotConvert(String8::IteratorConst const& position,
                                           String8::IteratorConst const& end,
                                           std::type_info const& type);
[[noreturn]] QOR_EXPORT void cannotConvert(String8 const& text, std::type_info const& type);

// Raises "expected WHAT at column N deserializing TEXT" for the position and its text.
[[noreturn]] QOR_EXPORT void throwExpected(char const* what,
                                           String8::IteratorConst const& position);

// Raises "junk at column N deserializing TEXT".
[[noreturn]] QOR_EXPORT void throwJunk(String8::IteratorConst const& position, String8 const& text);

// Raises the exception again, "attribute NAME: " before its message, with the ids that it had.
[[noreturn]] QOR_EXPORT void rethrowFromDeserializeAttr(RangeException const& exception,
                                                        String8 const& attributeName);

// Reads one value of any type that takes part.
template <class Value, class Position = String8::IteratorConst>
Value sequenceToValue(Position& position, Position const& end) {
    if constexpr (requires { sequenceToValue(position, end, static_cast<Value*>(nullptr)); }) {
        return sequenceToValue(position, end, static_cast<Value*>(nullptr));
    } else {
        return Value(position, end);
    }
}

// Reads a whole text: what is left behind the value is junk.
template <class Value>
Value strepToValue(String8 const& text, Value* = nullptr) {
    Expect const expect(Exception::rangeId);
    String8::IteratorConst position(text);
    Value value = sequenceToValue<Value>(position, text.end());
    if (position != text.end()) throwJunk(position, text);
    return value;
}

// Reads the value of one attribute of a composite value; an error tells the attribute.
template <class Value>
Value deserializeAttr(String8::IteratorConst& position, String8::IteratorConst const& end,
                      String8 const& attributeName) try {
    Expect const expect(Exception::rangeId);
    return sequenceToValue<Value>(position, end);
} catch (RangeException const& exception) {
    rethrowFromDeserializeAttr(exception, attributeName);
}

}  // namespace Qor

#endif
