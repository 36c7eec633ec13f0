#include <modelc/syntax/Diagnostics.h>

#include <algorithm>
#include <tuple>
#include <utility>

namespace Modelc {
namespace {

std::string line(std::string const& file, Diagnostic const& d) {
    return file + ":" + std::to_string(d.place.at.line) + ":" + std::to_string(d.place.at.column) +
           ": error: " + d.what + "; expected " + d.expected;
}

bool before(Diagnostic const& a, Diagnostic const& b) {
    return std::tie(a.place, a.what, a.expected) < std::tie(b.place, b.what, b.expected);
}

}  // namespace

std::uint32_t Diagnostics::fileIs(std::string name) {
    files_.push_back(std::move(name));
    return static_cast<std::uint32_t>(files_.size() - 1);
}

void Diagnostics::report(Place place, std::string what, std::string expected) {
    if (cut_) return;
    if (found_.size() == most) {
        cut_ = true;
        what = "too many errors";
        expected = "at most " + std::to_string(most);
    }
    found_.push_back({place, std::move(what), std::move(expected)});
}

std::vector<std::string> Diagnostics::lines() const {
    std::vector<Diagnostic> sorted = found_;
    auto const cut = sorted.end() - (cut_ ? 1 : 0);
    std::sort(sorted.begin(), cut, before);
    std::vector<std::string> result;
    for (Diagnostic const& d : sorted) {
        std::string text = line(files_.at(d.place.file), d);
        if (result.empty() || result.back() != text) result.push_back(std::move(text));
    }
    return result;
}

std::string quoted(std::string_view text) {
    constexpr std::size_t longest = 40;
    constexpr char digits[] = "0123456789abcdef";
    std::string result = "'";
    for (char const c : text.substr(0, longest)) {
        auto const byte = static_cast<unsigned char>(c);
        if (byte >= 0x20 && byte < 0x7f) {
            result += c;
        } else {
            result += "\\x";
            result += digits[byte >> 4];
            result += digits[byte & 15];
        }
    }
    if (text.size() > longest) result += "...";
    return result + "'";
}

}  // namespace Modelc
