// An ordered intrusive map: members stand in ascending (reversed hash, key) order in and across
// buckets. The link lives in the member, so linking never allocates. A member is in one map at a
// time. The map holds a reference on each member, and an iterator keeps the member that it stands
// on when that is removed: so it survives insertion, removal, growth and the end of the map, and
// meets each member that stays exactly once. Not thread-safe.
//
// REQUIRES of Member: fwkKey() the key, fwkHash() its reversed hash, fwkHmNext() and fwkHmNextIs().
#ifndef QOR_COLLECTIONS_HASH_MAP_H
#define QOR_COLLECTIONS_HASH_MAP_H

#include <utility>

#include <qor/collections/HashMapGeneric.h>
#include <qor/collections/HashMapKey.h>
#include <qor/core/Assert.h>

namespace Qor {

/// The generic code's view of the members of one map type.
template <class Member, class Key>
class HashMapVTable final : public HashMapVTableGeneric {
  public:
    U32 hash(PtrInterface const* member) const override { return of(member)->fwkHash(); }
    bool keyEquals(void const* key, PtrInterface const* member) const override {
        return *static_cast<Key const*>(key) == of(member)->fwkKey();
    }
    bool keyLessThan(void const* key, PtrInterface const* member) const override {
        return !key || *static_cast<Key const*>(key) < of(member)->fwkKey();
    }
    void setNext(PtrInterface* member, PtrInterface* next) const override {
        static_cast<Member*>(member)->fwkHmNextIs(static_cast<Member*>(next));
    }
    PtrInterface* next(PtrInterface const* member) const override {
        return of(member)->fwkHmNext();
    }
    bool isBefore(PtrInterface const* member, U32 hash, void const* key) const override {
        return precedes(*of(member), hash, *static_cast<Key const*>(key));
    }
    bool standsBefore(PtrInterface const* member, PtrInterface const* other) const override {
        return precedes(*of(member), of(other)->fwkHash(), of(other)->fwkKey());
    }
    void headsOf(PtrInterface* first, PtrInterface** heads, U32 count) const override {
        for (auto* at = static_cast<Member*>(first); at; at = at->fwkHmNext()) {
            PtrInterface*& head = heads[HashMapGeneric::bucketIndex(at->fwkHash(), count)];
            head = head ? head : at;
        }
    }
    void cut(PtrInterface* first, U32 bit, PtrInterface** heads) const override {
        auto* at = static_cast<Member*>(first);
        Member* last = nullptr;
        while (at && (at->fwkHash() & bit) == 0) {
            last = std::exchange(at, at->fwkHmNext());
        }
        heads[0] = last ? first : nullptr;
        heads[1] = at;
        if (at && last) {
            last->fwkHmNextIs(nullptr);
        }
    }

  private:
    static Member const* of(PtrInterface const* member) {
        return static_cast<Member const*>(member);
    }
    // In an order that can leave two keys undecided, none of one hash precedes another.
    static bool precedes(Member const& member, U32 hash, Key const& key) {
        if constexpr (HashMapKey<Key>::hashIsKey || HashMapKey<Key>::hasTies) {
            return member.fwkHash() < hash;
        } else {
            U32 const its = member.fwkHash();
            return its < hash || (its == hash && member.fwkKey() < key);
        }
    }
};

template <class Member, class Key>
class HashMap : public HashMapGeneric {
  public:
    class IteratorConst;
    class Iterator;
    using KeyTraits = HashMapKey<Key>;

    explicit HashMap(U32 bucketCount = 1) : HashMapGeneric(bucketCount) {}
    ~HashMap() { emptyAllBucketsG(qorVTable()); }

    static HashMapVTable<Member, Key> const& qorVTable() {
        static constinit HashMapVTable<Member, Key> const qorVTable_{};
        return qorVTable_;
    }

    /// The member with that key, or null. Nothing is kept: the result is borrowed.
    Member* member(Key const& key) const { return member(key, KeyTraits::hash(key)); }
    Member* member(Key const& key, U32 hash) const {
        if (isOneChain()) {
            for (Member* at = head(bucketIndex(hash)); at; at = at->fwkHmNext()) {
                U32 const other = at->fwkHash();
                if (other == hash && (KeyTraits::hashIsKey || at->fwkKey() == key)) {
                    return at;
                }
                if (other > hash) {  // and so are all that follow
                    break;
                }
            }
            return nullptr;
        }
        auto* at = static_cast<Member*>(manyBuckets()[bucketIndex(hash)]);
        for (U32 steps = 0; at && !isIts(*at, key, hash); ++steps) {
            if (steps == longChain) [[unlikely]] {
                return memberInLongChain(key, hash);
            }
            at = at->fwkHmNext();
        }
        return at;
    }

