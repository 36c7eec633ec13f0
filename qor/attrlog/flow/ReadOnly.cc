#include <qor/attrlog/flow/ReadOnly.h>

namespace Qor {

ReadOnlyException::ReadOnlyException(String8 message)
    : Exception(std::move(message), IdBitArray(entityId), false) {}

ReadOnlyException::~ReadOnlyException() = default;

}  // namespace Qor
