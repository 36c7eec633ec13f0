#include <modelc/check/Spelling.h>

#include <utility>

namespace Modelc {
namespace {

bool isLower(char c) { return c >= 'a' && c <= 'z'; }
bool isUpper(char c) { return c >= 'A' && c <= 'Z'; }
bool isDigit(char c) { return c >= '0' && c <= '9'; }
char toUpper(char c) { return isLower(c) ? static_cast<char>(c - 'a' + 'A') : c; }
char toLower(char c) { return isUpper(c) ? static_cast<char>(c - 'A' + 'a') : c; }

}  // namespace

Spelling::Spelling(std::string name) : name_(std::move(name)), upper_(name_) {
    if (!upper_.empty()) upper_[0] = toUpper(upper_[0]);
}

std::vector<std::string> Spelling::scalarAccessors() const { return {setter()}; }

std::vector<std::string> Spelling::childAccessors() const {
    return {setter(), builder(), remover()};
}

std::vector<std::string> Spelling::keyedAccessors() const {
    return {setter(),
            builder(),
            remover(),
            allRemover(),
            notifier(),
            memberReader(),
            iterator(),
            iteratorConst(),
            memberIterator(),
            count(),
            memberClass(),
            iteratorClass(),
            iteratorConstClass(),
            memberIteratorClass()};
}

std::string lowerFirst(std::string name) {
    if (!name.empty()) name[0] = toLower(name[0]);
    return name;
}

std::string includeGuard(std::string const& header) {
    std::string result;
    for (std::size_t i = 0; i < header.size(); ++i) {
        char const c = header[i];
        char const before = i == 0 ? '/' : header[i - 1];
        bool const beginsWord = isUpper(c) && (isLower(before) || isDigit(before));
        if (beginsWord) result += '_';
        result += isLower(c) || isUpper(c) || isDigit(c) ? toUpper(c) : '_';
    }
    return result;
}

}  // namespace Modelc
