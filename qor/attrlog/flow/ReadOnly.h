#ifndef QOR_ATTRLOG_FLOW_READONLY_H
#define QOR_ATTRLOG_FLOW_READONLY_H

#include <qor/core/Exception.h>

namespace Qor {

// A change here of what only its source may change.
class QOR_EXPORT ReadOnlyException : public Exception {
  public:
    explicit ReadOnlyException(String8 message);
    ReadOnlyException(ReadOnlyException const&) noexcept = default;
    ReadOnlyException& operator=(ReadOnlyException const&) noexcept = default;
    ~ReadOnlyException() override;
};

}  // namespace Qor

#endif
