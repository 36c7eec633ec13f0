// Hears of every change of one entity, without knowing its class: the listener of tools. It works
// alike for compiled classes and for those that the process only knows by their description.
//
//   struct Teller : Qor::GenericNotifiee {
//       using GenericNotifiee::GenericNotifiee;
//       void onChange(Qor::QorAttr const& attribute, Qor::GenericIf const* key) override;
//   };
//
// It holds its entity, through a wrapper that may only read and serves for reading what has
// changed. Calls come within the setter, on its thread; what they throw stops nobody. A listener
// that would rather work outside of setters gives the wrapper an activity: changes are gathered
// until its turn, a collection's several keys as one change of the whole, several attributes as
// onChanges(). Within a call the listener may be let go of.
//
// Cost: a listener is one wrapper and one adapter for each level of the class, about 150 bytes
// each; a change costs one virtual call a level and a look-up of the attribute's record, one of a
// key the wrapper over that key besides. Nothing is paid by entities that nobody listens to.
#ifndef QOR_GENERIC_GENERIC_NOTIFIEE_H
#define QOR_GENERIC_GENERIC_NOTIFIEE_H

#include <qor/generic/GenericIf.h>

namespace Qor {

class QOR_EXPORT GenericNotifiee : private GenericIf::Watcher {
  public:
    explicit GenericNotifiee(Ptr<Entity> const& entity);
    ~GenericNotifiee() override;
    GenericNotifiee(GenericNotifiee const&) = delete;
    GenericNotifiee& operator=(GenericNotifiee const&) = delete;

    /// An attribute has changed: a single value, with a null key; of a collection the member under
    /// `key`, which has come, gone or changed, or, with a null key, any of them.
    virtual void onChange(QorAttr const& attribute, GenericIf const* key) = 0;
    /// Several attributes may have changed; only a listener with an activity is told so.
    virtual void onChanges();
    /// The entity ends. Only one that is not counted ends while it is held here.
    virtual void onEnd();

    /// Never null.
    Ptr<Entity const> notifier() const { return wrapper_->entityConst(); }
    /// For reading what has changed.
    GenericIf& wrapper() const noexcept { return *wrapper_; }

  private:
    void onAttribute(GenericIf& wrapper, AttributeId id, GenericIf::PtrConst& key) override;
    void onNotification(GenericIf& wrapper) override;
    void onZeroReferences(GenericIf& wrapper) override;

    GenericIf::Ptr const wrapper_;
};

}  // namespace Qor

#endif
