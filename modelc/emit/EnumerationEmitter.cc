#include <modelc/emit/EnumerationEmitter.h>

#include <algorithm>

#include <modelc/check/Spelling.h>
#include <modelc/emit/DocText.h>
#include <modelc/emit/Includes.h>
#include <modelc/emit/Origin.h>

namespace Modelc {

EnumerationEmitter::EnumerationEmitter(Enumeration const& enumeration) : enumeration_(enumeration) {
    Unit const& unit = *enumeration.unit;
    Includes includes;
    for (char const* header : {"array", "iosfwd", "qor/model/EnumText.h"}) includes.add(header);
    includes.add(unit.exportHeader);
    std::string const raises = " Raises Qor::RangeException \"" + enumeration.name + "\".";
    holes_ = {
        {"origin", originText(unit, {})},
        {"guard", includeGuard(enumeration.type->header)},
        {"header", enumeration.type->header},
        {"includes", includes.text()},
        {"namespace", unit.nameSpace},
        {"export", unit.exportMacro.empty() ? "" : unit.exportMacro + " "},
        {"doc", docText(enumeration.doc, 0)},
        {"Enum", enumeration.name},
        {"FullEnum", enumeration.type->fullName},
        {"nameDoc", docText({"The enumerator's name; " + enumeration.name +
                             "(N) for a number N outside the table."},
                            0)},
        {"numberDoc", docText({"The enumerator with that number." + raises}, 0)},
        {"textDoc", docText({"The enumerator of that name, byte for byte." + raises}, 0)},
        {"enumerators", enumerators()},
        {"count", std::to_string(enumeration.enumerators.size())},
        {"names", names()},
    };
}

std::string EnumerationEmitter::enumerators() const {
    std::string result;
    for (Enumerator const& one : enumeration_.enumerators) {
        result += docText(one.doc, 4) + one.name + " = " + std::to_string(one.number) + ",\n";
    }
    return result;
}

// Each name on a line of its own, with its number behind it, all numbers in one column.
std::string EnumerationEmitter::names() const {
    std::size_t longest = 0;
    for (Enumerator const& one : enumeration_.enumerators)
        longest = std::max(longest, one.name.size());
    std::string result;
    for (Enumerator const& one : enumeration_.enumerators) {
        std::string const padding(longest - one.name.size() + 2, ' ');
        result += "\"" + one.name + "\"," + padding + "// " + std::to_string(one.number) + "\n";
    }
    return result;
}

std::string EnumerationEmitter::header() const {
    return fill(R"(
$origin$
#ifndef $guard$
#define $guard$

$includes$

namespace $namespace$ {

$doc$
enum $Enum$ : Qor::U32 {
    $enumerators$
};

/// The run-time record of this type; never null.
$export$Qor::QorType* _fwkType_$Enum$();
$nameDoc$
$export$Qor::String8 stringValue($Enum$ value);
$numberDoc$
$export$$Enum$ $Enum$Instance(unsigned int number);
$textDoc$
$export$$Enum$ $Enum$Instance(Qor::String8 name);
/// The name between single quotes.
$export$Qor::String8 valueToStrep($Enum$ const& value);
/// Reads a quoted name at the position; the last argument selects the overload and may be null.
$export$$Enum$ sequenceToValue(Qor::String8::IteratorConst& position, Qor::String8::IteratorConst const& end, $Enum$*);
/// Writes the name, without quotes.
$export$std::ostream& operator<<(std::ostream& out, $Enum$ const& value);

}  // namespace $namespace$

template <>
struct Qor::EnumTable<$FullEnum$> {
    static constexpr char const* type = "$Enum$";
    static constexpr std::array<char const*, $count$> names{
        $names$
    };
    static QorType* fwkType() { return $namespace$::_fwkType_$Enum$(); }
};

#endif
)",
                holes_);
}

std::string EnumerationEmitter::source() const {
    return fill(R"(
$origin$
#include <$header$>

#include <ostream>

namespace $namespace$ {

Qor::String8 stringValue($Enum$ value) {
    return Qor::enumString(value);
}

$Enum$ $Enum$Instance(unsigned int number) {
    return Qor::enumInstance<$Enum$>(number);
}

$Enum$ $Enum$Instance(Qor::String8 name) {
    return Qor::enumInstance<$Enum$>(name);
}

Qor::String8 valueToStrep($Enum$ const& value) {
    return Qor::enumStrep(value);
}

$Enum$ sequenceToValue(Qor::String8::IteratorConst& position, Qor::String8::IteratorConst const& end, $Enum$*) {
    return Qor::enumFromSequence<$Enum$>(position, end);
}

std::ostream& operator<<(std::ostream& out, $Enum$ const& value) {
    return out << stringValue(value).view();
}

}  // namespace $namespace$
)",
                holes_);
}

}  // namespace Modelc
