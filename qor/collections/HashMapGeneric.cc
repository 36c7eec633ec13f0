#include <qor/collections/HashMapGeneric.h>

#include <algorithm>
#include <bit>

namespace Qor {

namespace {

constexpr U32 mostBuckets = U32{1} << 31;

std::size_t arrayBytes(U32 count) { return std::size_t{count} * sizeof(PtrInterface*); }

PtrInterface** newBuckets(U32 count) noexcept {
    auto** out = static_cast<PtrInterface**>(memNewOrNull(arrayBytes(count)));
    if (out) {
        std::fill_n(out, count, nullptr);
    }
    return out;
}

}  // namespace

HashMapGeneric::HashMapGeneric(U32 bucketCount) : single_(nullptr) {
    if (bucketCount > 1) {
        if (PtrInterface** array = newBuckets(bucketCount)) {
            array_ = array;
            bucketCount_ = bucketCount;
        }
    }
}

HashMapGeneric::~HashMapGeneric() {
    if (bucketCount_ > 1) {
        memDel(array_, arrayBytes(bucketCount_));
    }
}

void HashMapGeneric::bucketsAre(PtrInterface** fresh, U32 count) noexcept {
    if (bucketCount_ > 1) {
        memDel(array_, arrayBytes(bucketCount_));
    }
    array_ = fresh;
    bucketCount_ = count;
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
    for (PtrInterface* at = buckets()[*bucket]; at; at = table.next(at)) {
        U32 const other = table.hash(at);
        if (at == current || (other == hash && table.keyEquals(key, at))) {
            PtrInterface* next = table.next(at);
            return next ? next : findNextBucketG(bucket);
        }
        if (other > hash || (other == hash && table.keyLessThan(key, at))) {
            return at;
        }
    }
    return findNextBucketG(bucket);
}

void HashMapGeneric::maybeGrowG(HashMapVTableGeneric const& table) noexcept {
    if (size_ <= bucketCount_ || bucketCount_ == mostBuckets) {
        return;
    }
    U32 const count = bucketCount_ * 2;
    PtrInterface** fresh = newBuckets(count);
    if (!fresh) {
        return;
    }
    U32 const bit = mostBuckets >> std::countr_zero(bucketCount_);  // the hash bit that now counts
    for (U32 i = 0; i < bucketCount_; ++i) {
        PtrInterface* last = nullptr;
        PtrInterface* at = buckets()[i];
        fetchAhead(i);
        fresh[2 * i] = at;
        while (at && (table.hash(at) & bit) == 0) {
            last = at;
            at = table.next(at);
        }
        fresh[2 * i + 1] = at;
        if (at && last) {
            table.setNext(last, nullptr);
        } else if (at) {
            fresh[2 * i] = nullptr;
        }
    }
    bucketsAre(fresh, count);
}

void HashMapGeneric::maybeShrinkG(HashMapVTableGeneric const& table) noexcept {
    if (bulkDelete() || bucketCount_ == 1 || !isSparse(bucketCount_)) {
        return;
    }
    U32 count = bucketCount_;
    while (count > 1 && isSparse(count)) {
        count /= 2;
    }
    PtrInterface* one = nullptr;
    PtrInterface** fresh = count == 1 ? &one : newBuckets(count);
    if (!fresh) {
        return;
    }
    U32 const fold = bucketCount_ / count;
    for (U32 i = 0; i < count; ++i) {
        PtrInterface* last = nullptr;
        for (U32 j = i * fold; j < (i + 1) * fold; ++j) {
            if (PtrInterface* at = array_[j]) {
                if (last) {
                    table.setNext(last, at);
                } else {
                    fresh[i] = at;
                }
                while (at) {
                    last = at;
                    at = table.next(at);
                }
            }
        }
    }
    if (count == 1) {
        bucketsAre(nullptr, 1);
        single_ = one;
    } else {
        bucketsAre(fresh, count);
    }
}

Ptr<PtrInterface> HashMapGeneric::unlink(HashMapVTableGeneric const& table, U32 bucket,
                                         PtrInterface* before, PtrInterface* member) {
    PtrInterface* const next = table.next(member);
    if (before) {
        table.setNext(before, next);
    } else {
        buckets()[bucket] = next;
    }
    table.setNext(member, nullptr);
    --size_;
    ++version_;
    return adopt(member);  // the link's reference
}

Ptr<PtrInterface> HashMapGeneric::memberDelG(HashMapVTableGeneric const& table, U32 hash,
                                             void const* key) {
    U32 const bucket = bucketIndex(hash);
    PtrInterface* before = nullptr;
    for (PtrInterface* at = buckets()[bucket]; at; before = at, at = table.next(at)) {
        if (table.hash(at) == hash && table.keyEquals(key, at)) {
            Ptr<PtrInterface> out = unlink(table, bucket, before, at);
            maybeShrinkG(table);
            return out;
        }
    }
    return nullptr;
}

bool HashMapGeneric::deleteMemberG(HashMapVTableGeneric const& table, U32 hash,
                                   PtrInterface* member) {
    U32 const bucket = bucketIndex(hash);
    PtrInterface* before = nullptr;
    for (PtrInterface* at = buckets()[bucket]; at; before = at, at = table.next(at)) {
        if (at == member) {
            Ptr<PtrInterface> out = unlink(table, bucket, before, at);
            maybeShrinkG(table);
            return true;
        }
    }
    return false;
}

// A member that goes may end objects whose ends reach back into this map, add to it and change its
// buckets, so each step starts from what the map holds then.
void HashMapGeneric::emptyAllBucketsG(HashMapVTableGeneric const& table) {
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
