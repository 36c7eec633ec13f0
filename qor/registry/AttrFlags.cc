#include <qor/registry/AttrFlags.h>

#include <qor/core/Exception.h>

namespace Qor {

AttrIntrospectionFlags::AttrIntrospectionFlags(unsigned int value) : value_(value) {
    if (value > 0x3F) {
        throwRangeException("QorAttrIntrospectionFlags::value > 0x3f not allowed");
    }
}

}  // namespace Qor
