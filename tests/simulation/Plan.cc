#include "Plan.h"

#include <cstdio>

namespace Sim {

// A path is /field/name/field/name...: every second element is a name.
unsigned ownerOf(std::string const& row) {
    bool isName = false;
    for (std::size_t at = row.find('/'); at != std::string::npos; at = row.find('/', at + 1)) {
        if (isName && at + 1 < row.size() && row[at + 1] != 's') {
            return static_cast<unsigned>(row[at + 1] - 'a');
        }
        isName = !isName;
    }
    return shared;
}

void Plan::set(std::string const& line, std::string text, unsigned author) {
    trace(author, line + " = " + text.substr(0, 40));
    lines[line] = std::move(text);
    authors[line] = author;
}

void Plan::trace(unsigned author, std::string const& what) const {
    if (isTraced) std::printf("author %u: %s\n", author, what.c_str());
}

void Plan::eraseRow(std::string const& row) {
    for (auto at = lines.lower_bound(row); at != lines.end() && at->first.starts_with(row);) {
        bool const isBelow = at->first.size() == row.size() || at->first[row.size()] == '/';
        at = isBelow ? lines.erase(at) : std::next(at);
    }
}

void Plan::adopt(Lines const& source) {
    auto const isForeign = [this](std::string const& line) {
        auto const found = authors.find(line);
        return found != authors.end() && found->second != 0;
    };
    std::erase_if(lines, [&](auto const& line) { return isForeign(line.first); });
    for (auto const& [line, text] : source) {
        if (isForeign(line)) lines[line] = text;
    }
}

}  // namespace Sim
