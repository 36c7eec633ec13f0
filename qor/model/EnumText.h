// The text and number forms of every enumeration, from one table a type. The numbers run from 0
// without gaps. A number outside the table prints in the fallback form "Type(%d)", which does not
// read back: only names of the table do.
#ifndef QOR_MODEL_ENUM_TEXT_H
#define QOR_MODEL_ENUM_TEXT_H

#include <array>
#include <cstddef>

#include <qor/core/Exception.h>
#include <qor/core/Format.h>
#include <qor/core/Strep.h>

namespace Qor {

/// Specialised for each enumeration: `type`, its name, `names`, its enumerators' in order, and
/// `fwkType()`, the record of the type.
template <class E>
struct EnumTable;

template <class E>
String8 enumString(E value) {
    auto const number = static_cast<U32>(value);
    if (number < EnumTable<E>::names.size()) {
        return EnumTable<E>::names[number];
    }
    return format("%s(%d)", EnumTable<E>::type, static_cast<int>(number));
}

/// The enumerator with that number; any other number raises a range exception with the type's name.
template <class E>
E enumInstance(unsigned int number) {
    if (number >= EnumTable<E>::names.size()) {
        throwRangeException(EnumTable<E>::type);
    }
    return static_cast<E>(number);
}

/// The enumerator of that name, byte for byte; any other raises the same exception.
template <class E>
E enumInstance(String8 const& name) {
    for (std::size_t i = 0; i < EnumTable<E>::names.size(); ++i) {
        if (name.view() == EnumTable<E>::names[i]) {
            return static_cast<E>(i);
        }
    }
    throwRangeException(EnumTable<E>::type);
}

/// The name between single quotes.
template <class E>
String8 enumStrep(E value) {
    return String8("'") + enumString(value) + "'";
}

template <class E>
E enumFromSequence(String8::IteratorConst& position, String8::IteratorConst const& end) {
    return enumInstance<E>(sequenceToValue(position, end, static_cast<String8*>(nullptr)));
}

}  // namespace Qor

#endif
