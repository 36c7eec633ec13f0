// The reader of an attribute log in network byte order.
#ifndef QOR_ATTRLOG_NBOATTRLOGIN_H
#define QOR_ATTRLOG_NBOATTRLOGIN_H

#include <qor/attrlog/ByteConnectionIn.h>
#include <qor/attrlog/Declarations.h>

#include <bit>

namespace Qor {

namespace NboAttrLog {

class QOR_EXPORT In : public ByteConnection::In {
  public:
    using ByteConnection::In::In;
    ~In() override;

    // IEEE 754 binary64.
    Seconds nextSeconds() { return std::bit_cast<Seconds>(nextU64()); }
};

}  // namespace NboAttrLog

}  // namespace Qor

#endif
