// The columns of the map rows: ours and the peers.
#ifndef BENCH_MAPS_COLUMNS_H
#define BENCH_MAPS_COLUMNS_H

#include <qor/collections/HashMap.h>
#include <qor/collections/Members.h>

#include <map>
#include <string>
#include <type_traits>
#include <unordered_map>

#ifdef VGW_BENCH_ABSL
#include <absl/container/flat_hash_map.h>
#endif

#include "Floor.h"

namespace Bench {

/// The set attribute of an entity: a member object for each key, in the library's own map.
template <class S, class K>
class OurMap {
  public:
    using Source = S;
    using Key = K;
    using Member = Qor::ValueMember<K, bool>;

    static Key key(Source const& source) { return Key(source); }
    void add(Source const& source) {
        auto const member = Qor::make<Member>(Key(source), true);
        map_.newMember(member, member->fwkHash());
    }
    bool has(Key const& key) const { return map_.member(key) != nullptr; }
    std::size_t walk() const {
        std::size_t seen = 0;
        for (typename Map::IteratorConst at(&map_); at; ++at) {
            seen += at->value() ? 1 : 0;
        }
        return seen;
    }

  private:
    using Map = Qor::HashMap<Member, K>;
    Map map_;
};

/// A map of the standard library's shape, keyed by what the key comes from.
template <class Map>
class PeerMap {
  public:
    using Source = typename Map::key_type;
    using Key = Source;

    static Key const& key(Source const& source) { return source; }
    void add(Source const& source) { map_.emplace(source, true); }
    bool has(Key const& key) const { return map_.find(key) != map_.end(); }
    std::size_t walk() const {
        std::size_t seen = 0;
        for (auto const& [key, value] : map_) {
            seen += value ? 1 : 0;
        }
        return seen;
    }

  private:
    Map map_;
};

template <class Source, class Key, class Make>
void addMapColumns(std::string const& kind, Make make) {
    addMapCells<FloorMap<Source>>(kind, "floor", make);
    addMapCells<OurMap<Source, Key>>(kind, "ours", make);
#ifdef VGW_BENCH_ABSL
    addMapCells<PeerMap<absl::flat_hash_map<Source, bool>>>(kind, "flat_hash_map", make);
#endif
    addMapCells<PeerMap<std::unordered_map<Source, bool>>>(kind, "unordered_map", make);
    addMapCells<PeerMap<std::map<Source, bool>>>(kind, "std::map", make);
}

}  // namespace Bench

#endif
