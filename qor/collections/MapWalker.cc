#include <qor/collections/MapWalker.h>

namespace Qor {

void MapWalker::letGo(PtrInterface* held) { held->qorDeleteRef(); }

void MapWalker::memberLeaves(MapWalker* first, PtrInterface* member) noexcept {
    for (MapWalker* at = first; at; at = at->next_) {
        if (at->current_ == member && !at->isLeft_) {
            at->isLeft_ = true;
            at->hold();
        }
    }
}

}  // namespace Qor
