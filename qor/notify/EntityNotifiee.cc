#include <qor/notify/EntityNotifiee.h>

namespace Qor {

constinit NotifieeKind const Entity::NotifieeConst::qorKind{NotifieeKind::Below{},
                                                            PtrInterface::NotifieeConst::qorKind};

Entity::NotifieeConst::NotifieeConst() { kindIs(qorKind); }

Entity::NotifieeConst::~NotifieeConst() = default;

void Entity::NotifieeConst::onParent() {}
void Entity::NotifieeConst::onVersion() {}

Qor::Ptr<Entity const> Entity::NotifieeConst::notifier() const {
    return dynamic_cast<Entity const*>(qorNotifier());
}

Qor::Ptr<Entity> Entity::Notifiee::notifier() const {
    return const_cast<Entity*>(dynamic_cast<Entity const*>(qorNotifier()));
}

}  // namespace Qor
