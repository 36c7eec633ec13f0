#include <qor/generic/GenericList.h>

namespace Qor {

GenericIf::List_::~List_() = default;

QorType* GenericIf::List_::fwkType() const { return List::_fwkType(); }

void const* GenericIf::List_::genericValue(Qor::Ptr<QorType const> const& type) const {
    return type == List::_fwkType() ? &queue_ : GenericIf::genericValue(type);
}

GenericIf::Ptr GenericIf::List_::genericClone() const { return make<List_>(queue_); }

GenericArguments::GenericArguments(GenericIf const* list) {
    if (!list) {
        GenericIf::throwTypeException("List");
    }
    if (!dynamic_cast<GenericIf::List_ const*>(list)) {
        GenericIf::throwTypeException("Qor::GenericIf::List_");
    }
    Ptr<QorType const> const type(GenericIf::List::_fwkType());
    left_ = *static_cast<GenericIf::List::Queue const*>(list->genericValue(type));
}

GenericIf::Ptr GenericArguments::next(char const* argument) {
    if (left_.isEmpty()) {
        GenericIf::throwTypeException(argument);
    }
    return left_.deq();
}

void GenericArguments::end(char const* operation) const {
    if (!left_.isEmpty()) {
        GenericIf::throwUnknownArgException(operation);
    }
}

}  // namespace Qor
