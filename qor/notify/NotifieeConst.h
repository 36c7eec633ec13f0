// The root of all notifiees: small counted objects that hear of the changes of one notifier.
//
// A notifiee holds its notifier by a counted reference, or, when it is weak, by a pointer that the
// notifier's end clears. It is called while it stands on the notifier's list, which it does while
// it is registered. The list keeps nobody alive: a notifiee takes itself off in its destructor.
//
// A notifiee may have an activity. Its handlers may then ask qorOnAttribute whether to put the work
// off; what was put off is delivered by handleNotification when the activity has its turn.
// Everything here runs on the notifier's thread.
#ifndef QOR_NOTIFY_NOTIFIEE_CONST_H
#define QOR_NOTIFY_NOTIFIEE_CONST_H

#include <qor/collections/BitSet.h>
#include <qor/core/Ptr.h>
#include <qor/core/String8.h>
#include <qor/core/VFPtrInterface.h>
#include <qor/notify/Activity.h>
#include <qor/notify/NotifieeKind.h>

namespace Qor {

class QOR_EXPORT PtrInterface::NotifieeConst : public VFPtrInterface {
  public:
    using Ptr = Qor::Ptr<NotifieeConst>;

    /// Flags of a notifiee, of which the attribute log's adapters make use; positions 0 to 26.
    class Qor_BitSet : public BitSet<27, U32> {
      public:
        using BitSet::BitSet;
        /// The flags that may be replaced from outside; the others are an adapter's run-time state.
        static constexpr Qor_BitSet notificationBitMask() noexcept {
            return Qor_BitSet(0xFA8FFFFF);
        }
    };

    // What waits for the activity: an attribute's id, or one of these.
    static constexpr I32 nothingPending = 0;
    static constexpr I32 allAttributesPending = -1;
    static constexpr I32 allAndCollectionsPending = -2;

    static NotifieeKind const qorKind;

    ~NotifieeConst() override;

    void hasNotificationActiveIs(bool hasNotificationActive) override;

    /// The object that reacts to what this notifiee hears: itself, unless it stands for another.
    virtual Qor::Ptr<PtrInterface const> qorReactor() const;
    virtual PtrInterface const* qorRawReactor() const;
    /// It is among many that are about to be told: asks the memory for what its handlers will read,
    /// and, once that has come, for what that leads to.
    virtual void qorWillHear(bool hasCome) const;
    /// Whether it serves the attribute log: then it goes to the head of a notifier's list.
    virtual bool isStreamAdapter() const;
    /// Puts this on the notifier's list, or takes it off; the notifier stays.
    virtual void isRegisteredNotifieeIs(bool isRegisteredNotifiee) const;
    virtual void qor_bitSetIs(Qor_BitSet bits);
    /// The name of the notifier, empty without one.
    virtual String8 name() const;
    /// Attaches to a notifier or, with null, detaches. As isRegisteredNotifieeIs and
    /// isWeakReferenceIs it raises std::bad_alloc, and changes nothing, where it would leave the
    /// notifiee weak and on no list, and there is no memory.
    virtual void notifierIs(Qor::Ptr<PtrInterface const> const& notifier);

    /// The activity's turn: delivers what is pending.
    virtual void handleNotification(ActivityConfig* config);
    /// Delivers one attribute, or everything when `whole` is set.
    virtual void handleDefault(ActivityConfig* config, AttributeId id, bool whole);
    /// The attribute `id` has changed; only queued delivery calls this.
    virtual void onAttribute(AttributeId id);
    /// Any attribute may have changed; only queued delivery calls this.
    virtual void onNotification();
    virtual void onCollectionNotification(String8 attribute);
    /// A handler of this notifiee threw; called within the catch clause, so that a rethrow shows
    /// it.
    virtual void onNotificationException();
    virtual void onNotificationException(AttributeId id);
    virtual void handleNotificationException(AttributeId id);
    virtual void handleNotificationException();
    /// The notifier's last reference has gone.
    virtual void onZeroReferences();

    virtual Activity::Ptr activityPtr() const;
    virtual Activity* qorFwkActivity();
    virtual Activity const* qorFwkActivity() const;
    /// The state of the activity; null without one.
    virtual ActivitySm* actsm();
    /// Forgets the keys that wait for the activity. A class that keeps some (PendingKey) overrides
    /// it, and calls its base's.
    virtual void qorDropPendingKeys();

    /// Gives the notifiee an activity of its own or, with null, takes it away; what is pending is
    /// then dropped.
    void activityIs(Activity::Ptr activity);
    /// Makes the hold on the notifier weak or strong.
    void isWeakReferenceIs(bool isWeakReference);
    bool isWeakReference() const noexcept { return isWeakReference_; }
    bool isRegisteredNotifiee() const noexcept { return isRegisteredNotifiee_; }
    bool hasNotificationActive() const noexcept { return hasNotificationActive_; }
    Qor_BitSet qor_bitSet() const noexcept { return bits_; }

    Qor::Ptr<PtrInterface const> notifier() const { return notifier_; }
    PtrInterface const* qorNotifier() const noexcept { return notifier_; }
    NotifieeKind const& kind() const noexcept { return *kind_; }

    /// What waits for the activity: an attribute id, or one of the constants above.
    I32 pendingAttribute() const noexcept { return pendingAttribute_; }
    void pendingAttributeIs(I32 pending) noexcept { pendingAttribute_ = pending; }
    /// Whether what is heard of attribute `id` waits for the activity. If so it was noted, and
    /// `*pendingCount`, unless null, went up by one, 2 being the most: two or more. In a turn
    /// nothing waits; a key that the turn has not come to yet is then counted as two or more.
    bool qorOnAttribute(AttributeId id, U8* pendingCount);
    /// Asks for another turn of the activity for the rest of what is pending.
    void redispatch(ActivitySm* sm);

    /// Whether it stands on its notifier's list; told by the list's users.
    bool qorIsListed() const noexcept { return isListed_; }
    /// Raises std::bad_alloc, and changes nothing, when it would have to be watched for and can't.
    void qorListedIs(bool listed) const;
    /// The notifier ends: it is forgotten. What holds it by a reference is concerned as well, if
    /// the reference was taken when the end had begun already.
    void qorNotifierEnds() noexcept;

  protected:
    NotifieeConst();
    void kindIs(NotifieeKind const& kind) noexcept { kind_ = &kind; }
    /// The flags themselves, for a class that changes them often.
    Qor_BitSet& qorState() noexcept { return bits_; }
    void isRegisteredFlagIs(bool on) const noexcept { isRegisteredNotifiee_ = on; }
    /// Swaps the notifier, with a counted reference unless weak.
    void swapNotifier(PtrInterface const* notifier, bool isListed);
    /// Its first notifier, held weakly. REQUIRES: it stands on that notifier's list
    void weakNotifierIs(PtrInterface const& notifier) noexcept {
        isWeakReference_ = true;
        notifier_ = &notifier;
    }

  private:
    // Where it stands towards which notifier; the second, when it is weak before or after.
    void standIs(PtrInterface const* notifier, bool isWeak, bool isListed);
    void standWeaklyIs(PtrInterface const* notifier, bool isWeak, bool isListed);

    I32 pendingAttribute_ = nothingPending;
    PtrInterface const* notifier_ = nullptr;
    bool isWeakReference_ = false;
    mutable bool isRegisteredNotifiee_ = true;
    mutable bool isListed_ = false;
    bool hasNotificationActive_ = false;
    Qor_BitSet bits_;
    NotifieeKind const* kind_ = &qorKind;
    Activity::Ptr activity_;
};

}  // namespace Qor

#endif
