#include <qor/generic/GenericNotifiee.h>

#include <qor/core/ValidPtr.h>

namespace Qor {

GenericNotifiee::GenericNotifiee(Ptr<Entity> const& entity)
    : wrapper_(validPtr(entity)->fwkType()->genericIf_(entity.ptr(), true)) {
    wrapper_->watcherIs(this);
}

GenericNotifiee::~GenericNotifiee() { wrapper_->watcherIs(nullptr); }

void GenericNotifiee::onChanges() {}
void GenericNotifiee::onEnd() {}

void GenericNotifiee::onAttribute(GenericIf& wrapper, AttributeId id, GenericIf::PtrConst& key) {
    if (QorAttr::Ptr const attribute = wrapper.fwkType()->attr(id)) {
        onChange(*attribute, key.ptr());
    }
}

void GenericNotifiee::onNotification(GenericIf&) { onChanges(); }
void GenericNotifiee::onZeroReferences(GenericIf&) { onEnd(); }

}  // namespace Qor
