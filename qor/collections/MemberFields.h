// Where a member node keeps its key, its value and its link, in as little memory as there can be:
// what a walk or a look-up costs is the lines of memory that it touches. A number is the reverse of
// its own hash and is not stored again; a bool stands in the link's lowest bit, which is 0 in every
// address of a node.
#ifndef QOR_COLLECTIONS_MEMBER_FIELDS_H
#define QOR_COLLECTIONS_MEMBER_FIELDS_H

#include <cstdint>
#include <utility>

#include <qor/collections/HashMapKey.h>

namespace Qor {

/// The key of a node, beside its reversed hash.
template <class K>
class MemberKey {
  public:
    explicit MemberKey(K key) : key_(std::move(key)) {}
    K const& key(U32) const noexcept { return key_; }

  private:
    K key_;
};

template <class K>
requires HashMapKey<K>::hashIsKey class MemberKey<K> {
  public:
    explicit MemberKey(K) noexcept {}
    K key(U32 hash) const noexcept { return static_cast<K>(bitReverse(hash)); }
};

/// The value of a node, and its link to the next one.
template <class Node, class V>
class MemberLink {
  public:
    explicit MemberLink(V value) : value_(std::move(value)) {}
    Node* next() const noexcept { return next_; }
    void nextIs(Node* next) noexcept { next_ = next; }
    V const& value() const noexcept { return value_; }
    void valueIs(V value) { value_ = std::move(value); }

  private:
    Node* next_ = nullptr;
    V value_;
};

template <class Node>
class MemberLink<Node, bool> {
  public:
    explicit MemberLink(bool value) noexcept : word_(value ? 1 : 0) {}
    // NOLINTNEXTLINE(performance-no-int-to-ptr): the word's lowest bit is the value.
    Node* next() const noexcept { return reinterpret_cast<Node*>(word_ & ~std::uintptr_t{1}); }
    void nextIs(Node* next) noexcept {
        word_ = reinterpret_cast<std::uintptr_t>(next) | (word_ & 1);
    }
    bool value() const noexcept { return (word_ & 1) != 0; }
    void valueIs(bool value) noexcept {
        word_ = (word_ & ~std::uintptr_t{1}) | (value ? std::uintptr_t{1} : 0);
    }

  private:
    std::uintptr_t word_;
};

}  // namespace Qor

#endif
