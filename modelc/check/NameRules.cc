#include <modelc/check/NameRules.h>

#include <modelc/check/ReservedNames.h>

namespace Modelc {
namespace {

bool isUpper(char c) { return c >= 'A' && c <= 'Z'; }
bool isLower(char c) { return c >= 'a' && c <= 'z'; }

bool checkFree(Context const& context, Tree::Word const& name) {
    if (isCxxKeyword(name.text)) {
        context.report(name.at, quoted(name.text) + " is a word of C++", "another name");
        return false;
    }
    if (hasReservedPrefix(name.text)) {
        context.report(name.at, quoted(name.text) + " is reserved for the framework",
                       "a name that begins with none of qor, Qor, fwk and _ and has no __");
        return false;
    }
    return true;
}

bool checkLower(Context const& context, Tree::Word const& name) {
    if (!checkFree(context, name)) return false;
    if (isLower(name.text[0])) return true;
    context.report(name.at, quoted(name.text) + " does not begin with a small letter",
                   "a name in lowerCamelCase");
    return false;
}

bool refuseMember(Context const& context, Tree::Word const& name) {
    context.report(name.at, quoted(name.text) + " is a member that the framework gives every class",
                   "another name");
    return false;
}

}  // namespace

bool checkClassName(Context const& context, Tree::Word const& name) {
    if (!checkFree(context, name)) return false;
    if (isUpper(name.text[0])) return true;
    context.report(name.at, quoted(name.text) + " does not begin with a capital",
                   "a name in UpperCamelCase");
    return false;
}

bool checkEnumeratorName(Context const& context, Tree::Word const& name) {
    return checkLower(context, name);
}

bool checkValueMemberName(Context const& context, Tree::Word const& name) {
    if (isValueMember(name.text)) return refuseMember(context, name);
    return checkLower(context, name);
}

bool checkEntityMemberName(Context const& context, Tree::Word const& name) {
    if (isEntityMember(name.text)) return refuseMember(context, name);
    return checkLower(context, name);
}

bool checkArgumentName(Context const& context, Tree::Word const& name) {
    return checkLower(context, name);
}

}  // namespace Modelc
