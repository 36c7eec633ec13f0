// The records of the types that the language itself and the framework have: bool, the integers of
// fixed width, double, strings. void* stands for an operation without a result.
#ifndef QOR_REGISTRY_BUILTIN_H
#define QOR_REGISTRY_BUILTIN_H

#include <qor/core/Export.h>
#include <qor/core/Types.h>

namespace Qor {

/// For bool, void*, U8, U16, U32, U64, I32, double and String8; other types have none.
template <class T>
class Builtin {
  public:
    /// Never null.
    QOR_EXPORT static QorType* _fwkType();
};

template <>
QOR_EXPORT QorType* Builtin<void*>::_fwkType();

}  // namespace Qor

#endif
