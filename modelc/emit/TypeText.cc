#include <modelc/emit/TypeText.h>

#include <charconv>

#include <modelc/check/Builtins.h>

namespace Modelc {
namespace {

// A number that only fits an unsigned type says so, for the compilers that would wonder.
std::string numberText(std::string const& digits) {
    bool const isHex = digits.starts_with("0x") || digits.starts_with("0X");
    std::string_view const plain = std::string_view(digits).substr(isHex ? 2 : 0);
    std::uint64_t value = 0;
    auto const [stop, error] =
        std::from_chars(plain.data(), plain.data() + plain.size(), value, isHex ? 16 : 10);
    bool const isPlain = error == std::errc{} && stop == plain.data() + plain.size();
    if (!isPlain) return digits;
    std::string const canonical = isHex ? "0x" + std::string(plain) : std::to_string(value);
    return value > 0x7fffffffffffffff ? canonical + "U" : canonical;
}

// Bytes that a source file should not hold stand in octal.
std::string stringText(std::string const& bytes) {
    std::string result = "\"";
    for (char const c : bytes) {
        auto const byte = static_cast<unsigned char>(c);
        if (c == '"' || c == '\\') {
            result += '\\';
            result += c;
        } else if (byte >= 0x20 && byte < 0x7f) {
            result += c;
        } else {
            result += '\\';
            for (int shift = 6; shift >= 0; shift -= 3) {
                result += static_cast<char>('0' + (byte >> shift & 7));
            }
        }
    }
    return result + "\"";
}

std::string zeroOf(Type const& type, Unit const& unit) {
    if (type.kind == TypeKind::enumeration) {
        return typeText(type, unit) + "::" + type.enumeration->enumerators.front().name;
    }
    if (type.kind != TypeKind::builtin || isText(type)) return typeText(type, unit) + "()";
    if (type.builtin == Builtin::boolean) return "false";
    return type.builtin == Builtin::real ? "0.0" : "0";
}

}  // namespace

bool isText(Type const& type) {
    return type.kind == TypeKind::builtin &&
           (type.builtin == Builtin::text || type.builtin == Builtin::name);
}

std::string typeText(Type const& type, Unit const& unit) {
    if (type.kind == TypeKind::builtin) return std::string(builtinType(type).cxx);
    bool const isShort = (type.kind == TypeKind::enumeration || type.kind == TypeKind::value) &&
                         type.nameSpace() == unit.nameSpace;
    return isShort ? type.shortName() : type.fullName;
}

std::string passedType(Type const& type, Unit const& unit) {
    return typeText(type, unit) + (type.byReference ? " const&" : "");
}

std::string parameter(Type const& type, std::string const& name, Unit const& unit) {
    return passedType(type, unit) + " " + name;
}

std::string handedOn(Type const& type, std::string const& name) {
    return isText(type) ? "std::move(" + name + ")" : name;
}

std::string initialText(Type const& type, Initial const& initial, Unit const& unit) {
    switch (initial.kind) {
        case Initial::Kind::zero:
            return zeroOf(type, unit);
        case Initial::Kind::number:
            return numberText(initial.text);
        case Initial::Kind::real:
        case Initial::Kind::boolean:
            return initial.text;
        case Initial::Kind::text:
            return stringText(initial.text);
        case Initial::Kind::enumerator:
            break;
    }
    return typeText(type, unit) + "::" + initial.text;
}

std::string initializer(Type const& type, Initial const& initial, Unit const& unit) {
    bool const isZero = initial.kind == Initial::Kind::zero;
    if (isZero && isText(type)) return "";
    if (initial.kind == Initial::Kind::text && initial.text.empty()) return "";
    bool const isClass = type.kind == TypeKind::external || type.kind == TypeKind::value;
    if (isZero && isClass) return "{}";
    return " = " + initialText(type, initial, unit);
}

}  // namespace Modelc
