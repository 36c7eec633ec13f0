// The iterators of a map. They borrow the member that they stand on until it leaves the map, and
// hold it from then on; see MapWalker. When it has left they find their place again by its key.
#ifndef QOR_COLLECTIONS_HASH_MAP_ITERATOR_H
#define QOR_COLLECTIONS_HASH_MAP_ITERATOR_H

#include <algorithm>
#include <array>
#include <vector>

#include <qor/collections/HashMap.h>
#include <qor/collections/MapWalker.h>

namespace Qor {

// What is kept of a walk that is left, beside the key that it stands on: of keys that tie those of
// the tie that it has met. A member that has gone and come back stands behind them all, so neither
// the place of a key in its tie nor whether the key is there says how far the walk was. While no
// member comes or goes, the walk goes on where it stood without a look at them.
template <class Key, bool hasTies>
struct MetKeys {};

template <class Key>
struct MetKeys<Key, true> {
    /// `hint` is where it is looked for first, and then the place behind: who asks for the keys in
    /// their order finds each at once.
    bool contains(Key const& key, std::size_t& hint) const {
        for (std::size_t i = 0; i < keys.size(); ++i) {
            std::size_t const at = (hint + i) % keys.size();
            if (keys[at] != key) continue;
            hint = at + 1;
            return true;
        }
        return false;
    }
    std::vector<Key> keys;
    PtrInterface* place = nullptr;  // the member it stood on, in a map of that version
    U32 version = 0;
};

// Keys that are ordered by their hash alone may tie: two that collide are neither less nor greater.
// An iterator then remembers which members of the present tie it has met, so that it loses and
// repeats none when the one it stands on is removed. All other key types have nothing to remember.
template <class Member, class Key, bool hasTies>
struct MetTies {
    struct Forgotten {};
    Forgotten step(Member*, Member const*) { return {}; }
    bool isPast(U32) const { return false; }
    void versionIs(U32) {}
};

template <class Member, class Key>
struct MetTies<Member, Key, true> {
    using Forgotten = std::vector<Ptr<Member>>;
    /// What is returned is to go when the step has been made: ends may run any code.
    [[nodiscard]] Forgotten step(Member* from, Member const* to) {
        if (from == to) {
            return {};
        }
        if (!from || !to || from->fwkHash() != to->fwkHash()) {
            before.keys.clear();
            return std::exchange(members, {});
        }
        members.emplace_back(from);
        return {};
    }
    /// Whether the map has changed since: a tied member may have been put back behind.
    bool isPast(U32 now) const { return version != now; }
    void versionIs(U32 now) { version = now; }
    /// Where a member and a key are looked for first. Who asks in their order finds each at once.
    struct Hint {
        std::size_t member = 0;
        std::size_t key = 0;
    };
    bool met(Member const* member, Hint& hint) const {
        if (hint.member < members.size() && members[hint.member].ptr() == member) {
            ++hint.member;
            return true;
        }
        return before.contains(member->fwkKey(), hint.key) ||
               std::any_of(members.begin(), members.end(),
                           [&](Ptr<Member> const& m) { return m.ptr() == member; });
    }
    Forgotten members;
    MetKeys<Key, true> before;  // in front of these, by the walk that this one goes on with
    U32 version = 0;
};

template <class Member, class Key>
class HashMap<Member, Key>::IteratorConst : private MapWalker {
  public:
    using Map = HashMap<Member, Key>;

    IteratorConst() = default;
    /// Stands on the first member of `map`, or at the end of an empty one.
    explicit IteratorConst(Map const* map) : MapWalker(map) { reset(); }
    /// Stands on the member with that key, or on the next in the order.
    IteratorConst(Map const* map, Key const& key) : MapWalker(map) {
        if (Member* start = map->startAtHash(key)) {
            meetTiesBefore(start);
            stand(start);
        }
    }
    /// Goes on with a walk that was left where it stood on `key`. Where nothing was met it begins
    /// at the first member that has the hash of `key`, or at the next in the order.
    IteratorConst(Map const* map, Key const& key, MetKeys<Key, KeyTraits::hasTies> met)
        : MapWalker(map) {
        goOnInTie(KeyTraits::hash(key), std::move(met));
    }
    IteratorConst(IteratorConst const&) = default;
    IteratorConst& operator=(IteratorConst const&) = default;
    virtual ~IteratorConst() = default;

