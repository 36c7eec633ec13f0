// The floor of the map rows: an ordered intrusive map that does the work itself and nothing else.
// The same order, the same chains, plain counts, memory from two bump pointers (members and texts
// lie apart, as they do in any allocator by size), no iterator that survives anything, no removal.
#ifndef BENCH_MAPS_FLOOR_H
#define BENCH_MAPS_FLOOR_H

#include <qor/core/Hash.h>
#include <qor/core/TextHash.h>

#include <bit>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string>
#include <string_view>
#include <vector>

namespace Bench {

/// Memory in pieces of a mebibyte, shared by all maps of the process and never given back.
class Bump {
  public:
    void* take(std::size_t size) {
        size = (size + 7) & ~std::size_t{7};
        if (left_ < size) {
            left_ = std::size_t{1} << 20;
            at_ = static_cast<char*>(::operator new(left_));
        }
        void* const out = at_;
        at_ += size;
        left_ -= size;
        return out;
    }

  private:
    char* at_ = nullptr;
    std::size_t left_ = 0;
};

inline Bump floorMembers;
inline Bump floorTexts;

struct FloorText {
    std::uint32_t count;
    std::uint32_t length;
    std::uint32_t hash;

    std::string_view view() const { return {reinterpret_cast<char const*>(this + 1), length}; }
    static FloorText* make(void* memory, std::string_view text) {
        auto* const out = new (memory) FloorText{1, static_cast<std::uint32_t>(text.size()), 0};
        std::memcpy(out + 1, text.data(), text.size());
        out->hash = Qor::hashOfText(text);
        return out;
    }
};

/// How the floor treats a key of type `K`: the text's block, or the number.
template <class Source>
struct FloorKey;

template <>
struct FloorKey<std::string> {
    using Key = FloorText*;
    static Key make(std::string const& text) {
        return FloorText::make(floorTexts.take(sizeof(FloorText) + text.size()), text);
    }
    static std::uint32_t order(Key key) { return Qor::bitReverse(key->hash); }
    static bool equal(Key a, Key b) { return a->view() == b->view(); }
};

template <>
struct FloorKey<std::uint32_t> {
    using Key = std::uint32_t;
    static Key make(std::uint32_t number) { return number; }
    static std::uint32_t order(Key key) { return Qor::bitReverse(key); }
    static bool equal(Key a, Key b) { return a == b; }
};

template <class S>
class FloorMap {
  public:
    using Source = S;
    using Trait = FloorKey<S>;
    using Key = typename Trait::Key;

    static Key key(Source const& source) { return Trait::make(source); }
    void add(Source const& source) {
        Key const key = Trait::make(source);
        std::uint32_t const hash = Trait::order(key);
        auto* const node = new (floorMembers.take(sizeof(Node))) Node{nullptr, hash, key, true};
        Node** link = &buckets_[hash >> shift_];
        while (*link && (*link)->hash < hash) {
            link = &(*link)->next;
        }
        node->next = *link;
        *link = node;
        if (++size_ > buckets_.size()) {
            grow();
        }
    }
    bool has(Key key) const {
        std::uint32_t const hash = Trait::order(key);
        for (Node const* at = buckets_[hash >> shift_]; at; at = at->next) {
            if (at->hash == hash && Trait::equal(at->key, key)) {
                return true;
            }
        }
        return false;
    }
    std::size_t walk() const {
        std::size_t seen = 0;
        for (Node const* at : buckets_) {
            for (; at; at = at->next) {
                seen += at->value ? 1 : 0;
            }
        }
        return seen;
    }

  private:
    struct Node {
        Node* next;
        std::uint32_t hash;
        Key key;
        bool value;
    };

    void grow() {
        std::vector<Node*> fresh(buckets_.size() * 2);
        --shift_;
        std::vector<Node*> const old = std::exchange(buckets_, std::move(fresh));
        for (std::size_t i = 0; i < old.size(); ++i) {
            Node** link = &buckets_[2 * i];
            Node* at = old[i];
            for (; at && ((at->hash >> shift_) & 1) == 0; at = at->next) {
                *link = at;
                link = &at->next;
            }
            *link = nullptr;
            buckets_[2 * i + 1] = at;
        }
    }

    std::vector<Node*> buckets_ = std::vector<Node*>(2);
    unsigned shift_ = 31;
    std::size_t size_ = 0;
};

}  // namespace Bench

#endif
