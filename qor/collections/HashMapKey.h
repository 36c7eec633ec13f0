// What a map asks of a key type: its 32-bit hash, reversed so that the well-mixed low bits select
// the bucket, and whether a key is the empty one of its type.
#ifndef QOR_COLLECTIONS_HASH_MAP_KEY_H
#define QOR_COLLECTIONS_HASH_MAP_KEY_H

#include <type_traits>

#include <qor/core/Hash.h>
#include <qor/core/Types.h>

namespace Qor {

template <class K>
struct HashMapKey {
    static U32 hash(K const& key) noexcept {
        if constexpr (std::is_integral_v<K>) {
            return bitReverse(static_cast<U32>(key));
        } else {
            return bitReverse(key.hash());
        }
    }
    // Numbers of up to 32 bits: no two have the same hash, so comparing hashes is comparing keys.
    static constexpr bool hashIsKey = std::is_integral_v<K> && sizeof(K) <= sizeof(U32);
    static bool isEmpty(K const& key) { return key == K(); }

    // True for keys whose `<` can leave two different keys undecided although their hashes are
    // equal. Such keys stand in the order of their insertion, and iterators remember the ones they
    // have met.
    static constexpr bool hasTies = requires { requires K::orderedByHash; };
};

}  // namespace Qor

#endif
