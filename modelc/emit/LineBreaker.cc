#include <modelc/emit/LineBreaker.h>

#include <algorithm>
#include <optional>
#include <string_view>
#include <vector>

namespace Modelc {
namespace {

constexpr std::size_t continuation = 4;

std::size_t indentationOf(std::string const& line) {
    return std::min(line.find_first_not_of(' '), line.size());
}

std::string blanks(std::size_t count) { return std::string(count, ' '); }

bool startsWith(std::string const& line, std::string_view word) {
    return std::string_view(line).substr(indentationOf(line)).starts_with(word);
}

bool opens(char c) { return c == '(' || c == '<' || c == '{'; }
bool closes(char c) { return c == ')' || c == '>' || c == '}'; }

// The parts of a list between its top-level commas.
std::vector<std::string> partsOf(std::string const& list) {
    std::vector<std::string> parts;
    int depth = 0;
    std::string part;
    for (char const c : list) {
        if (opens(c)) ++depth;
        if (closes(c)) --depth;
        if (c == ',' && depth == 0) {
            parts.push_back(part);
            part.clear();
        } else if (c != ' ' || !part.empty()) {
            part += c;
        }
    }
    if (!part.empty()) parts.push_back(part);
    return parts;
}

// A list between brackets: what stands in front of it, bracket included, its parts, and what
// follows, bracket included.
struct Bracketed {
    std::string before;
    std::vector<std::string> parts;
    std::string after;
};

// As many parts a line as fit, the first line going on behind `start`, the others at `column`.
std::optional<std::string> packed(std::string const& start, std::size_t column,
                                  Bracketed const& list) {
    std::string result;
    std::string line = start;
    bool isFirst = true;
    for (std::size_t i = 0; i < list.parts.size(); ++i) {
        bool const isLast = i + 1 == list.parts.size();
        std::string const part = list.parts[i] + (isLast ? list.after : ",");
        std::string const gap = isFirst ? "" : " ";
        if (!isFirst && line.size() + gap.size() + part.size() > longestLine) {
            result += line + "\n";
            line = blanks(column) + part;
        } else {
            line += gap + part;
        }
        isFirst = false;
        if (line.size() > longestLine) return std::nullopt;
    }
    return result + line;
}

std::size_t linesIn(std::string const& text) {
    return 1 + static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
}

// The list of a line's last bracket of that kind.
std::optional<Bracketed> lastBracket(std::string const& line, char open, char close) {
    std::size_t const end = line.rfind(close);
    if (end == std::string::npos) return std::nullopt;
    int depth = 0;
    for (std::size_t at = end + 1; at-- > 0;) {
        if (line[at] == close) ++depth;
        if (line[at] == open) --depth;
        if (depth == 0) {
            return Bracketed{line.substr(0, at + 1), partsOf(line.substr(at + 1, end - at - 1)),
                             line.substr(end)};
        }
    }
    return std::nullopt;
}

// Where a function's name begins in what stands in front of its parameters.
std::size_t nameStart(std::string const& before) {
    int depth = 0;
    for (std::size_t at = before.size(); at-- > 0;) {
        if (closes(before[at])) ++depth;
        if (opens(before[at])) --depth;
        if (before[at] == ' ' && depth < 0) return at + 1;
    }
    return 0;
}

// The head of a function whose parameters give no place to break: in front of `const`, or in front
// of its name.
std::string breakBeforeName(std::string const& line, Bracketed const& list) {
    std::size_t const indentation = indentationOf(line);
    std::size_t const isConst = list.after.find(" const");
    bool const mayTrail = isConst != std::string::npos && list.parts.empty();
    if (mayTrail && list.before.size() + isConst <= longestLine) {
        return list.before + list.after.substr(0, isConst) + "\n" +
               blanks(indentation + continuation) + list.after.substr(isConst + 1);
    }
    std::size_t const name = nameStart(list.before);
    if (name <= indentation) return line;
    std::size_t const scope = line.rfind("::", list.before.size());
    bool const isShort = startsWith(line, "void ") || startsWith(line, "bool ");
    if (isShort && scope != std::string::npos && scope > name) {
        return line.substr(0, scope + 2) + "\n" +
               breakLine(blanks(indentation + continuation) + line.substr(scope + 2));
    }
    return line.substr(0, name - 1) + "\n" + breakLine(blanks(indentation) + line.substr(name));
}

// The head of a function, or a call.
std::string breakCall(std::string const& line) {
    std::size_t const indentation = indentationOf(line);
    std::optional<Bracketed> const list = lastBracket(line, '(', ')');
    if (!list) return line;
    if (list->parts.empty()) return breakBeforeName(line, *list);
    std::optional<std::string> const aligned = packed(list->before, list->before.size(), *list);
    if (aligned && linesIn(*aligned) > 1) return *aligned;
    if (list->before.size() <= longestLine) {
        std::string const start = blanks(indentation + continuation);
        std::optional<std::string> const below = packed(start, start.size(), *list);
        if (below) return list->before + "\n" + *below;
    }
    return breakBeforeName(line, *list);
}

// using X = T<...>;
std::string breakAlias(std::string const& line) {
    std::size_t const indentation = indentationOf(line);
    std::optional<Bracketed> const list = lastBracket(line, '<', '>');
    std::size_t const equals = line.find(" = ");
    if (!list || equals == std::string::npos) return line;
    std::optional<std::string> const beside = packed(list->before, list->before.size(), *list);
    std::string const start = blanks(indentation + continuation) + list->before.substr(equals + 3);
    std::optional<std::string> const below = packed(start, start.size(), *list);
    std::string const inside = blanks(indentation + continuation);
    std::optional<std::string> const within = packed(inside, inside.size(), *list);
    bool const isBelow = below && (!beside || linesIn(*below) + 1 <= linesIn(*beside));
    bool const isWithin = within && (!isBelow || linesIn(*within) + 2 <= linesIn(*below));
    if (isBelow && !isWithin) return line.substr(0, equals + 2) + "\n" + *below;
    if (beside && !isBelow) return *beside;
    return isWithin ? list->before + "\n" + *within : line;
}

// T X{...};
std::string breakBraces(std::string const& line) {
    std::optional<Bracketed> const list = lastBracket(line, '{', '}');
    if (!list) return line;
    std::optional<std::string> const aligned = packed(list->before, list->before.size(), *list);
    if (aligned) return *aligned;
    std::string const start = blanks(indentationOf(line) + continuation);
    if (list->before.size() > longestLine) {
        std::size_t const name = list->before.rfind(' ');
        return line.substr(0, name) + "\n" + start + list->before.substr(name + 1) + "\n" +
               packed(start + blanks(continuation), 2 * continuation, *list).value_or(line);
    }
    return list->before + "\n" + packed(start, start.size(), *list).value_or(line);
}

// struct X : Base<...> {
std::string breakClassHead(std::string const& line) {
    std::size_t const colon = line.find(" : ");
    std::string const rest = blanks(indentationOf(line) + continuation) + line.substr(colon + 1);
    std::string const first = line.substr(0, colon) + "\n";
    if (rest.size() <= longestLine) return first + rest;
    std::optional<Bracketed> const list = lastBracket(rest, '<', '>');
    if (!list) return first + rest;
    return first + packed(list->before, list->before.size(), *list).value_or(rest);
}

// X::X(...) : a_(a), b_(b) {
std::string breakConstructor(std::string const& line, std::size_t colon) {
    std::string const indentation = blanks(indentationOf(line) + continuation);
    std::string const first = breakLine(line.substr(0, colon)) + "\n";
    std::string const rest = indentation + line.substr(colon + 1);
    if (rest.size() <= longestLine) return first + rest;
    std::string result = first + indentation + ": ";
    std::vector<std::string> const parts =
        partsOf(line.substr(colon + 3, line.rfind(" {") - colon - 3));
    for (std::size_t i = 0; i < parts.size(); ++i) {
        result += (i == 0 ? "" : ",\n" + indentation + "  ") + parts[i];
    }
    return result + line.substr(line.rfind(" {"));
}

std::string breakAt(std::string const& line, std::size_t at, std::size_t indentation) {
    return line.substr(0, at) + "\n" + breakLine(blanks(indentation) + line.substr(at + 1));
}

// Where an initializer list begins; npos if there is none.
std::size_t initializerColon(std::string const& line) {
    for (std::string_view const mark : {") : ", ") noexcept : "}) {
        std::size_t const at = line.find(mark);
        if (at != std::string::npos) return at + mark.size() - 3;
    }
    return std::string::npos;
}

}  // namespace

std::string breakLine(std::string const& line) {
    if (line.size() <= longestLine || startsWith(line, "//") || startsWith(line, "#")) return line;
    bool const isHead = startsWith(line, "struct ") || startsWith(line, "class ");
    if (isHead && line.find(" : ") != std::string::npos) return breakClassHead(line);
    if (startsWith(line, "using ")) return breakAlias(line);
    std::size_t const colon = initializerColon(line);
    if (colon != std::string::npos) return breakConstructor(line, colon);
    std::size_t const less = line.find(" < ");
    if (startsWith(line, "return ") && less != std::string::npos) {
        std::string const right = blanks(indentationOf(line) + 7) + line.substr(less + 3);
        std::string const left = line.substr(0, less + 2);
        return (left.size() > longestLine ? breakCall(left) : left) + "\n" + breakLine(right);
    }
    if (line.ends_with("};")) return breakBraces(line);
    std::size_t const equals = line.find(" = ");
    if (equals != std::string::npos)
        return breakAt(line, equals + 2, indentationOf(line) + continuation);
    if (line.find('(') != std::string::npos) return breakCall(line);
    std::size_t const name = line.rfind(' ');
    if (name <= indentationOf(line)) return line;
    return line.substr(0, name) + "\n" + blanks(indentationOf(line) + continuation) +
           line.substr(name + 1);
}

}  // namespace Modelc
