// The root of everything that is counted. One 32-bit word holds the count of references and a few
// marks; it may be changed on any thread, everything else of an object belongs to one thread.
//
//   bits 0..28  references          bit 30  the end of the object is being told or carried out
//   bit 29      watched by weak notifiees that are on no list       bit 31  marked for deletion
//   top byte 0x1F: non-destructing; references are not counted and the object never ends
//
// A new object has count 1, the building count; Qor::adopt takes it over. When the last reference
// goes, zeroReferencesIs(true) is called once, and the object is destroyed unless somebody took a
// reference in that call. References that destructors take and drop have no effect.
#ifndef QOR_CORE_PTR_INTERFACE_H
#define QOR_CORE_PTR_INTERFACE_H

#include <atomic>

#include <qor/core/Export.h>
#include <qor/core/Pool.h>
#include <qor/core/SingleThread.h>
#include <qor/core/Types.h>

namespace Qor {

class QOR_EXPORT PtrInterface {
  public:
    class NotifieeConst;  // <qor/notify/NotifieeConst.h>

    PtrInterface() noexcept : word_(1) {}
    PtrInterface(PtrInterface const&) = delete;
    PtrInterface& operator=(PtrInterface const&) = delete;

    /// Told to an object that takes part in notification when its taking part begins or ends.
    virtual void hasNotificationActiveIs(bool hasNotificationActive);
    /// Number of inconsistencies in the object as the framework sees it; 0 is sound.
    virtual U32 qorAuditErrors(unsigned int level) const;
    /// Number of inconsistencies in the object as its class sees it; 0 is sound.
    virtual U32 auditErrors(unsigned int level) const;
    /// Switches counting off or on. Switched on again, the count continues from where it stood when
    /// it was switched off: references taken in between must have been given up in between.
    /// Beside what says that it is off there is no room for more than 24 bits of the count.
    /// REQUIRES: fewer than 0x1000000 references
    virtual void isNondestructingIs(bool isNondestructing);
    /// Called once with true when the last reference has gone.
    virtual void zeroReferencesIs(bool zeroReferences);
    /// The run-time record of the object's class; null for one that has none.
    virtual QorType* fwkType() const;
    /// The record of this class; never null.
    static QorType* _fwkType();
    virtual ~PtrInterface();

    bool isNondestructing() const noexcept { return (word() >> 24) == nondestructingByte; }
    bool qorMarkedForDeletion() const noexcept { return (word() & markedBit) != 0; }
    void qorMarkedForDeletionIs(bool marked) const noexcept { bitIs(markedBit, marked); }

    /// Takes a reference.
    void qorNewRef() const noexcept {
        U32 const now = word();
        if (now >= leastMarked) [[unlikely]] {
            newRefOfMarked();
        } else {
            countOneMore(now, isSingleThreaded());
        }
    }
    /// Takes a reference, unless the end of the object has begun; whether it did. `isAlone` is
    /// isSingleThreaded(), asked once by who takes many.
    bool qorNewRefUnlessEnding(bool isAlone) const noexcept {
        U32 const now = word();
        if (now >= leastMarked) [[unlikely]] {
            return newRefOfMarkedUnlessEnding();
        }
        countOneMore(now, isAlone);
        return true;
    }
    /// Gives up a reference; the object may be gone afterwards.
    void qorDeleteRef() const {
        U32 const now = word();
        if (now - 2 >= leastMarked - 2) [[unlikely]] {
            deleteRefOfMarked();
        } else if (isSingleThreaded()) [[likely]] {
            word_.store(now - 1, std::memory_order_relaxed);
        } else if (((word_.fetch_sub(1, std::memory_order_acq_rel) - 1) & zeroMask) == 0) {
            handleZeroRef();
        }
    }
    /// Gives up a reference, unless it is the last or the object bears marks; whether it did.
    bool qorDeleteRefOfMany() const noexcept {
        U32 const now = word();
        if (now - 2 >= leastMarked - 2) [[unlikely]] {
            return false;
        }
        if (!isSingleThreaded()) [[unlikely]] {
            return deleteRefOfManyAmongThreads(now);
        }
        word_.store(now - 1, std::memory_order_relaxed);
        return true;
    }
    /// Whether one reference is held now, and no more.
    bool qorIsHeldOnce() const noexcept {
        U32 const now = word();
        return (now & (refsMask - 1)) == 0 && (now & 1) != 0;
    }
    /// The references that are held now.
    U32 qorRefs() const noexcept { return word() & refsMask; }
    /// The whole count word, for tests and diagnosis.
    U32 qorRefWord() const noexcept { return word(); }

    /// Whether weak notifiees that stand on no list watch this object.
    bool qorWeaklyWatched() const noexcept { return (word() & weaklyWatchedBit) != 0; }
    /// Not kept while the object is non-destructing: then it has no end to tell.
    void qorWeaklyWatchedIs(bool watched) const noexcept;

    /// Whether the last reference has gone, and the end is being told or carried out.
    bool qorIsEnding() const noexcept { return (word() & endingBit) != 0; }

    /// Called with an object that ends while weak notifiees may watch it; set by the notification
    /// layer when there is the first of them.
    using WeakWatchersEnd = void (*)(PtrInterface const* object) noexcept;
    static std::atomic<WeakWatchersEnd> weakWatchersEnd;

    static constexpr U32 refsMask = 0x1FFFFFFF;
    static constexpr U32 zeroMask = 0x5FFFFFFF;
    static constexpr U32 weaklyWatchedBit = 0x20000000;
    static constexpr U32 endingBit = 0x40000000;
    static constexpr U32 markedBit = 0x80000000;
    static constexpr U32 nondestructingByte = 0x1F;
    static constexpr U32 mostNondestructing = 0x00FFFFFF;  // references that are remembered

  private:
    // From here on the word bears marks or is that of a non-destructing object.
    static constexpr U32 leastMarked = nondestructingByte << 24;

    void countOneMore(U32 now, bool isAlone) const noexcept {
        if (isAlone) [[likely]] {
            word_.store(now + 1, std::memory_order_relaxed);
        } else {
            word_.fetch_add(1, std::memory_order_relaxed);
        }
    }
    void newRefOfMarked() const noexcept;
    bool newRefOfMarkedUnlessEnding() const noexcept;
    // Also of the last reference.
    void deleteRefOfMarked() const;
    bool deleteRefOfManyAmongThreads(U32 now) const noexcept;
    void handleZeroRef() const;
    void tellWeakWatchers() const noexcept;
    U32 afterSaving() const noexcept;
    U32 word() const noexcept { return word_.load(std::memory_order_relaxed); }
    void bitIs(U32 bit, bool on) const noexcept {
        if (on) {
            word_.fetch_or(bit, std::memory_order_relaxed);
        } else {
            word_.fetch_and(~bit, std::memory_order_relaxed);
        }
    }

    mutable std::atomic<U32> word_;
};

}  // namespace Qor

#endif
