#include <modelc/check/ReservedNames.h>

#include <algorithm>
#include <array>

namespace Modelc {
namespace {

// Sorted.
constexpr std::array<std::string_view, 92> cxxKeywords{
    "alignas",       "alignof",     "and",
    "and_eq",        "asm",         "auto",
    "bitand",        "bitor",       "bool",
    "break",         "case",        "catch",
    "char",          "char16_t",    "char32_t",
    "char8_t",       "class",       "co_await",
    "co_return",     "co_yield",    "compl",
    "concept",       "const",       "const_cast",
    "consteval",     "constexpr",   "constinit",
    "continue",      "decltype",    "default",
    "delete",        "do",          "double",
    "dynamic_cast",  "else",        "enum",
    "explicit",      "export",      "extern",
    "false",         "float",       "for",
    "friend",        "goto",        "if",
    "inline",        "int",         "long",
    "mutable",       "namespace",   "new",
    "noexcept",      "not",         "not_eq",
    "nullptr",       "operator",    "or",
    "or_eq",         "private",     "protected",
    "public",        "register",    "reinterpret_cast",
    "requires",      "return",      "short",
    "signed",        "sizeof",      "static",
    "static_assert", "static_cast", "struct",
    "switch",        "template",    "this",
    "thread_local",  "throw",       "true",
    "try",           "typedef",     "typeid",
    "typename",      "union",       "unsigned",
    "using",         "virtual",     "void",
    "volatile",      "wchar_t",     "while",
    "xor",           "xor_eq",
};

// Sorted.
constexpr std::array<std::string_view, 39> entityMembers{
    "Notifiee",
    "NotifieeConst",
    "Ptr",
    "PtrConst",
    "actsm",
    "attribute",
    "attributeString",
    "auditErrors",
    "collectionNotification",
    "default",
    "fullName",
    "genericIf",
    "handleParent",
    "handleZeroRef",
    "hasNotificationActive",
    "hasNotificationActiveIs",
    "isNondestructing",
    "isNondestructingIs",
    "name",
    "newEntity",
    "notification",
    "notificationException",
    "notifiee",
    "notifieeConst",
    "notifier",
    "notifierIs",
    "notifierList",
    "notifiers",
    "parent",
    "parentAttr",
    "parentAttrId",
    "parentAttrIdIs",
    "parentIs",
    "rawEntity",
    "references",
    "uriPath",
    "version",
    "zeroReferences",
    "zeroReferencesIs",
};

constexpr std::array<std::string_view, 2> valueMembers{"genericIf", "operator"};

template <std::size_t size>
bool holds(std::array<std::string_view, size> const& sorted, std::string_view name) {
    return std::binary_search(sorted.begin(), sorted.end(), name);
}

}  // namespace

static_assert(std::is_sorted(cxxKeywords.begin(), cxxKeywords.end()));
static_assert(std::is_sorted(entityMembers.begin(), entityMembers.end()));

bool isCxxKeyword(std::string_view name) { return holds(cxxKeywords, name); }
bool isEntityMember(std::string_view name) { return holds(entityMembers, name); }
bool isValueMember(std::string_view name) { return holds(valueMembers, name); }

bool hasReservedPrefix(std::string_view name) {
    return name.starts_with("qor") || name.starts_with("Qor") || name.starts_with("fwk") ||
           name.starts_with("_") || name.find("__") != std::string_view::npos;
}

}  // namespace Modelc
