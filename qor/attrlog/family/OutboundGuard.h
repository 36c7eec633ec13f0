// How every outbound handler of an adapter begins, once for all of them: whether the change
// concerns the peer at all, and whether it may go out. Whatever way the handler ends, the mark of a
// record that is being applied is cleared: so the one echo of a record is swallowed here.
#ifndef QOR_ATTRLOG_FAMILY_OUTBOUNDGUARD_H
#define QOR_ATTRLOG_FAMILY_OUTBOUNDGUARD_H

#include <qor/attrlog/flow/Demuxer.h>

namespace Qor {

class OutboundGuard {
  public:
    [[gnu::always_inline]] explicit OutboundGuard(Entity::QorNboAttrLogSa& adapter, AttributeId id,
                                                  bool isChild = false)
        : adapter_(adapter) {
        U32 const word = adapter.state().word();
        wasActive_ = (word & AdapterState::isActive) != 0;
        if ((word & AdapterState::syncModeFanOut) != 0) return;
        if (!wasActive_ && comesIn(adapter, id)) return;
        clears_ = true;
        isNothingOwed_ = true;
        bool const isLetThrough = isChild && wasActive_;
        mayGo_ = (AdapterState::canFlowOut(word) || isLetThrough) && adapter.nboAttrLogOut();
    }
    ~OutboundGuard() {
        if (clears_) adapter_.flagIs(AdapterState::isActive, false);
    }
    OutboundGuard(OutboundGuard const&) = delete;
    OutboundGuard& operator=(OutboundGuard const&) = delete;

    /// Whether the handler goes on; a read-only entity raises ReadOnlyException here.
    bool mayGo(char const* attributeName) const {
        if (!mayGo_) return false;
        if (adapter_.has(AdapterState::readOnlyLocal) && !adapter_.convertedToWritable(false))
            [[unlikely]] {
            adapter_.doThrowReadOnly(attributeName);
        }
        return true;
    }
    /// The same for a child: what the peer announced may come although the entity is read-only.
    bool childMayGo(char const* attributeName) const {
        return wasActive_ ? mayGo_ : mayGo(attributeName);
    }
    /// What a handler that does not go on answers.
    bool isNothingOwed() const noexcept { return isNothingOwed_; }
    /// The change is that of a record that is being applied.
    bool wasActive() const noexcept { return wasActive_; }
    Ptr<NboAttrLog::Out> const& out() const noexcept { return adapter_.nboAttrLogOut(); }

  private:
    static bool comesIn(Entity::QorNboAttrLogSa const& adapter, AttributeId id) {
        auto const* const demuxer = adapter.qorRawDemuxer();
        return demuxer && demuxer->hasFlowsIn() && adapter.handlingFlowInFor(id);
    }

    Entity::QorNboAttrLogSa& adapter_;
    bool wasActive_;
    bool clears_ = false;
    bool isNothingOwed_ = false;
    bool mayGo_ = false;
};

}  // namespace Qor

#endif
