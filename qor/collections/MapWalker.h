// What a map knows of each iterator over it. An iterator borrows the member that it stands on: as
// long as that is in the map, the map's reference keeps it alive and a step changes no count. When
// the member is taken out, the map gives the iterators that stand on it references of their own;
// when the map itself ends, it makes them forget it. So an iterator outlives anything, and its
// steps read and write nothing but links.
//
// Entering and leaving the map's list of walkers is a handful of stores. Belongs to the map's
// thread.
#ifndef QOR_COLLECTIONS_MAP_WALKER_H
#define QOR_COLLECTIONS_MAP_WALKER_H

#include <utility>

#include <qor/collections/HashMapGeneric.h>

namespace Qor {

class MapWalker {
  protected:
    MapWalker() = default;
    /// Enters the walkers of `map`, which may be null, and stands nowhere.
    explicit MapWalker(HashMapGeneric const* map) noexcept : map_(map) { enter(); }
    MapWalker(MapWalker const& other) noexcept
        : map_(other.map_),
          current_(other.current_),
          isLeft_(other.isLeft_),
          bucket_(other.bucket_) {
        hold();
        enter();
    }
    MapWalker& operator=(MapWalker const& other) {
        if (this != &other) {
            PtrInterface* const held = isLeft_ ? current_ : nullptr;
            leave();
            map_ = other.map_;
            current_ = other.current_;
            isLeft_ = other.isLeft_;
            bucket_ = other.bucket_;
            hold();
            enter();
            if (held) {
                letGo(held);
            }
        }
        return *this;
    }
    ~MapWalker() {
        leave();
        if (isLeft_) [[unlikely]] {
            letGo(current_);
        }
    }

    /// Null without a map, and when the map has ended.
    HashMapGeneric const* walkedMap() const noexcept { return map_; }
    PtrInterface* current() const noexcept { return current_; }
    /// Whether the member that it stands on has left the map since it came there: that member is
    /// held, and no link leads on from it.
    bool isLeft() const noexcept { return isLeft_; }
    /// Stands on `member`, which is in the map in that bucket, or nowhere. What it stood on may end
    /// in this call.
    void standOn(PtrInterface* member, I32 bucket) {
        bucket_ = bucket;
        PtrInterface* const old = std::exchange(current_, member);
        if (std::exchange(isLeft_, false)) [[unlikely]] {
            letGo(old);
        }
    }
    /// Steps on from a member that is in the map to the next one, or nowhere.
    void stepTo(PtrInterface* member) noexcept { current_ = member; }
    /// The bucket that it stands in. In a map that is one chain it is where the walk began.
    I32& bucket() noexcept { return bucket_; }
    I32 bucket() const noexcept { return bucket_; }

  private:
    friend class HashMapGeneric;

    void enter() noexcept {
        if (map_) {
            next_ = map_->walkers_;
            back_ = &map_->walkers_;
            if (next_) {
                next_->back_ = &next_;
            }
            map_->walkers_ = this;
        }
    }
    void leave() noexcept {
        if (map_) {
            *back_ = next_;
            if (next_) {
                next_->back_ = back_;
            }
        }
    }
    void hold() const noexcept {
        if (isLeft_) {
            current_->qorNewRef();
        }
    }
    // Its end may run any code, so this comes last. Out of line: it is rare.
    QOR_EXPORT static void letGo(PtrInterface* held);
    // `member` leaves the map whose first walker is `first`.
    QOR_EXPORT static void memberLeaves(MapWalker* first, PtrInterface* member) noexcept;

    HashMapGeneric const* map_ = nullptr;
    PtrInterface* current_ = nullptr;
    bool isLeft_ = false;
    I32 bucket_ = -1;
    MapWalker* next_ = nullptr;
    MapWalker** back_ = nullptr;
};

}  // namespace Qor

#endif
