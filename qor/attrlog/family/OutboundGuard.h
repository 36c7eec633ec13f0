// How every outbound handler of an adapter begins, once for all of them: whether the change
// concerns the peer at all, and whether it may go out. Whatever way the handler ends, the mark of a
// record that is being applied is cleared: so the one echo of a record is swallowed here.
#ifndef QOR_ATTRLOG_FAMILY_OUTBOUNDGUARD_H
#define QOR_ATTRLOG_FAMILY_OUTBOUNDGUARD_H

#include <qor/attrlog/flow/Demuxer.h>

namespace Qor {

/// Clears the mark of a record that is being applied, whatever way its scope is left.
class ClearIsActiveAnchor {
  public:
    explicit ClearIsActiveAnchor(StreamAdapter& adapter, bool clears = true) noexcept
        : adapter_(adapter), clears_(clears) {}
    ~ClearIsActiveAnchor() {
        if (clears_) adapter_.flagIs(AdapterState::isActive, false);
    }
    ClearIsActiveAnchor(ClearIsActiveAnchor const&) = delete;
    ClearIsActiveAnchor& operator=(ClearIsActiveAnchor const&) = delete;

    bool clears() const noexcept { return clears_; }

  private:
    StreamAdapter& adapter_;
    bool const clears_;
};

class OutboundGuard {
  public:
    [[gnu::always_inline]] explicit OutboundGuard(Entity::QorNboAttrLogSa& adapter, AttributeId id,
                                                  bool isChild = false)
        : adapter_(adapter), wasActive_(adapter.isActive()), anchor_(adapter, concerns(id)) {
        U32 const word = adapter.state().word();
        bool const isLetThrough = isChild && wasActive_;
        mayGo_ = anchor_.clears() && (AdapterState::canFlowOut(word) || isLetThrough) &&
                 adapter.nboAttrLogOut();
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
    bool isNothingOwed() const noexcept { return anchor_.clears(); }
    /// The change is that of a record that is being applied.
    bool wasActive() const noexcept { return wasActive_; }
    Ptr<NboAttrLog::Out> const& out() const noexcept { return adapter_.nboAttrLogOut(); }

  private:
    /// Whether the change is anything to the peer: not while the sync mode is applied, nor where
    /// its own text replaces what has changed.
    bool concerns(AttributeId id) const {
        if (adapter_.has(AdapterState::syncModeFanOut)) return false;
        return wasActive_ || !comesIn(adapter_, id);
    }
    static bool comesIn(Entity::QorNboAttrLogSa const& adapter, AttributeId id) {
        auto const* const demuxer = adapter.qorRawDemuxer();
        return demuxer && demuxer->hasFlowsIn() && adapter.handlingFlowInFor(id);
    }

    Entity::QorNboAttrLogSa& adapter_;
    bool const wasActive_;
    ClearIsActiveAnchor const anchor_;
    bool mayGo_;
};

}  // namespace Qor

#endif
