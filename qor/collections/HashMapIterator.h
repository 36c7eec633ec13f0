// The iterators of a map. Both hold a reference on the member they stand on; when the map has
// changed since the last step they find their place again by that member's key.
#ifndef QOR_COLLECTIONS_HASH_MAP_ITERATOR_H
#define QOR_COLLECTIONS_HASH_MAP_ITERATOR_H

#include <algorithm>
#include <vector>

#include <qor/collections/HashMap.h>

namespace Qor {

// Keys that are ordered by their hash alone may tie: two that collide are neither less nor greater.
// An iterator then remembers which members of the present tie it has met, so that it loses and
// repeats none when the one it stands on is removed. All other key types have nothing to remember.
template <class Member, bool hasTies>
struct MetTies {
    void step(Member const*, Member const*) {}
    bool met(Member const*) const { return true; }
};

template <class Member>
struct MetTies<Member, true> {
    void step(Member* from, Member const* to) {
        if (from == to) {
            return;
        }
        if (!from || !to || from->fwkHash() != to->fwkHash()) {
            members.clear();
        } else {
            members.emplace_back(from);
        }
    }
    bool met(Member const* member) const {
        return std::any_of(members.begin(), members.end(),
                           [&](Ptr<Member> const& m) { return m.ptr() == member; });
    }
    std::vector<Ptr<Member>> members;
};

template <class Member, class Key>
class HashMap<Member, Key>::IteratorConst {
  public:
    using Map = HashMap<Member, Key>;

    IteratorConst() = default;
    /// Stands on the first member of `map`, or at the end of an empty one.
    explicit IteratorConst(Map const* map) : map_(map) { reset(); }
    /// Stands on the member with that key, or on the next in the order.
    IteratorConst(Map const* map, Key const& key) : map_(map) {
        if (Member* start = map->startAtHash(key)) {
            meetTiesBefore(start);
            stand(start);
        }
    }
    IteratorConst(IteratorConst const&) = default;
    IteratorConst& operator=(IteratorConst const&) = default;
    IteratorConst(IteratorConst&&) noexcept = default;
    IteratorConst& operator=(IteratorConst&&) = default;
    virtual ~IteratorConst() = default;

    explicit operator bool() const noexcept { return static_cast<bool>(current_); }
    /// The member it stands on. REQUIRES: not at the end.
    Member* operator->() const noexcept { return current_.ptr(); }
    Ptr<Member> const& member() const noexcept { return current_; }
    /// A copy: the member it stems from may go in the step that follows.
    Key key() const { return current_->fwkKey(); }

    IteratorConst& operator++() {
        advance();
        return *this;
    }
    /// Back to the first member.
    void reset() {
        current_ = nullptr;  // so that nothing counts as met
        I32 bucket = -1;
        stand(map_ ? static_cast<Member*>(map_->findNextBucketG(&bucket)) : nullptr);
    }
    /// Whether it stands on a member whose key is not the empty one of its type.
    virtual bool hasBookmark() const { return current_ && !KeyTraits::isEmpty(current_->fwkKey()); }

  protected:
    using MapTies = MetTies<Member, KeyTraits::hasTies>;

    Map const* map() const noexcept { return map_; }
    /// Steps to the member after the one it stands on.
    void advance() {
        if (!current_) {
            return;
        }
        if (versionSeen_ != map_->version()) {
            stand(successor(current_.ptr()));
        } else if (Member* next = current_->fwkHmNext()) {
            ties_.step(current_.ptr(), next);
            current_ = next;
        } else {
            // The bucket is carried on and not derived from the member: so the next head can be
            // fetched before this member's memory has arrived.
            next = static_cast<Member*>(map_->findNextBucketG(&bucket_));
            ties_.step(current_.ptr(), next);
            current_ = next;
            versionSeen_ = next ? versionSeen_ : 0;
        }
    }
    /// The first member after `from`, which need not be in the map any more.
    Member* successor(Member* from) const {
        if constexpr (KeyTraits::hasTies) {
            if (Member* tied = nextTied(from)) {
                return tied;
            }
        }
        I32 bucket = -1;
        Key const key = from->fwkKey();
        return static_cast<Member*>(map_->findNextG(Map::qorVTable(), from, &bucket, &key));
    }
    /// Stays where it is, in a map that has changed in ways that do not concern its place.
    void refresh() {
        versionSeen_ = current_ ? map_->version() : 0;
        bucket_ = current_ ? static_cast<I32>(map_->bucketIndex(current_->fwkHash())) : -1;
    }
    void stand(Member* member) {
        ties_.step(current_.ptr(), member);
        current_ = member;
        refresh();
    }
    /// What was met of the present tie.
    MapTies const& ties() const noexcept { return ties_; }
    /// Goes back to a member that it stood on, with what was met then, and from there to its
    /// successor.
    void standAfter(Ptr<Member> const& from, MapTies met) {
        ties_ = std::move(met);
        current_ = from;
        stand(successor(from.ptr()));
    }

