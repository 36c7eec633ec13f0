#include <qor/attrlog/FrameTooLong.h>

#include <qor/core/Format.h>

namespace Qor {

namespace NboAttrLog {

FrameTooLongException::FrameTooLongException(U32 size, U32 greatest)
    : Exception(format("a frame of %u bytes, the greatest is %u", size, greatest),
                IdBitArray(rangeId), false) {}

FrameTooLongException::~FrameTooLongException() = default;

}  // namespace NboAttrLog

}  // namespace Qor
