// What is half received on one connection, by entity id. The newest stands beside the table: nearly
// all are snapshots that end before another begins, and need not be entered. One that has ended is
// kept for the next.
#ifndef QOR_ATTRLOG_FLOW_FLOWSIN_H
#define QOR_ATTRLOG_FLOW_FLOWSIN_H

#include <qor/attrlog/flow/FlowIn.h>

namespace Qor {

namespace NboAttrLog {

class FlowsIn {
  public:
    bool isEmpty() const noexcept { return !newest_ && others_.size() == 0; }
    // Borrowed, or null.
    FlowIn* flow(EntityId const& id) const noexcept {
        if (isNewest(id)) return newest_.ptr();
        return others_.size() != 0 ? others_.member(id) : nullptr;
    }
    // REQUIRES: there is none of that id
    FlowIn::Ptr const& newFlow(EntityId const& id) {
        if (newest_) others_.newMember(newest_, newest_->fwkHash());
        newest_ = spare_ ? std::move(spare_) : make<FlowIn>(id);
        newest_->restart(id);
        return newest_;
    }
    // Done with what flowDel() handed over.
    void giveBack(FlowIn::Ptr&& gone) noexcept {
        if (gone->qorRefs() != 1) return;
        gone->restart({});
        spare_ = std::move(gone);
    }
    // Hands it over; null if there is none.
    FlowIn::Ptr flowDel(EntityId const& id) {
        if (isNewest(id)) return std::move(newest_);
        return others_.size() != 0 ? others_.memberDel(id) : nullptr;
    }
    // The visit may delete the one whose id it is told.
    template <class Visit>
    void forEachId(Visit const& visit) {
        if (newest_) visit(EntityId(newest_->fwkKey()));
        for (HashMap<FlowIn, EntityId>::IteratorConst at(&others_); at; ++at) {
            visit(EntityId(at.member()->fwkKey()));
        }
    }
    void deleteAll() {
        newest_ = nullptr;
        spare_ = nullptr;
        others_.emptyAllBucketsG(HashMap<FlowIn, EntityId>::qorVTable());
    }

  private:
    bool isNewest(EntityId const& id) const noexcept { return newest_ && newest_->fwkKey() == id; }

    FlowIn::Ptr newest_;
    FlowIn::Ptr spare_;
    HashMap<FlowIn, EntityId> others_;
};

}  // namespace NboAttrLog

}  // namespace Qor

#endif
