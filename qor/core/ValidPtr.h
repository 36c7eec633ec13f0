// The check of a reference that must not be null.
#ifndef QOR_CORE_VALID_PTR_H
#define QOR_CORE_VALID_PTR_H

#include <utility>

#include <qor/core/Exception.h>
#include <qor/core/Ptr.h>

namespace Qor {

/// The same reference; a null one raises the range exception "null ValidPtr".
template <class T>
[[nodiscard]] Ptr<T> validPtr(Ptr<T> p) {
    if (!p) {
        throwRangeException("null ValidPtr");
    }
    return p;
}

}  // namespace Qor

#endif
