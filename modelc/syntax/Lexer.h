// Text -> tokens.
//
// Any bytes are safe: what is no token is reported once a run of such bytes and comes out as one
// `broken` token. Time and memory are linear in the text. Text beyond `longestText` is refused
// whole, a token beyond `longestToken` by itself.
#ifndef MODELC_SYNTAX_LEXER_H
#define MODELC_SYNTAX_LEXER_H

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include <modelc/syntax/Diagnostics.h>
#include <modelc/syntax/Token.h>

namespace Modelc {

class Lexer {
  public:
    static constexpr std::size_t longestText = std::size_t{1} << 20;
    static constexpr std::size_t longestToken = 255;

    Lexer(std::uint32_t file, std::string_view text, Diagnostics& diagnostics);

    // All tokens, closed by one of kind `end`.
    std::vector<Token> tokens();

  private:
    char peek(std::size_t ahead = 0) const;
    void step();
    void skipBlanks();
    Token next();
    Token comment();
    Token word();
    Token number();
    Token string();
    Token header();
    Token mark();
    Token broken();
    Token finish(TokenKind kind, std::size_t first, std::size_t last, Position at);
    void complain(Position at, std::string what, std::string expected);

    std::uint32_t file_;
    std::string_view text_;
    Diagnostics& diagnostics_;
    std::size_t index_ = 0;
    Position at_;
    std::uint32_t lastTokenLine_ = 0;
};

}  // namespace Modelc

#endif
