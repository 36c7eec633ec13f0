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

void Plan::cutAt(Lines const& source) {
    for (auto const& [line, author] : authors) {
        auto const wanted = lines.find(line);
        auto const there = source.find(line);
        bool const isWanted = wanted != lines.end();
        bool const isThere = there != source.end();
        bool const isSame = isWanted == isThere && (!isWanted || wanted->second == there->second);
        if (author != 0 && !isSame) unsure.insert(line);
    }
}

void Plan::unmountedAt(Lines const& source, bool isSomethingOnItsWay) {
    if (!isSomethingOnItsWay) return cutAt(source);
    for (auto const& [line, author] : authors) {
        if (author != 0) unsure.insert(line);
    }
}

// A row that may have got lost takes all below with it. A reference goes with its target.
bool Plan::isSure(std::string const& line) const {
    auto const found = lines.find(line);
    if (found != lines.end() && found->second.starts_with("-> ")) return false;
    if (!authors.contains(line) || references.contains(line)) return false;
    for (std::size_t at = line.find('/', 1); at != std::string::npos; at = line.find('/', at + 1)) {
        if (unsure.contains(line.substr(0, at))) return false;
    }
    return !unsure.contains(line);
}

void Plan::adopt(Lines const& source) {
    auto const isOpen = [this](std::string const& line) {
        auto const found = authors.find(line);
        return found != authors.end() && found->second != 0 && !isSure(line);
    };
    std::vector<std::string> open;
    for (auto const& [line, author] : authors) {
        if (isOpen(line)) open.push_back(line);
    }
    for (auto const& line : open) lines.erase(line);
    for (auto const& line : open) {
        if (auto const found = source.find(line); found != source.end())
            lines[line] = found->second;
    }
}

Lines Plan::sureOf(Lines const& all) const {
    Lines result;
    for (auto const& [line, text] : all) {
        if (ownerOf(line) != shared && isSure(line)) result[line] = text;
    }
    return result;
}

}  // namespace Sim
