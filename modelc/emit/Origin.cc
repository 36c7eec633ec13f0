#include <modelc/emit/Origin.h>

#include <modelc/emit/DocText.h>

namespace Modelc {
namespace {

// The file's name alone: the same on every machine.
std::string fileName(std::string const& path) {
    std::size_t const at = path.find_last_of("/\\");
    return at == std::string::npos ? path : path.substr(at + 1);
}

}  // namespace

std::string originText(Unit const& unit, std::vector<std::string> const& byHand) {
    std::string text = "Made by modelc from " + fileName(unit.file) + "; changes belong there.";
    if (!byHand.empty()) text += " By hand:";
    for (std::size_t i = 0; i < byHand.size(); ++i) text += (i == 0 ? " " : ", ") + byHand[i];
    if (!byHand.empty() && !unit.operationsFolder.empty())
        text += " (in " + unit.operationsFolder + ")";
    if (!byHand.empty()) text += ".";
    return commentText({text}, 0, "//");
}

}  // namespace Modelc
