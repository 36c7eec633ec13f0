#include <qor/tree/EntityPath.h>

#include <string>

#include <qor/core/Format.h>

namespace Qor {

namespace {

constexpr char const* nullWord = "null";

Ptr<Dir>& theRoot() {
    static Ptr<Dir>& root = *new Ptr<Dir>;  // never destroyed: entities may be used until the end
    return root;
}

int hexDigit(char c) {
    if (c >= '0' && c <= '9') {
        return c - '0';
    }
    if (c >= 'A' && c <= 'F') {
        return c - 'A' + 10;
    }
    return c >= 'a' && c <= 'f' ? c - 'a' + 10 : -1;
}

[[noreturn]] void refusePath(char const* expected, std::size_t column, String8 const& path) {
    throwRangeException(format("path %s: expected %s at column %lld", valueToStrep(path).charPtr(),
                               expected, static_cast<long long>(column)));
}

// The byte that the escape at `column` stands for.
char unescaped(String8 const& path, std::size_t column) {
    std::string_view const text = path.view();
    int const high = column + 1 < text.size() ? hexDigit(text[column + 1]) : -1;
    int const low = column + 2 < text.size() ? hexDigit(text[column + 2]) : -1;
    if (high < 0 || low < 0) {
        refusePath("two hexadecimal digits behind %", column, path);
    }
    return static_cast<char>(high * 16 + low);
}

}  // namespace

void rootDirIs(Ptr<Dir> const& root) { theRoot() = root; }

Ptr<Dir> rootDir() { return theRoot(); }

std::vector<String8> pathElements(String8 const& path) {
    std::string_view const text = path.view();
    if (text.empty() || text[0] != '/') {
        refusePath("a slash", 0, path);
    }
    std::vector<String8> out;
    std::string element;
    for (std::size_t at = 1; at <= text.size(); ++at) {
        if (at == text.size() || text[at] == '/') {
            out.emplace_back(std::string_view(element));
            element.clear();
        } else if (text[at] == '%') {
            element += unescaped(path, at);
            at += 2;
        } else {
            element += text[at];
        }
    }
    return out;
}

Ptr<Entity> entityAt(String8 const& path) {
    std::vector<String8> const elements = pathElements(path);
    Ptr<Entity> at = rootDir();
    if (!at || elements[0] != String8(at->qorName())) {
        return nullptr;
    }
    for (std::size_t i = 1; at && i < elements.size();) {
        std::size_t used = 0;
        at = at->qorPathStep(&elements[i], elements.size() - i, &used);
        i += used;
    }
    return at;
}

String8 valueToStrepOfRawPtr(Entity const* entity) {
    return entity ? valueToStrep(entity->uriPath()) : String8(nullWord);
}

Ptr<Entity> sequenceToValueOfPtr(String8::IteratorConst& position,
                                 String8::IteratorConst const& end) {
    skipBlanks(position, end);
    if (position != end && *position == *nullWord) {
        needString(position, end, nullWord);
        return nullptr;
    }
    String8 const path = sequenceToValue(position, end, static_cast<String8*>(nullptr));
    Ptr<Entity> entity = entityAt(path);
    if (!entity) {
        throwRangeException(String8("no entity at ") + valueToStrep(path));
    }
    return entity;
}

}  // namespace Qor