  private:
    Member* tieHead(U32 hash) const {
        Member* at = map_->head(map_->bucketIndex(hash));
        while (at && at->fwkHash() < hash) {
            at = at->fwkHmNext();
        }
        return at;
    }
    Member* nextTied(Member const* from) const {
        U32 const hash = from->fwkHash();
        Member* at = tieHead(hash);
        while (at && at->fwkHash() == hash && (at == from || ties_.met(at))) {
            at = at->fwkHmNext();
        }
        return at && at->fwkHash() == hash ? at : nullptr;
    }
    void meetTiesBefore(Member* start) {
        if constexpr (KeyTraits::hasTies) {
            for (Member* at = tieHead(start->fwkHash()); at && at != start; at = at->fwkHmNext()) {
                ties_.members.emplace_back(at);
            }
            current_ = ties_.members.empty() ? nullptr : ties_.members.back();
        }
    }

    U32 versionSeen_ = 0;
    I32 bucket_ = -1;
    Map const* map_ = nullptr;
    Ptr<Member> current_;
    [[no_unique_address]] MapTies ties_;
};

template <class Member, class Key>
class HashMap<Member, Key>::Iterator : public HashMap<Member, Key>::IteratorConst {
  public:
    using Base = typename HashMap<Member, Key>::IteratorConst;
    using Map = HashMap<Member, Key>;

    Iterator() = default;
    explicit Iterator(Map* map) : Base(map) {}
    Iterator(Map* map, Key const& key) : Base(map, key) {}

    Iterator& operator++() {
        advance();
        return *this;
    }
    void reset() {
        deleted_ = nullptr;
        Base::reset();
    }
    bool hasBookmark() const override { return !deleted_ && Base::hasBookmark(); }

    /// Removes the member it stands on and tells so. The iterator has moved on to the next member
    /// when the telling begins, and the step that follows stays there; what the telling changes
    /// behind the removed member is still met. A member that is not in the map any more is passed
    /// over and not told again.
    void del() {
        if (deleted_ || !this->member()) {
            return;
        }
        Ptr<Member> const gone = this->member();
        tiesAtRemoval_ = this->ties();
        Base::advance();
        deleted_ = gone;
        remove(gone);
    }
    /// Removes all members, those too that are added while it is told: from where it stands to the
    /// end, and then from the first, until none is left.
    void deleteAll() {
        Map& map = mutableMap();
        BulkDeleteAnchor const bulk(map);
        if (deleted_) {
            advance();
        }
        for (;;) {
            while (this->member()) {
                del();
                advance();
            }
            if (map.size() == 0) {
                return;
            }
            reset();
        }
    }

  protected:
    /// Tells that `member` was removed.
    virtual void deleteNotify(Ptr<Member const> const& member) const { static_cast<void>(member); }
    virtual void deleteNotify(Ptr<Member> const& member) {
        std::as_const(*this).deleteNotify(Ptr<Member const>(member));
    }

    void advance() {
        if (!deleted_) {
            Base::advance();
            return;
        }
        Ptr<Member> const gone = std::exchange(deleted_, nullptr);
        if (seenAfterRemoval_ != this->map()->version()) {
            Base::standAfter(gone, std::exchange(tiesAtRemoval_, {}));
        }
    }

  private:
    // Puts the shrinking off to the end of a bulk removal, of the outermost if they nest.
    struct BulkDeleteAnchor {
        explicit BulkDeleteAnchor(Map& m) : map(m), within(m.bulkDelete()) {
            map.bulkDeleteIs(true);
        }
        ~BulkDeleteAnchor() {
            map.bulkDeleteIs(within);
            map.maybeShrinkG(Map::qorVTable());
        }
        BulkDeleteAnchor(BulkDeleteAnchor const&) = delete;
        BulkDeleteAnchor& operator=(BulkDeleteAnchor const&) = delete;
        Map& map;
        bool within;
    };

    Map& mutableMap() const { return const_cast<Map&>(*this->map()); }
    void remove(Ptr<Member> const& gone) {
        bool const removed = mutableMap().deleteMember(*gone);
        seenAfterRemoval_ = this->map()->version();
        this->refresh();
        if (removed) {
            deleteNotify(gone);
        }
    }

    Ptr<Member> deleted_;  // removed by del(), and its successor is where the iterator stands
    U32 seenAfterRemoval_ = 0;
    [[no_unique_address]] typename Base::MapTies tiesAtRemoval_;
};

}  // namespace Qor

#endif
