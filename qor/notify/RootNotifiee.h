// The notifiee's side of a notifier list, once for every entity class that owns one. `E` is that
// class; its NotifieeConst derives from RootNotifiee<E>. An entity of another tree counts as none.
#ifndef QOR_NOTIFY_ROOT_NOTIFIEE_H
#define QOR_NOTIFY_ROOT_NOTIFIEE_H

#include <qor/notify/ListRaw.h>

namespace Qor {

template <class E>
class RootNotifiee : public Entity::NotifieeConst {
  public:
    ~RootNotifiee() override {
        E const* const entity = rawEntity();
        if (!entity || !qorIsListed()) {
            return;
        }
        // It goes on counting as listed: nobody has to watch for it any more.
        if (entity->qorMarkedForDeletion()) {
            entity->notifierList().abandon(*this);
        } else {
            entity->notifierList().leave(*this);
        }
    }

    /// Puts this on the notifier's list or takes it off; without a notifier it is only remembered.
    void isRegisteredNotifieeIs(bool isRegistered) const override {
        if (isRegistered == isRegisteredNotifiee()) {
            return;
        }
        if (E const* const entity = rawEntity()) {
            placeOn(*entity, isRegistered);
        }
        isRegisteredFlagIs(isRegistered);
    }

    String8 name() const override {
        E const* const entity = rawEntity();
        return entity ? String8(entity->name()) : String8();
    }

    void notifierIs(Qor::Ptr<PtrInterface const> const& notifier) override {
        attachTo(dynamic_cast<E const*>(notifier.ptr()));
    }
    /// notifierIs() of what is known to be of this tree, or null.
    void attachTo(E const* fresh) {
        Qor::Ptr<E const> const old(rawEntity());
        if (old == fresh) {
            return;
        }
        bool const wasListed = qorIsListed();
        bool const willBeListed = fresh && isRegisteredNotifiee();
        swapNotifier(fresh, willBeListed);
        if (wasListed) {
            old->notifierList().leave(*this);
        }
        if (willBeListed) {
            fresh->notifierList().link(*this);
        }
    }

    /// The same for good and weakly, of a notifiee that is registered and has had no notifier.
    void attachWeaklyTo(E const& first) {
        first.notifierList().link(*this);
        weakNotifierIs(first);
    }

  protected:
    E const* rawEntity() const noexcept { return static_cast<E const*>(qorNotifier()); }

  private:
    void placeOn(E const& entity, bool listed) const {
        auto& self = const_cast<RootNotifiee&>(*this);
        if (listed) {
            entity.notifierList().link(self);
        } else if (qorIsListed()) {
            qorListedIs(false);
            entity.notifierList().leave(self);
        }
    }
};

}  // namespace Qor

#endif
