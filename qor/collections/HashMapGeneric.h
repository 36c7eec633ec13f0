// The bucket logic of all maps, on members of unknown class. A map is an array of chains; the
// chains run through the members themselves. The bucket of a member is the top bits of its key's
// hash, and every chain ascends by (hash, key), so that all buckets in turn ascend too, whatever
// their number: this is the iteration order. Doubling cuts each chain in two and halving joins two
// neighbours; neither reorders anything.
//
// While there are few buckets the chains are one: the last member of a bucket links to the first of
// the next, so that a walk is that of a plain list. In larger maps each chain ends with its bucket,
// since the end of the chain in front would be one more line of memory for an insertion to fetch.
//
// A link owns one reference on the member it points to. Each member in a map has exactly one link
// to it, its predecessor's or its bucket's, so moving members between chains changes no count.
// While there is one bucket, it stands in the map itself: an empty map owns no memory.
//
// Keys that fall into one bucket, whatever their number, cost a search in an index of their chain;
// see ChainIndex. Only keys that tie, being equal in hash and order, are gone through one by one.
//
// The map knows the iterators over it; see MapWalker. Not thread-safe.
#ifndef QOR_COLLECTIONS_HASH_MAP_GENERIC_H
#define QOR_COLLECTIONS_HASH_MAP_GENERIC_H

#include <vector>

#include <qor/core/Export.h>
#include <qor/core/Ptr.h>
#include <qor/core/VFPtrInterface.h>

namespace Qor {

class ChainIndex;
class MapWalker;

/// What the generic code needs of one kind of member; one instance a kind, without data.
class HashMapVTableGeneric {
  public:
    /// Hash of the member's key.
    virtual U32 hash(PtrInterface const* member) const = 0;
    virtual bool keyEquals(void const* key, PtrInterface const* member) const = 0;
    /// Whether `key` is less than the member's key; a null `key` is less than any.
    virtual bool keyLessThan(void const* key, PtrInterface const* member) const = 0;
    /// Stores the link to the next member of the chain. The reference that the link owns comes with
    /// it: the call itself changes no count.
    virtual void setNext(PtrInterface* member, PtrInterface* next) const = 0;
    virtual PtrInterface* next(PtrInterface const* member) const = 0;
    /// Whether `member` stands in front of every member with that key.
    virtual bool isBefore(PtrInterface const* member, U32 hash, void const* key) const = 0;
    /// Whether `member` stands in front of `other` and of all that tie with it.
    virtual bool standsBefore(PtrInterface const* member, PtrInterface const* other) const = 0;
    /// Stores the first member of each of `count` buckets, all null so far, of the chain that
    /// begins with `first`.
    virtual void headsOf(PtrInterface* first, PtrInterface** heads, U32 count) const = 0;
    /// Cuts a chain in front of the first member whose hash has the bit `bit`; stores the heads of
    /// both parts, either of which may be null.
    virtual void cut(PtrInterface* first, U32 bit, PtrInterface** heads) const = 0;

  protected:
    ~HashMapVTableGeneric() = default;
};

class QOR_EXPORT HashMapGeneric {
  public:
    /// `bucketCount` is a power of two.
    explicit HashMapGeneric(U32 bucketCount = 1);
    HashMapGeneric(HashMapGeneric const&) = delete;
    HashMapGeneric& operator=(HashMapGeneric const&) = delete;

    /// Number of members.
    U32 size() const noexcept { return size_; }
    /// Counts every insertion and removal.
    U32 version() const noexcept { return version_; }
    U32 bucketCount() const noexcept { return bucketCount_; }
    /// Bulk removal runs: removals leave the shrinking to its end.
    bool bulkDelete() const noexcept { return bulkDelete_ != 0; }
    void bulkDeleteIs(bool on) noexcept { bulkDelete_ = on; }

    /// The top bits of the hash, as many as count the buckets; with one bucket always 0.
    U32 bucketIndex(U32 hash) const noexcept { return bucketIndex(hash, bucketCount_); }
    static U32 bucketIndex(U32 hash, U32 bucketCount) noexcept {
        return static_cast<U32>(U64{hash} * bucketCount >> 32);
    }

    /// A member of that hash is to be looked for soon: where that begins comes meanwhile.
    void expectHash(U32 hash) const noexcept { __builtin_prefetch(buckets() + bucketIndex(hash)); }

