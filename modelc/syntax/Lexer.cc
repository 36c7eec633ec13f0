#include <modelc/syntax/Lexer.h>

#include <string>
#include <utility>

namespace Modelc {
namespace {

bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_'; }
bool isDigit(char c) { return c >= '0' && c <= '9'; }
bool isWordPart(char c) { return isLetter(c) || isDigit(c); }
bool isMark(char c) {
    return c != 0 && std::string_view("{}()[]:;,=-!").find(c) != std::string_view::npos;
}
bool isBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }
bool isHeaderPart(char c) { return isWordPart(c) || c == '/' || c == '.' || c == '-' || c == '+'; }

bool isControl(char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7f; }

bool startsToken(char c) {
    return isBlank(c) || isWordPart(c) || isMark(c) || c == '"' || c == '<' || c == '/';
}

}  // namespace

Lexer::Lexer(std::uint32_t file, std::string_view text, Diagnostics& diagnostics)
    : file_(file), text_(text), diagnostics_(diagnostics) {
    if (text_.size() <= longestText) return;
    complain({}, "the text has " + std::to_string(text_.size()) + " bytes",
             "at most " + std::to_string(longestText));
    text_ = {};
}

char Lexer::peek(std::size_t ahead) const {
    return index_ + ahead < text_.size() ? text_[index_ + ahead] : '\0';
}

void Lexer::step() {
    if (text_[index_++] == '\n') {
        ++at_.line;
        at_.column = 1;
    } else {
        ++at_.column;
    }
}

void Lexer::complain(Position at, std::string what, std::string expected) {
    diagnostics_.report({file_, at}, std::move(what), std::move(expected));
}

std::vector<Token> Lexer::tokens() {
    std::vector<Token> result;
    for (;;) {
        Token token = next();
        if (token.kind != TokenKind::doc) lastTokenLine_ = at_.line;
        result.push_back(token);
        if (token.kind == TokenKind::end) return result;
    }
}

// Blanks, and comments that document nothing: // and ////, but not ///.
void Lexer::skipBlanks() {
    for (;;) {
        while (index_ < text_.size() && isBlank(peek())) step();
        bool const plain = peek() == '/' && peek(1) == '/' && (peek(2) != '/' || peek(3) == '/');
        if (!plain) return;
        while (index_ < text_.size() && peek() != '\n') step();
    }
}

Token Lexer::next() {
    skipBlanks();
    char const c = peek();
    if (index_ == text_.size()) return {TokenKind::end, {}, at_};
    if (c == '/' && peek(1) == '/') return comment();
    if (isLetter(c)) return word();
    if (isDigit(c)) return number();
    if (c == '"') return string();
    if (c == '<') return header();
    return isMark(c) ? mark() : broken();
}

Token Lexer::finish(TokenKind kind, std::size_t first, std::size_t last, Position at) {
    Token token{kind, text_.substr(first, last - first), at};
    if (kind == TokenKind::doc || token.text.size() <= longestToken) return token;
    complain(at, "a token of " + std::to_string(token.text.size()) + " bytes",
             "at most " + std::to_string(longestToken));
    return {TokenKind::broken, token.text.substr(0, longestToken), at};
}

Token Lexer::comment() {
    Position const at = at_;
    for (int i = 0; i < 3; ++i) step();
    if (peek() == ' ') step();
    std::size_t const first = index_;
    while (index_ < text_.size() && peek() != '\n') step();
    std::size_t last = index_;
    while (last > first && isBlank(text_[last - 1])) --last;
    Token token = finish(TokenKind::doc, first, last, at);
    if (at.line == lastTokenLine_) token.kind = TokenKind::trailing;
    return token;
}

Token Lexer::word() {
    Position const at = at_;
    std::size_t const first = index_;
    while (isWordPart(peek())) step();
    return finish(TokenKind::word, first, index_, at);
}

Token Lexer::number() {
    Position const at = at_;
    std::size_t const first = index_;
    while (isWordPart(peek())) step();
    bool const real = peek() == '.' && isDigit(peek(1));
    if (real) step();
    while (real && isDigit(peek())) step();
    return finish(real ? TokenKind::real : TokenKind::integer, first, index_, at);
}

Token Lexer::string() {
    Position const at = at_;
    step();
    std::size_t const first = index_;
    while (index_ < text_.size() && peek() != '"' && !isControl(peek())) {
        if (peek() == '\\' && index_ + 1 < text_.size() && !isControl(peek(1))) step();
        step();
    }
    std::size_t const last = index_;
    if (peek() == '"') {
        step();
        return finish(TokenKind::string, first, last, at);
    }
    complain(at, "the string has no end on its line", "'\"' before any control character");
    return finish(TokenKind::broken, first, last, at);
}

Token Lexer::header() {
    Position const at = at_;
    step();
    std::size_t const first = index_;
    while (isHeaderPart(peek())) step();
    std::size_t const last = index_;
    if (peek() == '>' && last > first) {
        step();
        return finish(TokenKind::header, first, last, at);
    }
    complain(at, "the header's name has no end", "a name such as <kelp/IpAddr.h>");
    return finish(TokenKind::broken, first, last, at);
}

Token Lexer::mark() {
    Position const at = at_;
    std::size_t const first = index_;
    bool const scope = peek() == ':' && peek(1) == ':';
    step();
    if (scope) step();
    return finish(TokenKind::mark, first, index_, at);
}

Token Lexer::broken() {
    Position const at = at_;
    std::size_t const first = index_;
    do step();
    while (index_ < text_.size() && !startsToken(peek()));
    complain(at, "unknown characters " + quoted(text_.substr(first, index_ - first)),
             "a word, a number, a string or a mark");
    return {TokenKind::broken, text_.substr(first, index_ - first), at};
}

}  // namespace Modelc
