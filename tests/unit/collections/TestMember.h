// Members and keys for the tests of maps. A key chooses its own place in the order: `place` is its
// reversed hash, `id` decides among equal places. Members count their living objects and may do
// something at their end.
#ifndef TESTS_UNIT_COLLECTIONS_TEST_MEMBER_H
#define TESTS_UNIT_COLLECTIONS_TEST_MEMBER_H

#include <qor/collections/HashMap.h>

#include <functional>
#include <ostream>
#include <vector>

namespace Sample {

using Qor::U32;

struct PlaceKey {
    U32 place = 0;
    U32 id = 0;

    U32 hash() const noexcept { return Qor::bitReverse(place); }
    bool operator==(PlaceKey const&) const noexcept = default;
    bool operator<(PlaceKey const& other) const noexcept { return id < other.id; }
    friend std::ostream& operator<<(std::ostream& out, PlaceKey const& key) {
        return out << std::hex << key.place << std::dec << '.' << key.id;
    }
};

/// A key that is ordered by its hash alone: two of the same place are neither less nor greater.
struct TiedKey {
    U32 place = 0;
    U32 id = 0;

    static constexpr bool orderedByHash = true;
    U32 hash() const noexcept { return Qor::bitReverse(place); }
    bool operator==(TiedKey const&) const noexcept = default;
    bool operator<(TiedKey const& other) const noexcept { return hash() < other.hash(); }
    friend std::ostream& operator<<(std::ostream& out, TiedKey const& key) {
        return out << std::hex << key.place << std::dec << '.' << key.id;
    }
};

template <class K>
class Node : public Qor::VFPtrInterface {
  public:
    using Ptr = Qor::Ptr<Node>;
    using Map = Qor::HashMap<Node, K>;

    explicit Node(K key) : key_(key) { ++living; }
    ~Node() override {
        if (onEnd) {
            onEnd();
        }
        --living;
    }

    K const& fwkKey() const noexcept { return key_; }
    U32 fwkHash() const noexcept { return Qor::HashMapKey<K>::hash(key_); }
    Node* fwkHmNext() const noexcept { return next_; }
    void fwkHmNextIs(Node* next) noexcept { next_ = next; }

    static inline int living = 0;
    std::function<void()> onEnd;

  private:
    K key_;
    Node* next_ = nullptr;
};

using PlaceNode = Node<PlaceKey>;
using PlaceMap = PlaceNode::Map;
using TiedNode = Node<TiedKey>;
using TiedMap = TiedNode::Map;

template <class Map, class K>
requires std::is_class_v<K> Qor::Ptr<Node<K>> add(Map& map, K key) {
    auto node = Qor::make<Node<K>>(key);
    map.newMember(node, node->fwkHash());
    return node;
}
inline PlaceNode::Ptr add(PlaceMap& map, U32 place, U32 id = 0) {
    return add(map, PlaceKey{place, id});
}

/// The keys from where the iterator stands to the end.
template <class Iterator>
auto rest(Iterator at) {
    std::vector<decltype(at.key())> out;
    for (; at; ++at) {
        out.push_back(at.key());
    }
    return out;
}
template <class Map>
auto keys(Map const& map) {
    return rest(typename Map::IteratorConst(&map));
}
inline std::vector<PlaceKey> places(std::vector<U32> const& list) {
    std::vector<PlaceKey> out;
    for (U32 const place : list) {
        out.push_back({place, 0});
    }
    return out;
}

/// An iterator that notes what it is told of, and lets the test do something then.
template <class K>
class TellingIterator : public Node<K>::Map::Iterator {
  public:
    using Base = typename Node<K>::Map::Iterator;
    using Base::Base;

    mutable std::vector<K> told;
    std::function<void(Node<K>&)> react;

  protected:
    using Base::deleteNotify;
    void deleteNotify(Qor::Ptr<Node<K>> const& member) const override {
        told.push_back(member->fwkKey());
        if (react) {
            react(*member);
        }
    }
};

}  // namespace Sample

#endif
