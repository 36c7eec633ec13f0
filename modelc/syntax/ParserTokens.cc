// Taking tokens, needing them, and getting past those that make no statement.
#include <algorithm>
#include <charconv>
#include <string>
#include <utility>

#include <modelc/syntax/Parser.h>

namespace Modelc {
namespace {

// Decimal or 0x hexadecimal; false if the text is no number or does not fit 64 bits.
bool readInteger(std::string_view text, std::uint64_t& value) {
    bool const hex = text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X');
    if (hex) text.remove_prefix(2);
    char const* const end = text.data() + text.size();
    auto const [stop, error] = std::from_chars(text.data(), end, value, hex ? 16 : 10);
    return error == std::errc{} && stop == end;
}

std::string named(Token const& token) {
    switch (token.kind) {
        case TokenKind::end:
            return "the end of the text";
        case TokenKind::string:
            return "a string";
        case TokenKind::header:
            return "a header's name";
        case TokenKind::doc:
        case TokenKind::trailing:
            return "a documentation comment";
        case TokenKind::word:
        case TokenKind::integer:
        case TokenKind::real:
        case TokenKind::mark:
        case TokenKind::broken:
            break;
    }
    return quoted(token.text);
}

bool isLiteral(TokenKind kind) {
    return kind == TokenKind::integer || kind == TokenKind::real || kind == TokenKind::string ||
           kind == TokenKind::word;
}

}  // namespace

Token const& Parser::peek(std::size_t ahead) const {
    return tokens_[std::min(index_ + ahead, tokens_.size() - 1)];
}

Token const& Parser::take() {
    Token const& token = peek();
    if (token.kind != TokenKind::end) ++index_;
    return token;
}

bool Parser::at(std::string_view mark) const {
    return peek().kind == TokenKind::mark && peek().text == mark;
}

bool Parser::atWord(std::string_view word) const {
    return peek().kind == TokenKind::word && peek().text == word;
}

bool Parser::accept(std::string_view mark) {
    if (!at(mark)) return false;
    take();
    return true;
}

bool Parser::acceptWord(std::string_view word) {
    if (!atWord(word)) return false;
    take();
    return true;
}

// What the lexer found broken has been reported there.
void Parser::fail(std::string_view expected) {
    if (peek().kind != TokenKind::broken) {
        diagnostics_.report({file_, peek().at}, "found " + named(peek()), std::string(expected));
    }
    throw Failed{};
}

void Parser::need(std::string_view mark) {
    if (!accept(mark)) fail(quoted(mark));
}

void Parser::needWord(std::string_view word) {
    if (!acceptWord(word)) fail(word);
}

Tree::Word Parser::needName(std::string_view expected) {
    if (peek().kind != TokenKind::word) fail(expected);
    Token const& token = take();
    return {std::string(token.text), token.at};
}

Tree::Word Parser::needQualified(std::string_view expected) {
    Tree::Word result = needName(expected);
    while (accept("::")) result.text += "::" + needName("a name").text;
    return result;
}

Tree::Word Parser::needHeader() {
    if (peek().kind != TokenKind::header) fail("a header such as <kelp/IpAddr.h>");
    Token const& token = take();
    return {std::string(token.text), token.at};
}

Tree::Word Parser::needString(std::string_view expected) {
    if (peek().kind != TokenKind::string) fail(expected);
    Token const& token = take();
    return {std::string(token.text), token.at};
}

Tree::Number Parser::needNumber(std::string_view expected) {
    Tree::Number result;
    result.at = peek().at;
    bool const whole = peek().kind == TokenKind::integer;
    if (!whole || !readInteger(peek().text, result.value)) fail(expected);
    take();
    return result;
}

Tree::Literal Parser::needLiteral() {
    Tree::Literal result;
    result.at = peek().at;
    result.negative = accept("-");
    if (!isLiteral(peek().kind)) fail("a number, a string or a name");
    Token const& token = take();
    result.kind = token.kind;
    result.text = std::string(token.text);
    while (result.kind == TokenKind::word && accept("::")) {
        result.text += "::" + needName("a name").text;
    }
    return result;
}

Tree::Argument Parser::needArgument() {
    Tree::Argument result;
    result.name = needName("the argument's name");
    need(":");
    result.type = needQualified("the argument's type");
    return result;
}

Tree::Doc Parser::leadingDoc() {
    Tree::Doc doc;
    while (peek().kind == TokenKind::doc || peek().kind == TokenKind::trailing) {
        doc.emplace_back(take().text);
    }
    return doc;
}

// The `;`, and what documents the statement behind it on its line.
void Parser::closeStatement(Tree::Doc& doc) {
    need(";");
    while (peek().kind == TokenKind::trailing) doc.emplace_back(take().text);
}

// Up to and over the `;` of a broken statement, but not over the brace that closes the body around
// it.
void Parser::skipStatement() {
    std::size_t depth = 0;
    while (peek().kind != TokenKind::end) {
        if (depth == 0 && at("}")) return;
        bool const closes = depth == 0 && at(";");
        if (at("{")) ++depth;
        if (at("}")) --depth;
        take();
        if (closes) break;
    }
    while (peek().kind == TokenKind::trailing) take();
}

// Up to and over the `;` or the closing brace of a broken declaration.
void Parser::skipDeclaration() {
    std::size_t depth = 0;
    while (peek().kind != TokenKind::end) {
        bool const opens = at("{");
        bool const closes = at("}");
        bool const ends = at(";");
        take();
        if (opens) ++depth;
        if (closes && depth > 0) --depth;
        if (depth == 0 && (closes || ends)) return;
    }
}

}  // namespace Modelc
