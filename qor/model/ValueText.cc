#include <qor/model/ValueText.h>

namespace Qor {

void needValueHead(String8::IteratorConst& position, String8::IteratorConst const& end,
                   char const* typeName) {
    needString(position, end, " Value");
    needString(position, end, " (");
    needString(position, end, (String8(" '") + typeName + "'").charPtr());
    needString(position, end, " ,");
    needString(position, end, " **");
    needString(position, end, " {");
}

bool nextFieldName(String8::IteratorConst& position, String8::IteratorConst const& end,
                   char const* shortName, bool first, String8& name) {
    needString(position, end, " ");
    if (position == end) {
        throwRangeException(String8("premature end of value type ") + shortName);
    }
    if (*position == '}') {
        needString(position, end, "} ");
        needString(position, end, ") ");
        return false;
    }
    if (!first) {
        needString(position, end, ", ");
    }
    name = sequenceToValue(position, end, static_cast<String8*>(nullptr));
    needString(position, end, " : ");
    return true;
}

void throwNoSuchField(char const* shortName, String8 const& name) {
    throwRangeException(String8(shortName) + " has no such attribute: " + name);
}

}  // namespace Qor
