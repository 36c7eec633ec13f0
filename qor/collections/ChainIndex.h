// What keeps a map quick when its keys fall into one bucket, by chance or because somebody chose
// them so: every so many members of a long chain stand here too, in the order of the map, and a
// search begins at the last one in front of its key instead of at the head of the chain.
//
// Posts are set along what a search has walked, so a walk is paid for by the members that came
// since the last one. They follow from the order alone, whatever the number of buckets. A map
// without long chains has no index, and asks for none before a search has gone a good way.
#ifndef QOR_COLLECTIONS_CHAIN_INDEX_H
#define QOR_COLLECTIONS_CHAIN_INDEX_H

#include <algorithm>
#include <vector>

#include <qor/collections/HashMapGeneric.h>

namespace Qor {

class ChainIndex {
  public:
    /// Members from one post to the next.
    static constexpr U32 distance = 32;

    /// The last post in front of `target`, or null. `target.isBehind(post)` says which are.
    template <class Target>
    PtrInterface* before(Target const& target) const {
        auto const at = std::partition_point(posts_.begin(), posts_.end(), [&](PtrInterface* post) {
            return !target.isBehind(post);
        });
        return at == posts_.end() ? nullptr : *at;
    }
    /// Sets posts, in the order of the map, all of which belong between the same two.
    void add(HashMapVTableGeneric const& table, std::vector<PtrInterface*> const& posts);
    /// A member leaves the map.
    void forget(HashMapVTableGeneric const& table, PtrInterface* member) noexcept;

  private:
    std::vector<PtrInterface*> posts_;  // the last one first: a removal of all takes from the end
};

/// The posts that a search sets along its way. Where there is no memory for one, it goes without.
class PostsOnTheWay {
  public:
    void step(PtrInterface* member) noexcept;
    /// Whether the way was long enough to be worth them.
    bool areWanted() const noexcept { return posts_.size() > 1; }
    std::vector<PtrInterface*> const& posts() const noexcept { return posts_; }

  private:
    U32 steps_ = 0;
    std::vector<PtrInterface*> posts_;
};

}  // namespace Qor

#endif
