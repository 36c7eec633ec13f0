// From a C++ type to its record, for the templates of this folder.
#ifndef QOR_GENERIC_TYPE_OF_H
#define QOR_GENERIC_TYPE_OF_H

#include <type_traits>

#include <qor/model/EnumText.h>
#include <qor/registry/Builtin.h>

namespace Qor {

template <class T>
QorType* typeOf() {
    if constexpr (std::is_enum_v<T>) {
        return EnumTable<T>::fwkType();
    } else if constexpr (requires { T::_fwkType(); }) {
        return T::_fwkType();
    } else {
        return Builtin<T>::_fwkType();
    }
}

}  // namespace Qor

#endif
