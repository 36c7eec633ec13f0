#ifndef QOR_ATTRLOG_FRAMETOOLONG_H
#define QOR_ATTRLOG_FRAMETOOLONG_H

#include <qor/core/Exception.h>
#include <qor/core/Types.h>

namespace Qor {

namespace NboAttrLog {

// A record that is longer than the peer takes. Nothing of it has been written. It is no
// AttrLogRecordException, since writing it again would not help.
class QOR_EXPORT FrameTooLongException : public Exception {
  public:
    FrameTooLongException(U32 size, U32 greatest);
    FrameTooLongException(FrameTooLongException const&) noexcept = default;
    FrameTooLongException& operator=(FrameTooLongException const&) noexcept = default;
    ~FrameTooLongException() override;
};

}  // namespace NboAttrLog

}  // namespace Qor

#endif
