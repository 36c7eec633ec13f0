// What a map is to hold and what its iterators are to meet, in the plainest way: a sorted vector.
#ifndef TESTS_PROPERTY_FRAMEWORK_MAP_MODEL_H
#define TESTS_PROPERTY_FRAMEWORK_MAP_MODEL_H

#include <tests/property/framework/Random.h>

#include <algorithm>
#include <cstdint>
#include <optional>
#include <vector>

namespace Sample {

/// A member: a key as one number whose order is the map's, and which object bears it.
struct Entry {
    std::uint64_t rank = 0;
    std::uint32_t number = 0;
    bool operator==(Entry const&) const = default;
};

class MapModel {
  public:
    using Found = std::optional<Entry>;

    Found find(std::uint64_t rank) const {
        auto const place = lower(rank);
        return place != entries_.end() && place->rank == rank ? Found(*place) : Found();
    }
    bool has(Entry const& entry) const { return find(entry.rank) == entry; }
    Found from(std::uint64_t rank) const { return at(lower(rank)); }
    Found after(std::uint64_t rank) const { return at(lower(rank + 1)); }
    Found first() const { return at(entries_.begin()); }
    void add(Entry const& entry) { entries_.insert(lower(entry.rank), entry); }
    void del(std::uint64_t rank) { entries_.erase(lower(rank)); }
    void clear() { entries_.clear(); }
    std::size_t size() const { return entries_.size(); }
    std::vector<Entry> const& all() const { return entries_; }
    Entry any(Random& random) const {
        return entries_[random.below(static_cast<std::uint32_t>(entries_.size()))];
    }

  private:
    using Place = std::vector<Entry>::const_iterator;
    Place lower(std::uint64_t rank) const {
        return std::lower_bound(
            entries_.begin(), entries_.end(), rank,
            [](Entry const& entry, std::uint64_t other) { return entry.rank < other; });
    }
    Found at(Place place) const { return place == entries_.end() ? Found() : Found(*place); }

    std::vector<Entry> entries_;
};

/// Where an iterator is to stand, and what it removed there last.
struct WalkModel {
    bool placed = false;
    MapModel::Found stands;
    bool removed = false;

    void place(MapModel::Found where) {
        placed = true;
        stands = where;
        removed = false;
    }
    void step(MapModel const& map) {
        bool const isThere = removed && (!stands || map.has(*stands));
        if (stands && !isThere) {
            stands = map.after(stands->rank);
        }
        removed = false;
    }
    /// Gives what is to be told of.
    std::vector<Entry> del(MapModel& map) {
        std::vector<Entry> told;
        if (!removed && stands) {
            if (map.has(*stands)) {
                told.push_back(*stands);
                map.del(stands->rank);
            }
            stands = map.after(stands->rank);
            removed = true;
        }
        return told;
    }
    std::vector<Entry> delAll(MapModel& map) {
        std::vector<Entry> told;
        if (removed) {
            step(map);
        }
        while (map.size() != 0) {
            if (!stands) {
                stands = map.first();
            }
            for (Entry const& entry : del(map)) {
                told.push_back(entry);
            }
            step(map);
        }
        place(std::nullopt);
        return told;
    }
};

}  // namespace Sample

#endif
