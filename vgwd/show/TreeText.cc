#include <vgwd/show/TreeText.h>

namespace Vgwd {
namespace {

constexpr std::size_t indent = 2;

bool isControl(char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; }

// Texts between quotes, so that an empty one and one of blanks are seen; on one line.
std::string shown(Cell const& cell) {
    if (cell.isNumber) return cell.text;
    std::string text = "\"";
    for (char const c : cell.text) {
        if (c == '"' || c == '\\') text += '\\';
        text += isControl(c) ? ' ' : c;
    }
    return text + "\"";
}

}  // namespace

void TreeText::begin(std::string_view name) { open_.emplace_back(name); }

void TreeText::end() { open_.pop_back(); }

void TreeText::value(std::string_view name, Cell const& cell) {
    if (cell.text.empty()) return;
    line(name, " = " + shown(cell));
}

void TreeText::list(std::string_view name, std::vector<Cell> const& cells) {
    if (cells.empty()) return;
    std::string text = " = {";
    for (Cell const& cell : cells) text += (text.size() > 4 ? ", " : "") + shown(cell);
    line(name, text + "}");
}

void TreeText::pairs(std::string_view name, std::vector<CellPair> const& pairs) {
    if (pairs.empty()) return;
    std::string text = " = {";
    for (auto const& [first, second] : pairs)
        text += (text.size() > 4 ? ", " : "") + shown(first) + ": " + shown(second);
    line(name, text + "}");
}

void TreeText::line(std::string_view name, std::string_view rest) {
    for (std::size_t depth = 0; depth < open_.size(); ++depth) {
        if (open_[depth].empty()) continue;
        text_.append(indent * depth, ' ');
        text_ += open_[depth] + "\n";
        open_[depth].clear();
    }
    text_.append(indent * open_.size(), ' ');
    text_ += name;
    text_ += rest;
    text_ += '\n';
}

}  // namespace Vgwd