    /// The member at which iteration from that key begins: the one with the key, else the next in
    /// the order, else null.
    Member* startAtHash(Key const& key) const {
        U32 const hash = KeyTraits::hash(key);
        auto bucket = static_cast<I32>(bucketIndex(hash));
        Member* at = head(static_cast<U32>(bucket));
        for (U32 steps = 0; at; at = at->fwkHmNext(), ++steps) {
            if (steps == longChain) [[unlikely]] {
                at = static_cast<Member*>(placeInLongChain(qorVTable(), hash, &key).at);
                if (!at) {
                    break;
                }
            }
            U32 const other = at->fwkHash();
            if (hash < other || (hash == other && (at->fwkKey() == key || key < at->fwkKey()))) {
                return at;
            }
        }
        return static_cast<Member*>(findNextBucketG(&bucket));
    }

    /// Links a member whose key is not in the map, and takes a reference on it. Two keys that
    /// compare neither less nor greater both stay. REQUIRES: t->fwkHmNext() == 0
    void newMember(Ptr<Member> const& t, U32 hash) {
        assertThat(t->fwkHmNext() == nullptr, "t->fwkHmNext() == 0", "Qor/HashMap", 328,
                   "newMember");
        U32 const bucket = bucketIndex(hash);
        Member* before = nullptr;
        Member* at = head(bucket);
        for (U32 steps = 0; at && !goesBefore(*t, hash, *at); ++steps) {
            if (steps == longChain) [[unlikely]] {
                Key const& key = t->fwkKey();
                Place const place = placeInLongChain(qorVTable(), hash, &key);
                before = static_cast<Member*>(place.before);
                at = static_cast<Member*>(place.at);
                continue;
            }
            before = at;
            at = at->fwkHmNext();
        }
        t->qorNewRef();
        if (before) {
            t->fwkHmNextIs(at);
            before->fwkHmNextIs(t.ptr());
        } else {
            linkHead(*t, hash, bucket, at);
        }
        linked();
        maybeGrowG(qorVTable());
    }

    /// Unlinks the member with that key and hands it over; null if absent. Tells nobody.
    Ptr<Member> memberDel(Key const& key) {
        Ptr<PtrInterface> out = memberDelG(qorVTable(), KeyTraits::hash(key), &key);
        return Ptr<Member>::adopt(static_cast<Member*>(out.release()));
    }
    /// Unlinks exactly that member; false if it is not in this map. Tells nobody.
    bool deleteMember(Member& member) {
        return deleteMemberG(qorVTable(), member.fwkHash(), &member);
    }
    bool contains(Member const& member) const {
        U32 const hash = member.fwkHash();
        Member const* at = head(bucketIndex(hash));
        for (U32 steps = 0; at && at != &member && at->fwkHash() <= hash; ++steps) {
            if (steps == longChain) [[unlikely]] {
                Key const& key = member.fwkKey();
                at = static_cast<Member const*>(placeInLongChain(qorVTable(), hash, &key).at);
                continue;
            }
            at = at->fwkHmNext();
        }
        return at == &member;
    }

  private:
    static bool isIts(Member const& at, Key const& key, U32 hash) {
        return at.fwkHash() == hash && (KeyTraits::hashIsKey || at.fwkKey() == key);
    }
    [[gnu::noinline]] Member* memberInLongChain(Key const& key, U32 hash) const {
        auto* at = static_cast<Member*>(placeInLongChain(qorVTable(), hash, &key).at);
        // Only keys that tie stand anywhere among those of their hash.
        while (KeyTraits::hasTies && at && at->fwkHash() == hash && !isIts(*at, key, hash)) {
            at = at->fwkHmNext();
        }
        return at && isIts(*at, key, hash) ? at : nullptr;
    }
    Member* head(U32 bucket) const { return static_cast<Member*>(buckets()[bucket]); }
    // Makes `fresh` the head of a bucket whose head so far is `next`.
    void linkHead(Member& fresh, U32 hash, U32 bucket, Member* next) {
        if (isOneChain()) {
            next = linkInChain(fresh, hash, bucket, next);
        }
        fresh.fwkHmNextIs(next);
        buckets()[bucket] = &fresh;
    }
    // Links `fresh` behind the last member of the buckets in front; gives what follows it.
    Member* linkInChain(Member& fresh, U32 hash, U32 bucket, Member* next) {
        I32 const front = bucketBefore(bucket);
        if (front < 0) {
            auto behind = static_cast<I32>(bucket);
            return next ? next : static_cast<Member*>(findNextBucketG(&behind));
        }
        Member* before = head(static_cast<U32>(front));
        next = before->fwkHmNext();
        while (next && next->fwkHash() < hash) {
            before = next;
            next = before->fwkHmNext();
        }
        before->fwkHmNextIs(&fresh);
        return next;
    }
    static bool goesBefore(Member const& fresh, U32 hash, Member const& at) {
        U32 const other = at.fwkHash();
        return hash < other || (hash == other && fresh.fwkKey() < at.fwkKey());
    }
};

}  // namespace Qor

#include <qor/collections/HashMapIterator.h>

#endif
