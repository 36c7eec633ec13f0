#include <qor/core/Strep.h>

#include <qor/core/Format.h>
#include <qor/core/TextUtf8.h>

#include <cxxabi.h>

#include <cstdlib>
#include <memory>
#include <string>

namespace Qor {

namespace {

using Position = String8::IteratorConst;

bool isBlank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

int hexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

char plainEscape(char c) {
    switch (c) {
        case '\'':
        case '\\':
            return c;
        case 'n':
            return '\n';
        case 'r':
            return '\r';
        case 't':
            return '\t';
        default:
            return '\0';
    }
}

// Reads the escape behind a backslash, gives how many bytes it takes, and 0 if it is none.
std::size_t readEscape(std::string_view rest, std::string& out) {
    if (rest.empty()) return 0;
    if (char const plain = plainEscape(rest[0]); plain != '\0') {
        out += plain;
        return 1;
    }
    if (rest[0] != 'x' || rest.size() < 3) return 0;
    int const high = hexDigit(rest[1]);
    int const low = hexDigit(rest[2]);
    if (high < 0 || low < 0) return 0;
    out += static_cast<char>(high * 16 + low);
    return 3;
}

void writeEscape(char c, std::string& out) {
    constexpr char digits[] = "0123456789abcdef";
    auto const byte = static_cast<unsigned char>(c);
    out += '\\';
    switch (c) {
        case '\n':
            out += 'n';
            break;
        case '\r':
            out += 'r';
            break;
        case '\t':
            out += 't';
            break;
        default:
            out += 'x';
            out += digits[byte >> 4];
            out += digits[byte & 0xF];
    }
}

std::string demangled(std::type_info const& type) {
    int status = 0;
    std::unique_ptr<char, void (*)(void*)> const name(
        abi::__cxa_demangle(type.name(), nullptr, nullptr, &status), std::free);
    return status == 0 ? name.get() : type.name();
}

}  // namespace

void skipBlanks(Position& position, Position const& end) {
    auto const rest = position.rest(end);
    std::size_t count = 0;
    while (count < rest.size() && isBlank(rest[count])) ++count;
    skipBytes(position, count);
}

void needString(Position& position, Position const& end, char const* pattern) {
    for (char const* wanted = pattern; *wanted != '\0'; ++wanted) {
        if (*wanted == ' ') {
            skipBlanks(position, end);
            continue;
        }
        auto const rest = position.rest(end);
        if (rest.empty() || rest.front() != *wanted) {
            throwExpected(format("\"%s\"", pattern).charPtr(), position);
        }
        skipBytes(position, 1);
    }
}

String8 valueToStrep(String8 const& value) {
    std::string out = "'";
    auto rest = value.view();
    while (!rest.empty()) {
        if (rest.front() == '\'' || rest.front() == '\\') {
            out += '\\';
            out += rest.front();
            rest.remove_prefix(1);
        } else if (auto const size = printableLength(rest); size > 0) {
            out += rest.substr(0, size);
            rest.remove_prefix(size);
        } else {
            writeEscape(rest.front(), out);
            rest.remove_prefix(1);
        }
    }
    out += '\'';
    return String8(std::string_view(out));
}

String8 sequenceToValue(Position& position, Position const& end, String8*) {
    skipBlanks(position, end);
    if (position.rest(end).substr(0, 1) != "'") throwExpected("a quoted string", position);
    skipBytes(position, 1);
    std::string out;
    auto rest = position.rest(end);
    for (;;) {
        auto const plain = rest.find_first_of("'\\");
        if (plain == std::string_view::npos) {
            position.indexIs(end.index());
            throwExpected("the closing quote", position);
        }
        out += rest.substr(0, plain);
        skipBytes(position, plain + 1);
        if (rest[plain] == '\'') return String8(std::string_view(out));
        rest.remove_prefix(plain + 1);
        auto const escape = readEscape(rest, out);
        if (escape == 0) throwExpected("one of ' \\ n r t xNN behind the backslash", position);
        skipBytes(position, escape);
        rest.remove_prefix(escape);
    }
}

Name sequenceToValue(Position& position, Position const& end, Name*) {
    return sequenceToValue(position, end, static_cast<String8*>(nullptr));
}

void throwExpected(char const* what, Position const& position) {
    throwRangeException(format("expected %s at column %lld deserializing ", what,
                               static_cast<long long>(position.index())) +
                        position.text());
}

void throwJunk(Position const& position, String8 const& text) {
    Exception::IdBitArray ids;
    ids.add(Exception::rangeId);
    throw RangeException(
        format("junk at column %lld deserializing ", static_cast<long long>(position.index())) +
            text,
        ids);
}

void cannotConvert(Position const& position, Position const& end, std::type_info const& type) {
    cannotConvert(String8(position.rest(end)), type);
}

void cannotConvert(String8 const& text, std::type_info const& type) {
    throwRangeException(
        format("cannot convert %s to %s", valueToStrep(text).charPtr(), demangled(type).c_str()));
}

void rethrowFromDeserializeAttr(RangeException const& exception, String8 const& attributeName) {
    throw RangeException(String8("attribute ") + attributeName + ": " + exception.message(),
                         exception.ids());
}

}  // namespace Qor
