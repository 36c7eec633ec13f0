#include <qor/core/PtrInterface.h>

#include <qor/core/Assert.h>

namespace Qor {

constinit std::atomic<PtrInterface::WeakWatchersEnd> PtrInterface::weakWatchersEnd{nullptr};

QorType* PtrInterface::fwkType() const { return nullptr; }

PtrInterface::~PtrInterface() { tellWeakWatchers(); }

void PtrInterface::tellWeakWatchers() const noexcept {
    if (!qorWeaklyWatched()) [[likely]] {
        return;
    }
    if (WeakWatchersEnd const tell = weakWatchersEnd.load(std::memory_order_acquire)) {
        tell(this);
    }
}

void PtrInterface::qorWeaklyWatchedIs(bool watched) const noexcept {
    U32 now = word();
    U32 next = 0;
    do {
        if ((now >> 24) == nondestructingByte) {
            return;
        }
        next = watched ? now | weaklyWatchedBit : now & ~weaklyWatchedBit;
    } while (!word_.compare_exchange_weak(now, next, std::memory_order_relaxed));
}

void PtrInterface::hasNotificationActiveIs(bool) {}

U32 PtrInterface::qorAuditErrors(unsigned int level) const { return auditErrors(level); }

U32 PtrInterface::auditErrors(unsigned int) const { return 0; }

// The byte stands in the place of the marks and of the count's upper five bits: more references
// than the rest can hold would be forgotten, and the object end under those who hold it. Nor does
// it leave room to remember whether there are weak watchers. What can end again is taken to have
// some if anything ever had: asking in vain is all that this may cost.
void PtrInterface::isNondestructingIs(bool isNondestructing) {
    bool const watched = weakWatchersEnd.load(std::memory_order_relaxed) != nullptr;
    U32 const whenCounted = watched ? weaklyWatchedBit : 0;
    U32 now = word();
    U32 next = 0;
    do {
        if (((now >> 24) == nondestructingByte) == isNondestructing) {
            return;
        }
        assertThat(!isNondestructing || (now & refsMask) <= mostNondestructing,
                   "fewer than 0x1000000 references", "Qor/PtrInterface", __LINE__, __func__);
        next = (now & mostNondestructing) |
               (isNondestructing ? nondestructingByte << 24 : whenCounted);
    } while (!word_.compare_exchange_weak(now, next, std::memory_order_relaxed));
}

void PtrInterface::newRefOfMarked() const noexcept {
    if (isNondestructing()) {
        return;
    }
    countOneMore(word(), isSingleThreaded());
}

bool PtrInterface::newRefOfMarkedUnlessEnding() const noexcept {
    bool const begins = !qorIsEnding();
    if (begins) {
        newRefOfMarked();
    }
    return begins;
}

void PtrInterface::deleteRefOfMarked() const {
    if (isNondestructing()) {
        return;
    }
    U32 after;
    if (isSingleThreaded()) {
        after = word() - 1;
        word_.store(after, std::memory_order_relaxed);
    } else {
        after = word_.fetch_sub(1, std::memory_order_acq_rel) - 1;
    }
    if ((after & zeroMask) == 0) {
        handleZeroRef();
    }
}

bool PtrInterface::deleteRefOfManyAmongThreads(U32 now) const noexcept {
    while (now - 2 < leastMarked - 2) {
        if (word_.compare_exchange_weak(now, now - 1, std::memory_order_acq_rel,
                                        std::memory_order_relaxed)) {
            return true;
        }
    }
    return false;
}

void PtrInterface::zeroReferencesIs(bool) {}

// The ending bit keeps the count away from zero while the end is told and while destructors run, so
// that what they take and drop starts no second end. A reference taken in zeroReferencesIs and kept
// lets the object live; the last of those that is dropped ends it anew.
void PtrInterface::handleZeroRef() const {
    for (;;) {
        word_.fetch_add(endingBit + 1, std::memory_order_relaxed);
        const_cast<PtrInterface*>(this)->zeroReferencesIs(true);
        if (isNondestructing()) {  // made to stay; the count is its own again
            word_.fetch_sub(1, std::memory_order_relaxed);
            return;
        }
        // Acquire: a reference that was kept may have gone on another thread in the meantime.
        if ((word_.load(std::memory_order_acquire) & refsMask) == 1) {
            word_.fetch_or(endingBit, std::memory_order_relaxed);
            tellWeakWatchers();
            delete this;
            return;
        }
        if ((afterSaving() & zeroMask) != 0) {
            return;
        }
    }
}

// Gives up the reference that the end held, and takes back its bit, which is gone already when the
// object was made non-destructing for a while.
U32 PtrInterface::afterSaving() const noexcept {
    U32 now = word();
    U32 next = 0;
    do {
        next = (now & ~endingBit) - 1;
    } while (!word_.compare_exchange_weak(now, next, std::memory_order_acq_rel));
    return next;
}

}  // namespace Qor
