// Notifiees of entities, and the list that a notifier keeps of them. The link of the list stands in
// the notifiee; an entity's class tree has one list, at its root class.
#ifndef QOR_NOTIFY_ENTITY_NOTIFIEE_H
#define QOR_NOTIFY_ENTITY_NOTIFIEE_H

#include <qor/entity/Entity.h>
#include <qor/notify/NotifieeConst.h>

namespace Qor {

class ListRawGeneric;

/// Hears of a const entity.
class QOR_EXPORT Entity::NotifieeConst : public PtrInterface::NotifieeConst {
  public:
    using Ptr = Qor::Ptr<NotifieeConst>;
    static NotifieeKind const qorKind;

    ~NotifieeConst() override;
    /// The entity's owner has changed; a hook without a caller in the framework's own setters.
    virtual void onParent();
    /// A hook without a caller in the framework's own setters.
    virtual void onVersion();

    Qor::Ptr<Entity const> notifier() const;

  protected:
    NotifieeConst();

  private:
    friend class ListRawGeneric;
    Entity::NotifieeConst* next_ = nullptr;
};

/// Hears of an entity that it may change.
class QOR_EXPORT Entity::Notifiee : public Entity::NotifieeConst {
  public:
    using Ptr = Qor::Ptr<Notifiee>;
    Qor::Ptr<Entity> notifier() const;
};

}  // namespace Qor

#endif
