#include <ovsdb/mirror/MacRefs.h>

#include <vgw/values/MacVniPair.h>

namespace Ovsdb {
namespace {

// Addresses and VNIs are the writer's choice: a fixed mixing that spreads them all is enough, since
// the locator's address in memory, which nobody outside knows, is part of it.
std::uint64_t mixed(std::uint64_t word) {
    word = (word ^ word >> 32) * 0xD6E8FEB86659FD93U;
    return word ^ word >> 32;
}

}  // namespace

std::size_t MacRefs::Hash::operator()(MacRef const& ref) const {
    std::uint64_t const place = reinterpret_cast<std::uintptr_t>(ref.locator) * 0x9E3779B97F4A7C15U;
    std::uint64_t const pair =
        ref.mac.number() << 16 ^ std::uint64_t{ref.vni.value()} << 1 ^ (ref.multicast ? 1U : 0U);
    return static_cast<std::size_t>(mixed(place ^ mixed(pair)));
}

void MacRefs::touch(MacRef const& ref) {
    if (ref.touched) return;
    ref.touched = true;
    ref.before = ref.count;
    touched_.push_back(&ref);
}

MacRef const* MacRefs::take(LocatorNode& locator, Kelp::EthAddr const& mac, Vxlan::Vni vni,
                            bool multicast) {
    MacRef key;
    key.locator = &locator;
    key.mac = mac;
    key.vni = vni;
    key.multicast = multicast;
    MacRef const& ref = *refs_.insert(key).first;
    touch(ref);
    ++ref.count;
    return &ref;
}

void MacRefs::drop(MacRef const* ref) {
    touch(*ref);
    --ref->count;
}

void MacRefs::tellGone() {
    for (MacRef const* const ref : touched_) {
        if (ref->before == 0 || ref->count != 0 || !ref->locator->row) continue;
        Vgw::MacVniPair const pair(ref->mac, ref->vni);
        if (ref->multicast)
            ref->locator->row->mcastMacRefDel(pair);
        else
            ref->locator->row->ucastMacRefDel(pair);
    }
}

// Pairs that were there before are set again: the locator's row may be a new one.
void MacRefs::tellPresent() {
    for (MacRef const* const ref : touched_) {
        ref->touched = false;
        if (ref->count == 0) {
            refs_.erase(*ref);
        } else if (ref->locator->row) {
            Vgw::MacVniPair const pair(ref->mac, ref->vni);
            if (ref->multicast)
                ref->locator->row->mcastMacRefIs(pair, true);
            else
                ref->locator->row->ucastMacRefIs(pair, true);
        }
    }
    touched_.clear();
}

}  // namespace Ovsdb
