// The wrapper of one class: its level of the chain of wrappers that follows the class's bases.
//
// Each level owns an adapter, a notifiee of its class that hands what it hears to the wrapper.
// Only the most derived one stands on the entity's list; those below it are kept for the delivery
// state of their own collections.
#ifndef QOR_GENERIC_ENTITY_WRAPPER_H
#define QOR_GENERIC_ENTITY_WRAPPER_H

#include <qor/generic/AttributeSteps.h>

namespace Qor {

/// The descriptor of isNondestructing, as far as telling goes.
struct NondestructingTold {
    static void tell(auto& hearer) { hearer.onIsNondestructing(); }
};

/// The root of the adapters: `N` is the notifiee class that it is registered as, `W` the wrapper.
/// The handlers are added level by level by X::QorForward, which derive from this.
template <class N, class W>
class ForwardingNotifiee : public N {
  public:
    /// `owner` is a W, or is about to become one: a level's adapter is made before the level.
    explicit ForwardingNotifiee(GenericIfEntity* owner) : owner_(owner) {}

    /// Null once the wrapper has gone: what is heard then goes nowhere.
    GenericIfEntity* owner() const noexcept { return owner_; }
    void ownerIs(GenericIfEntity* owner) noexcept { owner_ = owner; }

    void onZeroReferences() override {
        toOwner([](W& owner) { owner.onZeroReferences(); });
        this->hasNotificationActiveIs(false);
    }
    void onNotificationException(AttributeId id) override {
        toOwner([id](W& owner) { owner.onNotificationException(id); });
    }

  protected:
    // The owner is held while it is told, whatever it does meanwhile.

    template <class Told>
    void toOwner(Told&& told) {
        if (Ptr<GenericIfEntity> const held{owner_}) {
            told(static_cast<W&>(*held));
        }
    }
    template <class A>
    void forward() {
        toOwner([](W& owner) { A::tell(owner); });
    }
    template <class A, class Key>
    void forward(Key const& key) {
        toOwner([&key](W& owner) { A::tell(owner, key); });
    }
    template <class A>
    void forwardWhole() {
        toOwner([](W& owner) { A::tellWhole(owner); });
    }

  private:
    GenericIfEntity* owner_;
};

template <class X, class Base>
class EntityWrapper : public Base {
  public:
    EntityWrapper(Ptr<Entity> const& entity, bool isConst) : Base(entity, isConst) {
        auto adapter = make<typename X::GenericIf_::GenericIf_Adapter_>(this);
        adapter->notifierIs(Ptr<PtrInterface const>(entity));
        Base::qorAdapterRegisteredIs(false);
        adapter_ = std::move(adapter);
        adapter_->hasNotificationActiveIs(true);
    }
    ~EntityWrapper() override {
        this->isWeakReferenceIs(false);
        adapter_->notifierIs(nullptr);
        adapter().ownerIs(nullptr);
    }

    QorType* fwkType() const override { return X::_fwkType(); }

    GenericIf::Ptr genericClone() const override {
        auto* const entity = const_cast<PtrInterface*>(this->qorNotifier());
        return fwkType()->genericIf_(entity, this->isConst());
    }

    void notifierIs(Ptr<PtrInterface const> const& notifier) override {
        Ptr<PtrInterface const> const checked(dynamic_cast<X const*>(notifier.ptr()));
        adapter_->notifierIs(checked);
        Base::notifierIs(checked);
    }

    void markedForDeletionIs(bool marked) override {
        if (marked != this->qorMarkedForDeletion()) {
            adapter_->qorMarkedForDeletionIs(marked);
            this->qorMarkedForDeletionIs(marked);
        }
    }

    /// Delivers what has waited for the activity: this level's collections, after what is below.
    void handleNotification(ActivityConfig* config) override {
        I32 const pending = this->pendingAttribute();
        bool const isOne = X::QorAttributes::isKeyed(pending);
        bool const isAll =
            pending == Base::allAttributesPending || pending == Base::allAndCollectionsPending;
        if (!isOne) {
            Base::handleNotification(config);
        }
        if (!isOne && !isAll) {
            return;
        }
        if (isOne) {
            this->pendingAttributeIs(Base::nothingPending);
        } else {
            this->redispatch(this->actsm());
        }
        X::QorAttributes::forEach([&]<class A>() {
            if constexpr (A::isKeyed) {
                if (isAll || A::id == pending) {
                    deliver<A>(pending == Base::allAndCollectionsPending);
                }
                if (isAll) {
                    this->redispatch(this->actsm());
                }
            }
        });
    }

    void qorDropPendingKeys() override {
        adapter_->qorDropPendingKeys();
        Base::qorDropPendingKeys();
    }

  protected:
    GenericAttribute const* qorAttribute(AttributeId id) const override {
        GenericAttribute const* const own =
            attributeIn(GenericTable<typename X::QorAttributes>::rows, id);
        return own ? own : Base::qorAttribute(id);
    }

    /// What the handler of a collection's key does.
    template <class A>
    void qorHeardKey(typename A::Key const& key) {
        this->qorHeard(A::id, key, A::pending(adapter()));
    }

    void qorAdapterRegisteredIs(bool isRegistered) {
        adapter_->isRegisteredNotifieeIs(isRegistered);
    }

  private:
    auto& adapter() { return static_cast<typename X::GenericIf_::GenericIf_Adapter_&>(*adapter_); }

    template <class A>
    void deliver(bool asWhole) {
        auto& pending = A::pending(adapter());
        auto const key = pending.lastKey;
        U8 const count = std::exchange(pending.count, U8{0});
        auto& wrapper = static_cast<typename X::GenericIf_&>(*this);
        try {
            if (count == 1 && !asWhole) {
                A::tell(wrapper, key);
            } else if (count != 0 || asWhole) {
                A::tellWhole(wrapper);
            }
        } catch (...) {
            this->onNotificationException(A::id);
        }
    }

    typename X::Notifiee::Ptr adapter_;
};

}  // namespace Qor

#endif
