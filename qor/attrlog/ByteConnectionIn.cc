#include <qor/attrlog/ByteConnectionIn.h>

#include <qor/core/Exception.h>
#include <qor/core/Format.h>

namespace Qor {

namespace ByteConnection {

In::~In() = default;

bool In::nextbool() {
    auto const offset = readPosition();
    auto const byte = nextU8();
    if (byte > 1) {
        readPositionIs(offset);
        throw AttrLogRecordException(format("truth value %u at offset %llu, expected 0 or 1", byte,
                                            static_cast<unsigned long long>(offset)));
    }
    return byte != 0;
}

String8 In::nextString() {
    auto const offset = readPosition();
    auto const length = nextU32();
    if (length > available()) {
        auto const left = available();
        readPositionIs(offset);
        throw AttrLogRecordException(
            format("text of %u bytes needed at offset %llu, %llu available", length,
                   static_cast<unsigned long long>(offset), static_cast<unsigned long long>(left)));
    }
    return nextText(length);
}

}  // namespace ByteConnection

}  // namespace Qor
