#include <qor/collections/ChainIndex.h>
#include <qor/collections/HashMapGeneric.h>
#include <qor/collections/MapWalker.h>

#include <algorithm>
#include <bit>
#include <new>
#include <utility>

namespace Qor {

namespace {

constexpr U32 mostBuckets = U32{1} << 31;

std::size_t arrayBytes(U32 count) { return std::size_t{count} * sizeof(void*); }

// As they come.
PtrInterface** newBuckets(U32 count) noexcept {
    return static_cast<PtrInterface**>(memNewOrNull(arrayBytes(count)));
}

struct KeyTarget {
    bool isBehind(PtrInterface const* member) const { return table.isBefore(member, hash, key); }
    HashMapVTableGeneric const& table;
    U32 hash;
    void const* key;
};

struct MemberTarget {
    bool isBehind(PtrInterface const* other) const { return table.standsBefore(other, member); }
    HashMapVTableGeneric const& table;
    PtrInterface const* member;
};

}  // namespace

HashMapGeneric::HashMapGeneric(U32 bucketCount) : single_(nullptr) {
    if (bucketCount > 1) {
        if (PtrInterface** array = newBuckets(bucketCount)) {
            std::fill_n(array, bucketCount, nullptr);
            array_ = array;
            bucketCount_ = bucketCount;
        }
    }
}

HashMapGeneric::~HashMapGeneric() {
    for (MapWalker* at = walkers_; at; at = at->next_) {
        at->map_ = nullptr;
    }
    dropIndex();
    deleteArray();
}

PtrInterface** HashMapGeneric::newArray(U32 count) const noexcept {
    return newBuckets(count + isIndexed_);
}

void HashMapGeneric::deleteArray() noexcept {
    if (bucketCount_ > 1) {
        memDel(array_, arrayBytes(bucketCount_ + isIndexed_));
    }
}

// Leaves the place behind the last bucket for another.
void HashMapGeneric::dropIndex() noexcept {
    delete index();
    if (isIndexed_) {
        array_[bucketCount_] = nullptr;
    }
}

// A map that has been given an index keeps the place for it.
void HashMapGeneric::setPosts(HashMapVTableGeneric const& table,
                              std::vector<PtrInterface*> const& posts) try {
    if (!isIndexed_) {
        PtrInterface** const wider = newBuckets(bucketCount_ + 1);
        if (!wider) return;
        std::copy_n(array_, bucketCount_, wider);
        wider[bucketCount_] = nullptr;
        deleteArray();
        array_ = wider;
        isIndexed_ = 1;
    }
    if (!index()) {
        array_[bucketCount_] = reinterpret_cast<PtrInterface*>(new ChainIndex);
    }
    index()->add(table, posts);
} catch (std::bad_alloc const&) {
    // The chains are walked as they were.
}

template <class Target>
HashMapGeneric::Place HashMapGeneric::placeOf(HashMapVTableGeneric const& table, U32 bucket,
                                              Target const& target) const {
    PtrInterface* before = index() ? index()->before(target) : nullptr;
    if (before && bucketIndex(table.hash(before)) != bucket) {
        before = nullptr;
    }
    PtrInterface* at = before ? table.next(before) : buckets()[bucket];
    PostsOnTheWay way;
    while (at && target.isBehind(at)) {
        way.step(at);
        before = std::exchange(at, table.next(at));
    }
    if (way.areWanted() && !isOneChain()) {
        const_cast<HashMapGeneric*>(this)->setPosts(table, way.posts());
    }
    return {before, at};
}

HashMapGeneric::Place HashMapGeneric::placeInLongChain(HashMapVTableGeneric const& table, U32 hash,
                                                       void const* key) const {
    return placeOf(table, bucketIndex(hash), KeyTarget{table, hash, key});
}

// A single head stands in the map itself.
void HashMapGeneric::bucketsAre(HashMapVTableGeneric const& table, PtrInterface** fresh,
                                U32 count) noexcept {
    if (count > 1) {
        if (isIndexed_) {
            fresh[count] = reinterpret_cast<PtrInterface*>(index());
        }
        deleteArray();
        array_ = fresh;
    } else {
        dropIndex();
        deleteArray();
        isIndexed_ = 0;
        single_ = *fresh;
    }
    bucketCount_ = count;
    for (MapWalker* at = walkers_; at; at = at->next_) {
        if (at->current_ && !at->isLeft_) {
            at->bucket_ = static_cast<I32>(bucketIndex(table.hash(at->current_)));
        }
    }
}

PtrInterface* HashMapGeneric::findNextG(HashMapVTableGeneric const& table,
                                        PtrInterface const* current, I32* bucket,
                                        void const* key) const {
    if (!current) {
        *bucket = -1;
        return findNextBucketG(bucket);
    }
    U32 const hash = table.hash(current);
    *bucket = static_cast<I32>(bucketIndex(hash));
    PtrInterface* at = buckets()[*bucket];
    for (U32 steps = 0; at; at = table.next(at), ++steps) {
        if (steps == longChain) {
            at = placeInLongChain(table, hash, key).at;
            if (!at) {
                break;
            }
        }
        U32 const other = table.hash(at);
        bool const isIts = at == current || (other == hash && table.keyEquals(key, at));
        if (isIts || other > hash || (other == hash && table.keyLessThan(key, at))) {
            PtrInterface* const found = isIts ? table.next(at) : at;
            if (!found) {
                break;
            }
            *bucket = static_cast<I32>(bucketIndex(table.hash(found)));
            return found;
        }
    }
    return findNextBucketG(bucket);
}

void HashMapGeneric::grow(HashMapVTableGeneric const& table) noexcept {
    if (bucketCount_ == mostBuckets) {
        return;
    }
    U32 const count = bucketCount_ < leastBuckets ? leastBuckets : 2 * bucketCount_;
    PtrInterface** fresh = newArray(count);
    if (!fresh) {
        return;
    }
    if (isOneChain(count)) {
        I32 first = -1;
        std::fill_n(fresh, count, nullptr);
        table.headsOf(findNextBucketG(&first), fresh, count);
    } else if (isOneChain()) {
        layChains(table, fresh, count);
    } else {
        cutChains(table, fresh);
    }
    bucketsAre(table, fresh, count);
}

// Of twice as many buckets: each chain is cut in two where the hash bit that now counts is set.
void HashMapGeneric::cutChains(HashMapVTableGeneric const& table, PtrInterface** fresh) noexcept {
    U32 const bit = mostBuckets >> std::countr_zero(bucketCount_);
    for (U32 i = 0; i < bucketCount_; ++i) {
        fetchAhead(i);
        PtrInterface** const heads = fresh + 2 * std::size_t{i};
        if (array_[i]) {
            table.cut(array_[i], bit, heads);
        } else {
            heads[0] = heads[1] = nullptr;
        }
    }
}

// Of any other number of buckets: every member in turn, linked to the one before it where the new
// chains go on, and cut off where they don't.
void HashMapGeneric::layChains(HashMapVTableGeneric const& table, PtrInterface** fresh,
                               U32 count) noexcept {
    std::fill_n(fresh, count, nullptr);
    PtrInterface* last = nullptr;
    I32 walked = -1;
    PtrInterface* at = findNextBucketG(&walked);
    while (at) {
        PtrInterface* const next = table.next(at);
        auto const bucket = bucketIndex(table.hash(at), count);
        bool const isHead = !fresh[bucket];
        if (isHead) {
            fresh[bucket] = at;
        }
        if (last) {
            table.setNext(last, isHead && !isOneChain(count) ? nullptr : at);
        }
        last = at;
        at = next ? next : headAfterG(&walked);
    }
}

void HashMapGeneric::maybeShrinkG(HashMapVTableGeneric const& table) noexcept {
    if (bulkDelete() || bucketCount_ == 1 || !isSparse(bucketCount_)) {
        return;
    }
    U32 count = bucketCount_;
    while (count > 1 && isSparse(count)) {
        count = count > leastBuckets ? count / 2 : 1;
    }
    PtrInterface* one = nullptr;
    PtrInterface** fresh = count == 1 ? &one : newArray(count);
    if (!fresh) {
        return;
    }
    layChains(table, fresh, count);
    bucketsAre(table, fresh, count);
}

// `before` is the member in front in the same bucket.
Ptr<PtrInterface> HashMapGeneric::unlink(HashMapVTableGeneric const& table, U32 bucket,
                                         PtrInterface* before, PtrInterface* member) {
    PtrInterface* const next = table.next(member);
    if (before) {
        table.setNext(before, next);
    } else {
        unlinkHead(table, bucket, member, next);
    }
    table.setNext(member, nullptr);
    --size_;
    ++version_;
    if (ChainIndex* const its = index()) [[unlikely]] {
        its->forget(table, member);
    }
    if (walkers_) {
        MapWalker::memberLeaves(walkers_, member);
    }
    return adopt(member);  // the link's reference
}

void HashMapGeneric::unlinkHead(HashMapVTableGeneric const& table, U32 bucket, PtrInterface* member,
                                PtrInterface* next) {
    if (!isOneChain()) {
        buckets()[bucket] = next;
        return;
    }
    buckets()[bucket] = next && bucketIndex(table.hash(next)) == bucket ? next : nullptr;
    I32 const bucketInFront = bucketBefore(bucket);
    if (bucketInFront < 0) {
        return;
    }
    PtrInterface* before = buckets()[bucketInFront];
    while (table.next(before) != member) {
        before = table.next(before);
    }
    table.setNext(before, next);
}

Ptr<PtrInterface> HashMapGeneric::memberDelG(HashMapVTableGeneric const& table, U32 hash,
                                             void const* key) {
    U32 const bucket = bucketIndex(hash);
    PtrInterface* before = nullptr;
    PtrInterface* at = buckets()[bucket];
    for (U32 steps = 0; at && !(table.hash(at) == hash && table.keyEquals(key, at)); ++steps) {
        if (steps == longChain) {
            Place const place = placeInLongChain(table, hash, key);
            before = place.before;
            at = place.at;
            continue;
        }
        // In a chain of one hash as in one of many.
        if (table.hash(at) > hash || (table.hash(at) == hash && table.keyLessThan(key, at))) {
            return nullptr;
        }
        before = std::exchange(at, table.next(at));
    }
    if (!at) {
        return nullptr;
    }
    Ptr<PtrInterface> out = unlink(table, bucket, before, at);
    maybeShrinkG(table);
    return out;
}

bool HashMapGeneric::deleteMemberG(HashMapVTableGeneric const& table, U32 hash,
                                   PtrInterface* member) {
    U32 const bucket = bucketIndex(hash);
    PtrInterface* before = nullptr;
    PtrInterface* at = buckets()[bucket];
    for (U32 steps = 0; at && at != member; ++steps) {
        if (steps == longChain) {
            Place const place = placeOf(table, bucket, MemberTarget{table, member});
            before = place.before;
            at = place.at;
            continue;
        }
        if (table.hash(at) > hash) {
            return false;
        }
        before = std::exchange(at, table.next(at));
    }
    if (!at) {
        return false;
    }
    Ptr<PtrInterface> out = unlink(table, bucket, before, at);
    maybeShrinkG(table);
    return true;
}

// A member that goes may end objects whose ends reach back into this map, add to it and change its
// buckets, so each step starts from what the map holds then.
void HashMapGeneric::emptyAllBucketsG(HashMapVTableGeneric const& table) {
    dropIndex();
    U32 i = 0;
    while (size_ != 0) {
        if (i >= bucketCount_) {
            i = 0;
        }
        if (PtrInterface* head = buckets()[i]) {
            Ptr<PtrInterface> out = unlink(table, i, nullptr, head);
        } else {
            ++i;
        }
    }
}

}  // namespace Qor
