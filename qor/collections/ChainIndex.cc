#include <qor/collections/ChainIndex.h>

namespace Qor {

void ChainIndex::add(HashMapVTableGeneric const& table, std::vector<PtrInterface*> const& posts) {
    auto const at = std::partition_point(posts_.begin(), posts_.end(), [&](PtrInterface* post) {
        return table.standsBefore(posts.back(), post);
    });
    posts_.insert(at, posts.rbegin(), posts.rend());
}

void ChainIndex::forget(HashMapVTableGeneric const& table, PtrInterface* member) noexcept {
    auto at = std::partition_point(posts_.begin(), posts_.end(), [&](PtrInterface* post) {
        return table.standsBefore(member, post);
    });
    while (at != posts_.end() && !table.standsBefore(*at, member)) {
        at = *at == member ? posts_.erase(at) : at + 1;
    }
}

void PostsOnTheWay::step(PtrInterface* member) noexcept {
    if (++steps_ % ChainIndex::distance != 0) {
        return;
    }
    try {
        posts_.push_back(member);
    } catch (std::bad_alloc const&) {
        posts_.clear();
    }
}

}  // namespace Qor