    /// With `current` and `key` null the first member. Otherwise the first member after `key` in
    /// the order, whether or not `current`, which bears that key, is still in the map. `bucket`
    /// receives its bucket, -1 at the end.
    PtrInterface* findNextG(HashMapVTableGeneric const& table, PtrInterface const* current,
                            I32* bucket, void const* key) const;
    /// Advances `bucket` to the next bucket that is not empty; its head, or null and -1.
    PtrInterface* findNextBucketG(I32* bucket) const noexcept {
        return nextHead(buckets(), bucket);
    }
    /// What follows the last member of a chain: the head of the next bucket that is not empty, or
    /// null.
    PtrInterface* headAfterG(I32* bucket) const noexcept {
        return isOneChain() ? nullptr : nextHead(array_, bucket);
    }
    /// Called after each insertion: doubles the buckets at more than one member a bucket. A map of
    /// up to four members makes do with one bucket, and the next one has eight. When
    /// there is no memory for more buckets the chains grow longer, and nothing is lost.
    void maybeGrowG(HashMapVTableGeneric const& table) noexcept {
        if (size_ > bucketCount_ && size_ > mostInOneBucket) [[unlikely]] {
            grow(table);
        }
    }
    /// Called after removals: halves the buckets while less than a quarter of a member stands in
    /// each. Does nothing during bulk removal.
    void maybeShrinkG(HashMapVTableGeneric const& table) noexcept;
    /// Unlinks the member with that key; null if absent.
    Ptr<PtrInterface> memberDelG(HashMapVTableGeneric const& table, U32 hash, void const* key);
    /// Unlinks exactly that member; false if it is not in the map.
    bool deleteMemberG(HashMapVTableGeneric const& table, U32 hash, PtrInterface* member);
    /// Unlinks and releases all members, and tells nobody.
    void emptyAllBucketsG(HashMapVTableGeneric const& table);

  protected:
    ~HashMapGeneric();

    static constexpr U32 mostInOneBucket = 4;
    static constexpr U32 leastBuckets = 8;  // beside one
    static constexpr bool isOneChain(U32 bucketCount) noexcept { return bucketCount <= 16; }
    bool isOneChain() const noexcept { return isOneChain(bucketCount_); }
    /// Of a map that is one chain: the last bucket before `bucket` that is not empty, -1 if none.
    I32 bucketBefore(U32 bucket) const noexcept {
        auto at = static_cast<I32>(bucket) - 1;
        while (at >= 0 && !buckets()[at]) {
            --at;
        }
        return at;
    }

    /// So many members of a chain are looked at one by one before it counts as long.
    static constexpr U32 longChain = 24;
    struct Place {
        PtrInterface* before;  // in the same chain; null for the first
        PtrInterface* at;
    };
    /// The first member of the key's chain that does not stand in front of every member with that
    /// key, by the index.
    Place placeInLongChain(HashMapVTableGeneric const& table, U32 hash, void const* key) const;

    PtrInterface** buckets() noexcept { return bucketCount_ == 1 ? &single_ : array_; }
    PtrInterface* const* buckets() const noexcept { return bucketCount_ == 1 ? &single_ : array_; }
    // REQUIRES: more than one bucket
    PtrInterface* const* manyBuckets() const noexcept { return array_; }
    /// Accounts for a member that was linked.
    void linked() noexcept {
        ++size_;
        ++version_;
    }

  private:
    friend class MapWalker;

    template <class Target>
    Place placeOf(HashMapVTableGeneric const& table, U32 bucket, Target const& target) const;
    void setPosts(HashMapVTableGeneric const& table, std::vector<PtrInterface*> const& posts);
    PtrInterface** newArray(U32 count) const noexcept;
    void deleteArray() noexcept;
    void dropIndex() noexcept;
    // It stands behind the last bucket.
    ChainIndex* index() const noexcept {
        return isIndexed_ ? reinterpret_cast<ChainIndex*>(array_[bucketCount_]) : nullptr;
    }
    Ptr<PtrInterface> unlink(HashMapVTableGeneric const& table, U32 bucket, PtrInterface* before,
                             PtrInterface* member);
    void unlinkHead(HashMapVTableGeneric const& table, U32 bucket, PtrInterface* member,
                    PtrInterface* next);
    void grow(HashMapVTableGeneric const& table) noexcept;
    void cutChains(HashMapVTableGeneric const& table, PtrInterface** fresh) noexcept;
    void layChains(HashMapVTableGeneric const& table, PtrInterface** fresh, U32 count) noexcept;
    PtrInterface* nextHead(PtrInterface* const* heads, I32* bucket) const noexcept {
        for (U32 at = static_cast<U32>(*bucket + 1); at < bucketCount_; ++at) {
            if (heads[at]) {
                *bucket = static_cast<I32>(at);
                fetchAhead(at);
                return heads[at];
            }
        }
        *bucket = -1;
        return nullptr;
    }
    // A walk asks for members well before it stands on them: they lie all over the memory.
    void fetchAhead(U32 bucket) const noexcept {
        constexpr U32 distance = 16;
        if (bucket + distance < bucketCount_) {
            __builtin_prefetch(array_[bucket + distance]);
        }
    }
    bool isSparse(U32 count) const noexcept { return U64{size_} * 4 < count; }
    void bucketsAre(HashMapVTableGeneric const& table, PtrInterface** buckets, U32 count) noexcept;

    U16 bulkDelete_ = 0;
    U16 isIndexed_ = 0;
    U32 version_ = 0;
    U32 size_ = 0;
    U32 bucketCount_ = 1;
    union {
        PtrInterface* single_;
        PtrInterface** array_;
    };
    mutable MapWalker* walkers_ = nullptr;
};

}  // namespace Qor

#endif
