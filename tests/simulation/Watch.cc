#include "Watch.h"

#include <algorithm>
#include <utility>

namespace Sim {

bool isWhole(std::string const& text) {
    if (!text.starts_with('#')) return true;
    auto const dot = text.find('.');
    if (dot == std::string::npos) return false;
    char const letter = static_cast<char>('a' + numberIn(text) % 26);
    return text.find_first_not_of(letter, dot + 1) == std::string::npos;
}

std::string Watch::gone(std::string const& path, char const* how, Plan const& plan) {
    auto const removals = plan.removals.find(path);
    unsigned const allowed = removals == plan.removals.end() ? 0 : removals->second;
    if (++goings_[path] <= allowed) return {};
    return path + how;
}

// What stood as one of a class above, since its own was not known, and is of that now: all that it
// has comes anew.
void Watch::noteClass(std::string const& path, Row const& row) {
    if (!Cast::hasLate()) return;
    std::string const before = std::exchange(titles_[path], row.shape->title(*row.entity));
    bool const wasBase = before == "Late::Star" && titles_[path] == "Late::Nova";
    if (!wasBase) return;
    auto const isBelow = [&](std::string const& line) { return line.starts_with(path + "/"); };
    auto const isIt = [&](auto const& one) { return one.first == path || isBelow(one.first); };
    std::erase_if(entities_, isIt);
    std::erase_if(held_, isIt);
    std::erase_if(numbers_, isIt);
    std::erase_if(lines_, isBelow);
}

std::string Watch::lookAtRow(std::string const& path, Row const& row, Plan const& plan) {
    auto const before = entities_.find(path);
    bool const isOther = before != entities_.end() && before->second != row.entity.ptr();
    entities_[path] = row.entity.ptr();
    if (holdsEntities_) held_[path] = row.entity;
    return isOther ? gone(path, " is another entity, and the source's is the same", plan)
                   : std::string();
}

std::string Watch::look(Picture const& now, Plan const& plan) {
    std::string found;
    auto const note = [&](std::string violation) {
        if (found.empty()) found = std::move(violation);
    };
    auto const isSources = [](std::string const& path) {
        unsigned const owner = ownerOf(path);
        return owner == shared || owner == 0;
    };
    for (auto const& [path, row] : now.rows) noteClass(path, row);
    std::erase_if(entities_, [&](auto const& before) {
        if (now.rows.contains(before.first)) return false;
        note(gone(before.first, " has gone, and the source has it", plan));
        held_.erase(before.first);
        return true;
    });
    for (auto const& [path, row] : now.rows) {
        if (isSources(path)) note(lookAtRow(path, row, plan));
    }
    note(lookAtLines(now.lines, plan));
    return found;
}

// Of what the source's author writes.
std::string Watch::lookAtLines(Lines const& lines, Plan const& plan) {
    std::string found;
    auto const note = [&](std::string violation) {
        if (found.empty()) found = std::move(violation);
    };
    std::erase_if(lines_, [&](std::string const& line) {
        if (lines.contains(line)) return false;
        note(gone(line, " has gone, and the source has it", plan));
        return true;
    });
    for (auto const& [line, text] : lines) {
        if (!isWhole(text)) note(line + " is no text that was written: " + text.substr(0, 40));
        auto const author = plan.authors.find(line);
        if (author == plan.authors.end() || author->second != 0) continue;
        // A reference that comes to mean what the copy does not know yet goes until it does.
        bool const isReference = text.starts_with("-> ");
        if (!entities_.contains(line) && !isReference) lines_.insert(line);
        if (isReference) lines_.erase(line);
        std::uint64_t const number = numberIn(text);
        if (number == 0) continue;
        if (number < numbers_[line]) note(line + " has gone back to " + text.substr(0, 40));
        numbers_[line] = number;
    }
    return found;
}

}  // namespace Sim
