#include <vgwd/show/JsonText.h>

namespace Vgwd {
namespace {

constexpr char32_t replacement = 0xFFFD;

// Takes one character of UTF-8 off the front; what is none gives the replacement character.
char32_t takeCharacter(std::string_view& rest) {
    auto const byte = [&](std::size_t i) { return static_cast<unsigned char>(rest[i]); };
    unsigned const first = byte(0);
    std::size_t const size = first < 0x80    ? 1
                             : first >= 0xF0 ? 4
                             : first >= 0xE0 ? 3
                             : first >= 0xC2 ? 2
                                             : 0;
    if (size == 0 || size > rest.size() || first > 0xF4) {
        rest.remove_prefix(1);
        return replacement;
    }
    char32_t character = size == 1 ? first : first & (0x7FU >> size);
    for (std::size_t i = 1; i < size; ++i) {
        if ((byte(i) & 0xC0U) != 0x80) {
            rest.remove_prefix(i);
            return replacement;
        }
        character = character << 6 | (byte(i) & 0x3FU);
    }
    rest.remove_prefix(size);
    return character;
}

void appendEscape(std::string& out, char32_t unit) {
    static constexpr std::string_view hex = "0123456789abcdef";
    out += "\\u";
    for (int shift = 12; shift >= 0; shift -= 4) out += hex[unit >> shift & 15];
}

void appendCharacter(std::string& out, char32_t character) {
    static constexpr std::string_view marked = "\"\\\b\f\n\r\t";
    static constexpr std::string_view letters = "\"\\bfnrt";
    if (character >= 0x10000) {
        appendEscape(out, 0xD800 + ((character - 0x10000) >> 10));
        appendEscape(out, 0xDC00 + ((character - 0x10000) & 0x3FF));
        return;
    }
    std::size_t const at =
        character < 0x80 ? marked.find(static_cast<char>(character)) : std::string_view::npos;
    if (at != std::string_view::npos) {
        out += '\\';
        out += letters[at];
    } else if (character < 0x20 || character > 0x7E) {
        appendEscape(out, character);
    } else {
        out += static_cast<char>(character);
    }
}

}  // namespace

void JsonText::begin(std::string_view name) {
    member(name);
    text_ += '{';
    ++depth_;
    empty_ = true;
}

void JsonText::end() { close('}'); }

void JsonText::value(std::string_view name, Cell const& content) {
    member(name);
    cell(content);
}

void JsonText::list(std::string_view name, std::vector<Cell> const& cells) {
    member(name);
    text_ += '[';
    ++depth_;
    empty_ = true;
    for (Cell const& content : cells) {
        item();
        cell(content);
    }
    close(']');
}

void JsonText::pairs(std::string_view name, std::vector<CellPair> const& pairs) {
    member(name);
    text_ += '[';
    ++depth_;
    empty_ = true;
    for (auto const& [first, second] : pairs) {
        item();
        text_ += '[';
        ++depth_;
        empty_ = true;
        item();
        cell(first);
        item();
        cell(second);
        close(']');
    }
    close(']');
}

std::string JsonText::take() {
    close('}');
    text_ += '\n';
    return std::move(text_);
}

void JsonText::member(std::string_view name) {
    item();
    string(name);
    text_ += ": ";
}

void JsonText::item() {
    text_ += empty_ ? "\n" : ",\n";
    text_.append(depth_, ' ');
    empty_ = false;
}

void JsonText::close(char bracket) {
    --depth_;
    if (!empty_) {
        text_ += '\n';
        text_.append(depth_, ' ');
    }
    text_ += bracket;
    empty_ = false;
}

void JsonText::cell(Cell const& content) {
    if (content.isNumber)
        text_ += content.text;
    else
        string(content.text);
}

void JsonText::string(std::string_view text) {
    text_ += '"';
    while (!text.empty()) {
        char const c = text.front();
        if (c >= 0x20 && c < 0x7F && c != '"' && c != '\\') {
            text_ += c;
            text.remove_prefix(1);
        } else {
            appendCharacter(text_, takeCharacter(text));
        }
    }
    text_ += '"';
}

}  // namespace Vgwd
