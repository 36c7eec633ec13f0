#include <modelc/check/Initials.h>

#include <algorithm>
#include <charconv>

#include <modelc/check/Builtins.h>

namespace Modelc {
namespace {

using Kind = Initial::Kind;

std::optional<Initial> wholeNumber(BuiltinType const& type, Tree::Literal const& literal) {
    if (literal.kind != TokenKind::integer) return std::nullopt;
    std::string_view digits = literal.text;
    bool const hex = digits.starts_with("0x") || digits.starts_with("0X");
    if (hex) digits.remove_prefix(2);
    std::uint64_t value = 0;
    char const* const end = digits.data() + digits.size();
    auto const [stop, error] = std::from_chars(digits.data(), end, value, hex ? 16 : 10);
    if (error != std::errc{} || stop != end) return std::nullopt;
    bool const fits = value <= type.greatest && (!literal.negative || type.kind == Builtin::i32);
    if (!fits) return std::nullopt;
    return Initial{Kind::number, (literal.negative ? "-" : "") + literal.text};
}

std::optional<Initial> realNumber(Tree::Literal const& literal) {
    if (literal.kind != TokenKind::integer && literal.kind != TokenKind::real) return std::nullopt;
    auto const isPlain = [](char c) { return (c >= '0' && c <= '9') || c == '.'; };
    if (!std::all_of(literal.text.begin(), literal.text.end(), isPlain)) return std::nullopt;
    std::string text = (literal.negative ? "-" : "") + literal.text;
    if (literal.kind == TokenKind::integer) text += ".0";
    return Initial{Kind::real, text};
}

// The bytes of a string whose \" and \\ stand for themselves; nothing else is escaped.
std::optional<Initial> text(Tree::Literal const& literal) {
    if (literal.kind != TokenKind::string || literal.negative) return std::nullopt;
    std::string bytes;
    for (std::size_t i = 0; i < literal.text.size(); ++i) {
        if (literal.text[i] == '\\') {
            if (++i == literal.text.size()) return std::nullopt;
            if (literal.text[i] != '"' && literal.text[i] != '\\') return std::nullopt;
        }
        bytes += literal.text[i];
    }
    return Initial{Kind::text, bytes};
}

std::optional<Initial> builtin(BuiltinType const& type, Tree::Literal const& literal) {
    bool const isWord = literal.kind == TokenKind::word && !literal.negative;
    switch (type.kind) {
        case Builtin::boolean:
            if (isWord && (literal.text == "true" || literal.text == "false")) {
                return Initial{Kind::boolean, literal.text};
            }
            return std::nullopt;
        case Builtin::real:
            return realNumber(literal);
        case Builtin::text:
        case Builtin::name:
            return text(literal);
        case Builtin::u8:
        case Builtin::u16:
        case Builtin::u32:
        case Builtin::u64:
        case Builtin::i32:
            return wholeNumber(type, literal);
    }
    return std::nullopt;
}

std::optional<Initial> enumerator(Enumeration const& type, Tree::Literal const& literal) {
    if (literal.kind != TokenKind::word || literal.negative) return std::nullopt;
    auto const found = std::find_if(type.enumerators.begin(), type.enumerators.end(),
                                    [&](Enumerator const& e) { return e.name == literal.text; });
    if (found == type.enumerators.end()) return std::nullopt;
    return Initial{Kind::enumerator, literal.text};
}

std::optional<Initial> initial(Type const& type, Tree::Literal const& literal) {
    bool const isZero =
        literal.kind == TokenKind::word && literal.text == "zero" && !literal.negative;
    if (type.kind == TypeKind::enumeration) {
        std::optional<Initial> named = enumerator(*type.enumeration, literal);
        if (named) return named;
    }
    if (isZero) return Initial{};
    if (type.kind == TypeKind::builtin) return builtin(builtinType(type), literal);
    return std::nullopt;
}

std::string expectedBuiltin(BuiltinType const& type) {
    switch (type.kind) {
        case Builtin::boolean:
            return "true, false or zero";
        case Builtin::real:
            return "a decimal number or zero";
        case Builtin::text:
        case Builtin::name:
            return "a text between double quotes or zero";
        case Builtin::i32:
            return "a whole number from -2147483647 to 2147483647 or zero";
        case Builtin::u8:
        case Builtin::u16:
        case Builtin::u32:
        case Builtin::u64:
            break;
    }
    return "a whole number from 0 to " + std::to_string(type.greatest) + " or zero";
}

}  // namespace

std::string expectedInitial(Type const& type) {
    if (type.kind == TypeKind::builtin) return expectedBuiltin(builtinType(type));
    if (type.kind == TypeKind::enumeration) return "an enumerator of " + type.fullName + " or zero";
    return "zero";
}

std::optional<Initial> checkInitial(Context const& context, Type const& type,
                                    Tree::Literal const& literal) {
    std::optional<Initial> result = initial(type, literal);
    if (!result) {
        std::string const shown = (literal.negative ? "-" : "") + literal.text;
        context.report(literal.at, quoted(shown) + " is no default for " + type.fullName,
                       expectedInitial(type));
    }
    return result;
}

}  // namespace Modelc
