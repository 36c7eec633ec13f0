#include <modelc/emit/Layout.h>

#include <algorithm>
#include <string_view>
#include <vector>

#include <modelc/emit/LineBreaker.h>

namespace Modelc {
namespace {

std::vector<std::string> linesOf(std::string const& text) {
    std::vector<std::string> lines;
    for (std::size_t at = 0; at < text.size();) {
        std::size_t const end = std::min(text.find('\n', at), text.size());
        std::string line = text.substr(at, end - at);
        line.erase(line.find_last_not_of(' ') + 1);
        lines.push_back(std::move(line));
        at = end + 1;
    }
    return lines;
}

std::string_view trimmed(std::string const& line) {
    return std::string_view(line).substr(std::min(line.find_first_not_of(' '), line.size()));
}

bool isFunctionHead(std::string const& line) {
    for (std::string_view const word : {"struct ", "class ", "enum ", "namespace ", "//"}) {
        if (trimmed(line).starts_with(word)) return false;
    }
    return line.ends_with(" {") && line.find('(') != std::string::npos;
}

bool opensBlock(std::string const& line) {
    bool const isAccess =
        line.ends_with("public:") || line.ends_with("protected:") || line.ends_with("private:");
    return isAccess || (line.ends_with("{") && !trimmed(line).starts_with("namespace"));
}

bool closesBlock(std::string const& line) { return trimmed(line) == "}" || trimmed(line) == "};"; }

// Single empty lines between things, none at the edges of blocks.
std::vector<std::string> tidied(std::vector<std::string> const& lines) {
    std::vector<std::string> result;
    for (std::string const& line : lines) {
        bool const isAtEdge = result.empty() || result.back().empty() || opensBlock(result.back());
        if (line.empty() && isAtEdge) continue;
        if (closesBlock(line) && !result.empty() && result.back().empty()) result.pop_back();
        result.push_back(line);
    }
    while (!result.empty() && result.back().empty()) result.pop_back();
    return result;
}

// `HEAD { STATEMENT }` on one line comes apart if it is too long.
bool splitShort(std::string const& line, std::vector<std::string>& result) {
    std::size_t const open = line.find(" { ");
    bool const isShort = line.ends_with(" }") && open != std::string::npos;
    if (!isShort || line.size() <= longestLine) return false;
    std::string const indentation = line.substr(0, line.size() - trimmed(line).size());
    std::string const statement = line.substr(open + 3, line.size() - open - 5);
    result.push_back(breakLine(line.substr(0, open + 2)));
    result.push_back(breakLine(indentation + "    " + statement));
    result.push_back(indentation + "}");
    return true;
}

// The lines of the function that begins at `at`, joined if they fit; 0 if no function short enough
// begins there.
std::size_t joinShort(std::vector<std::string> const& lines, std::size_t at,
                      std::vector<std::string>& result) {
    if (!isFunctionHead(lines[at])) return 0;
    bool const isEmpty = at + 1 < lines.size() && trimmed(lines[at + 1]) == "}";
    if (isEmpty) {
        result.push_back(breakLine(lines[at] + "}"));
        return 2;
    }
    bool const isSingle = at + 2 < lines.size() && trimmed(lines[at + 2]) == "}";
    if (!isSingle) return 0;
    std::string const joined = lines[at] + " " + std::string(trimmed(lines[at + 1])) + " }";
    if (joined.size() > longestLine) return 0;
    result.push_back(joined);
    return 3;
}

}  // namespace

std::string layout(std::string const& text) {
    std::vector<std::string> const lines = tidied(linesOf(text));
    std::vector<std::string> laid;
    bool isLeftAlone = false;
    for (std::size_t at = 0; at < lines.size();) {
        if (trimmed(lines[at]).starts_with("// clang-format ")) {
            isLeftAlone = lines[at].ends_with("off");
        }
        if (isLeftAlone) {
            laid.push_back(lines[at++]);
            continue;
        }
        if (std::size_t const joined = joinShort(lines, at, laid)) {
            at += joined;
            continue;
        }
        if (!splitShort(lines[at], laid)) laid.push_back(breakLine(lines[at]));
        ++at;
    }
    std::string result;
    for (std::string const& line : laid) result += line + "\n";
    return result;
}

}  // namespace Modelc
