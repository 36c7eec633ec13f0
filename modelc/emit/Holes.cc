#include <modelc/emit/Holes.h>

#include <stdexcept>

namespace Modelc {
namespace {

std::string const& valueOf(std::string_view name, Holes const& holes) {
    auto const found = holes.find(name);
    if (found == holes.end()) throw std::logic_error("unknown hole " + std::string(name));
    return found->second;
}

std::string fillInPlace(std::string_view line, Holes const& holes) {
    std::string result;
    for (;;) {
        std::size_t const open = line.find('$');
        result += line.substr(0, open);
        if (open == std::string_view::npos) return result;
        std::size_t const close = line.find('$', open + 1);
        if (close == std::string_view::npos) throw std::logic_error("a hole without an end");
        result += valueOf(line.substr(open + 1, close - open - 1), holes);
        line.remove_prefix(close + 1);
    }
}

bool isHoleAlone(std::string_view line) {
    return line.size() > 2 && line.front() == '$' && line.find('$', 1) == line.size() - 1;
}

void append(std::string& result, std::string_view indentation, std::string_view lines) {
    while (!lines.empty()) {
        std::size_t const end = lines.find('\n');
        std::string_view const line = lines.substr(0, end);
        if (!line.empty()) result += indentation;
        result += line;
        result += '\n';
        lines.remove_prefix(end == std::string_view::npos ? lines.size() : end + 1);
    }
}

void fillLine(std::string& result, std::string_view line, Holes const& holes) {
    std::size_t const first = line.find_first_not_of(' ');
    std::string_view const indentation = line.substr(0, first);
    std::string_view const rest = first == std::string_view::npos ? "" : line.substr(first);
    if (isHoleAlone(rest)) {
        append(result, indentation, valueOf(rest.substr(1, rest.size() - 2), holes));
    } else {
        result += fillInPlace(line, holes) + '\n';
    }
}

}  // namespace

std::string fill(std::string_view text, Holes const& holes) {
    std::string result;
    if (text.starts_with('\n')) text.remove_prefix(1);
    while (!text.empty()) {
        std::size_t const end = text.find('\n');
        fillLine(result, text.substr(0, end), holes);
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    }
    return result;
}

Holes with(Holes holes, Holes const& more) {
    for (auto const& [name, value] : more) holes[name] = value;
    return holes;
}

}  // namespace Modelc
