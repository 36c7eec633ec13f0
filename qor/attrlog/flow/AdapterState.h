// The flags of a stream adapter: positions in its state word, PtrInterface::NotifieeConst's
// Qor_BitSet.
#ifndef QOR_ATTRLOG_FLOW_ADAPTERSTATE_H
#define QOR_ATTRLOG_FLOW_ADAPTERSTATE_H

#include <qor/notify/NotifieeConst.h>

namespace Qor {

namespace AdapterState {

using Bits = PtrInterface::NotifieeConst::Qor_BitSet;

constexpr U32 flag(int position) noexcept { return U32{1} << position; }

// A local change is an error.
inline constexpr U32 readOnlyLocal = flag(2);
// What the peer writes is an error.
inline constexpr U32 readOnlyRemote = flag(3);
// A record of the peer is being applied: the next change that is heard of is its echo.
inline constexpr U32 isActive = flag(4);
// A snapshot of the parent has begun and has not announced this child yet.
inline constexpr U32 remountPending = flag(5);
// The adapter does not keep its entity alive.
inline constexpr U32 weakNotifier = flag(6);
// Nothing flows out until the framework lifts it.
inline constexpr U32 flowOutSuspended = flag(8);
// A sync mode is being applied, and changes concern nobody.
inline constexpr U32 syncModeFanOut = flag(13);
// The entity is a copy of the peer's: where both write at once, the peer's word is the last.
inline constexpr U32 isCopy = flag(16);
// The entity stands below another that has an adapter here.
inline constexpr U32 isChild = flag(17);
// No resynchronisation runs: a change goes out at once.
inline constexpr U32 steadyState = flag(20);
// handleAttrFlowOut runs.
inline constexpr U32 handlingScheduledFlowOut = flag(22);
// Something may be half received for the entity; clear, nothing is.
inline constexpr U32 mayHaveFlowIn = flag(24);
// The peer knows of the entity, and needs no announcement.
inline constexpr U32 adapterAnnounced = flag(25);
// Must be set for anything to flow out.
inline constexpr U32 flowOutEnabled = flag(26);

inline constexpr U32 flowOutBlockers = remountPending | flowOutSuspended | isActive;

constexpr bool canFlowOut(U32 word) noexcept {
    return (word & (flowOutBlockers | flowOutEnabled)) == flowOutEnabled;
}

// The flags of a child's adapter, from its parent's.
constexpr Bits ofChild(Bits parent) noexcept {
    constexpr U32 ownToEach = isActive | remountPending | flag(10) | flag(11) | flag(12) | flag(13);
    U32 const inherited = parent.word() & Bits::notificationBitMask().word() & ~ownToEach;
    return Bits(inherited | isChild);
}

// What is replaced from outside, beside what stays.
constexpr Bits replaced(Bits now, Bits fresh) noexcept {
    U32 const mask = Bits::notificationBitMask().word();
    return Bits((fresh.word() & mask) | (now.word() & ~mask));
}

}  // namespace AdapterState

}  // namespace Qor

#endif
