// How network values read their text from a sequence: a quoted string, then the value's own parser.
#ifndef KELP_QUOTEDTEXT_H
#define KELP_QUOTEDTEXT_H

#include <qor/core/Format.h>
#include <qor/core/Strep.h>

namespace Kelp {

// An error of the value's own parser gets the column of the string and the whole text added.
template <class Value>
Value valueOfQuotedText(Qor::String8::IteratorConst& position,
                        Qor::String8::IteratorConst const& end) {
    Qor::skipBlanks(position, end);
    auto const start = position.index();
    auto const text = Qor::sequenceToValue(position, end, static_cast<Qor::String8*>(nullptr));
    try {
        return Value(text.view());
    } catch (Qor::RangeException const& exception) {
        throw Qor::RangeException(
            exception.message() +
                Qor::format(", at column %lld deserializing ", static_cast<long long>(start)) +
                position.text(),
            exception.ids());
    }
}

}  // namespace Kelp

#endif