    explicit operator bool() const noexcept { return this->current() != nullptr; }
    /// The member it stands on, borrowed. REQUIRES: not at the end.
    Member* operator->() const noexcept { return stood(); }
    Member& operator*() const noexcept { return *stood(); }
    Ptr<Member> member() const noexcept { return Ptr<Member>(stood()); }
    /// The two members that follow, borrowed: a long walk asks for their memory before it needs it.
    /// Null where there is none, and where it takes more than a look.
    std::array<Member*, 2> ahead() const noexcept {
        Member* const from = stood();
        if (!from || this->isLeft()) return {};
        I32 at = this->bucket();
        Member* const next = memberAfter(*from, at);
        return {next, next ? memberAfter(*next, at) : nullptr};
    }
    /// A copy: the member it stems from may go in the step that follows.
    Key key() const { return stood()->fwkKey(); }
    /// What it takes to go on later, beside key(); it is taken from the iterator, which is to step
    /// no more. REQUIRES: keys that tie
    MetKeys<Key, true> takeMetKeys() {
        MetKeys<Key, true> met = std::move(ties_.before);
        for (auto const& member : ties_.members) met.keys.push_back(member->fwkKey());
        met.version = map()->version();
        met.place = this->isLeft() || ties_.isPast(met.version) ? nullptr : stood();
        return met;
    }

    IteratorConst& operator++() {
        advance();
        return *this;
    }
    /// Back to the first member.
    void reset() {
        stand(nullptr);  // so that nothing counts as met
        I32 bucket = -1;
        Map const* const from = map();
        if (Member* first = from ? static_cast<Member*>(from->findNextBucketG(&bucket)) : nullptr) {
            refresh();
            this->standOn(first, bucket);
        }
    }
    /// Whether it stands on a member whose key is not the empty one of its type.
    virtual bool hasBookmark() const { return *this && !KeyTraits::isEmpty(stood()->fwkKey()); }

  protected:
    using MapTies = MetTies<Member, Key, KeyTraits::hasTies>;

    /// Null when it has ended.
    Map const* map() const noexcept { return static_cast<Map const*>(this->walkedMap()); }
    /// Steps to the member after the one it stands on.
    void advance() {
        Member* const from = stood();
        if (!from) {
            return;
        }
        if (this->isLeft() || ties_.isPast(map()->version())) [[unlikely]] {
            findAgain();
            return;
        }
        Member* next = from->fwkHmNext();
        if (!next) {
            // The bucket is carried on and not derived from the member: so the next head can be
            // fetched before this member's memory has arrived.
            next = static_cast<Member*>(map()->headAfterG(&this->bucket()));
        }
        [[maybe_unused]] auto const past = ties_.step(from, next);
        this->stepTo(next);
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
        return static_cast<Member*>(map()->findNextG(Map::qorVTable(), from, &bucket, &key));
    }
    /// Stays where it is, in a map that has changed in ways that do not concern its place.
    void refresh() { ties_.versionIs(map()->version()); }
    void stand(Member* member) {
        [[maybe_unused]] auto const past = ties_.step(stood(), member);
        arrive(member);
    }
    /// Whether the member it stands on has left the map, or the map has ended.
    bool standsOutside() const noexcept { return this->isLeft(); }

