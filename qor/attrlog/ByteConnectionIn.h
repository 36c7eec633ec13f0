// Reads plain values from a connection, all of them in network byte order.
#ifndef QOR_ATTRLOG_BYTECONNECTIONIN_H
#define QOR_ATTRLOG_BYTECONNECTIONIN_H

#include <qor/attrlog/ConnectionIn.h>

namespace Qor {

namespace ByteConnection {

class QOR_EXPORT In : public Connection::In {
  public:
    using Connection::In::In;
    ~In() override;

    // One byte, 0 or 1; any other raises AttrLogRecordException.
    bool nextbool();
    U8 nextU8() { return next<U8>(); }
    U16 nextU16() { return next<U16>(); }
    U32 nextU32() { return next<U32>(); }
    U64 nextU64() { return next<U64>(); }
    I32 nextint() { return static_cast<I32>(next<U32>()); }

    // A length of 32 bits and so many bytes. Where it can't be read whole, the position stays in
    // front of the length.
    String8 nextString();
};

}  // namespace ByteConnection

}  // namespace Qor

#endif
