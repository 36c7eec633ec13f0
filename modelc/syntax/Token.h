// One token of a description.
//
// `text` is a view into the source text (a string's text stands without its quotes and with its
// escapes as written, a header's without its angle brackets), so a token lives no longer than the
// source does.
#ifndef MODELC_SYNTAX_TOKEN_H
#define MODELC_SYNTAX_TOKEN_H

#include <cstdint>
#include <string_view>

#include <modelc/syntax/Position.h>

namespace Modelc {

enum class TokenKind : std::uint8_t {
    end,       // the end of the text
    word,      // an identifier; keywords are words too, and words only where the grammar wants them
    integer,   // 12, 0x1000000
    real,      // 0.5
    string,    // "text"
    header,    // <kelp/IpAddr.h>
    mark,      // one of { } ( ) [ ] : :: ; , = - !
    doc,       // a line of documentation, after its ///
    trailing,  // the same, standing behind a statement on its line
    broken,    // bytes that are no token; the lexer has reported them
};

struct Token {
    TokenKind kind = TokenKind::end;
    std::string_view text;
    Position at;
};

}  // namespace Modelc

#endif