  private:
    Member* memberAfter(Member const& member, I32& at) const noexcept {
        Member* const next = member.fwkHmNext();
        return next ? next : static_cast<Member*>(map()->headAfterG(&at));
    }
    Member* stood() const noexcept { return static_cast<Member*>(this->current()); }
    void arrive(Member* member) {
        if (member) {
            refresh();
            this->standOn(member, static_cast<I32>(map()->bucketIndex(member->fwkHash())));
        } else {
            this->standOn(nullptr, -1);
        }
    }
    // Out of line, so that the step of a walk stays short.
    [[gnu::noinline]] void findAgain() { stand(map() ? successor(stood()) : nullptr); }

    Member* tieHead(U32 hash) const {
        Member* at = map()->head(map()->bucketIndex(hash));
        while (at && at->fwkHash() < hash) {
            at = at->fwkHmNext();
        }
        return at;
    }
    Member* nextTied(Member const* from) const {
        U32 const hash = from->fwkHash();
        Member* at = tieHead(hash);
        typename MapTies::Hint hint;
        while (at && at->fwkHash() == hash && (at == from || ties_.met(at, hint))) {
            at = at->fwkHmNext();
        }
        return at && at->fwkHash() == hash ? at : nullptr;
    }
    // What came meanwhile stands at the tie's end, so the first that was not met comes next.
    void goOnInTie(U32 hash, MetKeys<Key, KeyTraits::hasTies> met) {
        if constexpr (KeyTraits::hasTies) {
            if (met.place && met.version == map()->version()) {
                ties_.before = std::move(met);
                return arrive(static_cast<Member*>(met.place));
            }
        }
        Member* at = tieHead(hash);
        if constexpr (KeyTraits::hasTies) {
            auto& before = ties_.before.keys;
            for (std::size_t hint = 0; isTied(at, hash) && met.contains(at->fwkKey(), hint);) {
                before.push_back(std::exchange(at, at->fwkHmNext())->fwkKey());
            }
            if (!isTied(at, hash)) before.clear();
        }
        auto bucket = static_cast<I32>(map()->bucketIndex(hash));
        arrive(at ? at : static_cast<Member*>(map()->findNextBucketG(&bucket)));
    }
    static bool isTied(Member const* member, U32 hash) {
        return member && member->fwkHash() == hash;
    }
    void meetTiesBefore(Member* start) {
        if constexpr (KeyTraits::hasTies) {
            for (Member* at = tieHead(start->fwkHash()); at && at != start; at = at->fwkHmNext()) {
                ties_.members.emplace_back(at);
            }
            arrive(ties_.members.empty() ? nullptr : ties_.members.back().ptr());
        }
    }

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
        deleted_ = false;
        Base::reset();
    }
    bool hasBookmark() const override { return !deleted_ && Base::hasBookmark(); }

    /// Removes the member it stands on and tells so. The iterator has moved on to the next member
    /// when the telling begins, and the step that follows stays there: what the telling adds in
    /// front of that member is not met, what it adds behind it is. A member that is not in the map
    /// any more is passed over and not told again.
    void del() {
        Ptr<Member> const gone = this->member();
        if (deleted_ || !gone) {
            return;
        }
        Base::advance();
        deleted_ = true;
        remove(gone);
    }
    /// Removes all members, those too that are added while it is told: from where it stands to the
    /// end, and then from the first, until none is left. REQUIRES: the map outlives the call.
    void deleteAll() {
        Map& map = mutableMap();
        BulkDeleteAnchor const bulk(map);
        if (deleted_) {
            advance();
        }
        for (;;) {
            while (*this) {
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
    virtual void deleteNotify(Ptr<Member> const& member) const {
        deleteNotify(Ptr<Member const>(member));
    }

    void advance() {
        if (!std::exchange(deleted_, false) || this->standsOutside()) {
            Base::advance();
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
        if (!this->map()) {
            return;
        }
        bool const removed = mutableMap().deleteMember(*gone);
        this->refresh();
        if (removed) {
            deleteNotify(gone);
        }
    }

    bool deleted_ = false;  // del() has moved it on already
};

}  // namespace Qor

#endif
