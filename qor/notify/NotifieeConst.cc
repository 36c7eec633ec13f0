#include <qor/notify/NotifieeConst.h>

#include <qor/core/Trace.h>
#include <qor/notify/WeakWatch.h>

namespace Qor {

constinit NotifieeKind const PtrInterface::NotifieeConst::qorKind{};

PtrInterface::NotifieeConst::NotifieeConst() = default;

inline void PtrInterface::NotifieeConst::standIs(PtrInterface const* notifier, bool isWeak,
                                                 bool isListed) {
    if (isWeakReference_ || isWeak) {
        standWeaklyIs(notifier, isWeak, isListed);
        return;
    }
    notifier_ = notifier;
    isListed_ = isListed;
}

// A weak notifiee that is on no list is watched for. To enter the watch may fail, and so it is
// done before anything is changed; one that is on a list hears of the end through that.
void PtrInterface::NotifieeConst::standWeaklyIs(PtrInterface const* notifier, bool isWeak,
                                                bool isListed) {
    PtrInterface const* const before = isWeakReference_ && !isListed_ ? notifier_ : nullptr;
    PtrInterface const* const after = isWeak && !isListed ? notifier : nullptr;
    if (after && after != before) {
        weakWatchIs(*after, *this);
    }
    notifier_ = notifier;
    isWeakReference_ = isWeak;
    isListed_ = isListed;
    if (before && after != before) {
        weakWatchDel(*before, *this);
    }
}

PtrInterface::NotifieeConst::~NotifieeConst() {
    activityIs(nullptr);
    swapNotifier(nullptr, isListed_);
}

void PtrInterface::NotifieeConst::hasNotificationActiveIs(bool hasNotificationActive) {
    hasNotificationActive_ = hasNotificationActive;
}

Qor::Ptr<PtrInterface const> PtrInterface::NotifieeConst::qorReactor() const { return this; }

PtrInterface const* PtrInterface::NotifieeConst::qorRawReactor() const { return this; }
void PtrInterface::NotifieeConst::qorWillHear(bool) const {}

bool PtrInterface::NotifieeConst::isStreamAdapter() const { return false; }

void PtrInterface::NotifieeConst::isRegisteredNotifieeIs(bool isRegisteredNotifiee) const {
    isRegisteredNotifiee_ = isRegisteredNotifiee;
}

void PtrInterface::NotifieeConst::qorListedIs(bool listed) const {
    const_cast<NotifieeConst*>(this)->standIs(notifier_, isWeakReference_, listed);
}

void PtrInterface::NotifieeConst::qor_bitSetIs(Qor_BitSet bits) { bits_ = bits; }

String8 PtrInterface::NotifieeConst::name() const { return {}; }

void PtrInterface::NotifieeConst::notifierIs(Qor::Ptr<PtrInterface const> const& notifier) {
    if (notifier.ptr() != notifier_) {
        swapNotifier(notifier.ptr(), isListed_);
    }
}

void PtrInterface::NotifieeConst::swapNotifier(PtrInterface const* notifier, bool isListed) {
    PtrInterface const* const old = notifier_;
    standIs(notifier, isWeakReference_, isListed);
    if (isWeakReference_) {
        return;
    }
    if (notifier) {
        notifier->qorNewRef();
    }
    if (old) {
        old->qorDeleteRef();
    }
}

void PtrInterface::NotifieeConst::isWeakReferenceIs(bool isWeakReference) {
    if (isWeakReference_ == isWeakReference) {
        return;
    }
    standIs(notifier_, isWeakReference, isListed_);
    if (!notifier_) {
        return;
    }
    if (isWeakReference) {
        notifier_->qorDeleteRef();
    } else {
        notifier_->qorNewRef();
    }
}

void PtrInterface::NotifieeConst::qorNotifierEnds() noexcept { notifier_ = nullptr; }

void PtrInterface::NotifieeConst::handleNotification(ActivityConfig* config) {
    AttributeId const pending = std::exchange(pendingAttribute_, nothingPending);
    if (pending != nothingPending) {
        handleDefault(config, pending, pending < 0);
    }
}

void PtrInterface::NotifieeConst::handleDefault(ActivityConfig*, AttributeId id, bool whole) {
    try {
        if (whole) {
            onNotification();
        } else {
            onAttribute(id);
        }
    } catch (...) {
        onNotificationException(id);
    }
}

void PtrInterface::NotifieeConst::onAttribute(AttributeId) {}
void PtrInterface::NotifieeConst::onNotification() {}
void PtrInterface::NotifieeConst::onCollectionNotification(String8) {}

void PtrInterface::NotifieeConst::onNotificationException() { handleNotificationException(); }

void PtrInterface::NotifieeConst::onNotificationException(AttributeId id) {
    handleNotificationException(id);
}

void PtrInterface::NotifieeConst::handleNotificationException(AttributeId) {
    handleNotificationException();
}

// The exception ends here; who wants to see it switches the trace on.
void PtrInterface::NotifieeConst::handleNotificationException() {
    // Never destroyed: handlers may throw while the process ends.
    static TraceHandle const& handle = *new TraceHandle("Qor", false);
    trace(handle, 1, "Qor/Notify", __LINE__, "handleNotificationException", [](std::ostream& out) {
        try {
            throw;
        } catch (std::exception const& e) {
            out << "a handler threw: " << e.what();
        } catch (...) {
            out << "a handler threw something that is no std::exception";
        }
    });
}

void PtrInterface::NotifieeConst::onZeroReferences() {}

Activity::Ptr PtrInterface::NotifieeConst::activityPtr() const { return activity_; }
Activity* PtrInterface::NotifieeConst::qorFwkActivity() { return activity_.ptr(); }
Activity const* PtrInterface::NotifieeConst::qorFwkActivity() const { return activity_.ptr(); }
ActivitySm* PtrInterface::NotifieeConst::actsm() { return activity_ ? &activity_->sm() : nullptr; }

void PtrInterface::NotifieeConst::qorDropPendingKeys() {}

void PtrInterface::NotifieeConst::activityIs(Activity::Ptr activity) {
    if (activity_) {
        activity_->clientIs(nullptr);
    }
    pendingAttribute_ = nothingPending;
    // NOLINTNEXTLINE(clang-analyzer-optin.cplusplus.VirtualCall): base part only at its end.
    qorDropPendingKeys();
    activity_ = std::move(activity);
    if (activity_) {
        activity_->clientIs(this);
    }
}

bool PtrInterface::NotifieeConst::qorOnAttribute(AttributeId id, U8* pendingCount) {
    ActivitySm* const sm = actsm();
    if (!sm) {
        return false;
    }
    if (sm->state() == ActivitySm::State::running) {
        // Another key of the collection still waits for this turn to come to it.
        if (pendingCount && *pendingCount == 1) {
            *pendingCount = 2;
        }
        return false;
    }
    if (pendingAttribute_ == nothingPending) {
        pendingAttribute_ = id;
    } else if (pendingAttribute_ != id && pendingAttribute_ > 0) {
        pendingAttribute_ = allAttributesPending;
    }
    if (pendingCount && *pendingCount < 2) {
        ++*pendingCount;
    }
    sm->schedule();
    return true;
}

void PtrInterface::NotifieeConst::redispatch(ActivitySm* sm) {
    if (sm && pendingAttribute_ != nothingPending) {
        sm->schedule();
    }
}

}  // namespace Qor
