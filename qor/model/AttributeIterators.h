// The iterators of a keyed attribute. The read-only one walks the map; the mutable one also holds
// the owner, and what it removes is told through the owner's aNotify. Each serves a range-for over
// (key, value) besides ++, key() and value().
#ifndef QOR_MODEL_ATTRIBUTE_ITERATORS_H
#define QOR_MODEL_ATTRIBUTE_ITERATORS_H

#include <iterator>

#include <qor/model/Attribute.h>

namespace Qor {

template <class A>
class AttributeIteratorConst : public A::Map::IteratorConst {
  public:
    using Base = typename A::Map::IteratorConst;

    AttributeIteratorConst() = default;
    /// Does not hold the entity: when that ends, so does the walk.
    explicit AttributeIteratorConst(typename A::Entity const& entity) : Base(&A::map(entity)) {}
    AttributeIteratorConst(typename A::Entity const& entity, typename A::Key const& key)
        : Base(&A::map(entity), key) {}
    /// From the first member that has the hash of `key`.
    static AttributeIteratorConst fromHash(typename A::Entity const& entity,
                                           typename A::Key const& key) {
        return AttributeIteratorConst(Base(&A::map(entity), key, {}));
    }

    AttributeIteratorConst& operator++() {
        Base::operator++();
        return *this;
    }
    typename A::Value value() const { return A::valueOf(Base::operator*()); }

  private:
    explicit AttributeIteratorConst(Base const& base) : Base(base) {}
};

/// X::AIterator and X::QorAIterator: member() gives the member object.
template <class A>
class AttributeIterator : public A::Map::Iterator {
  public:
    using Base = typename A::Map::Iterator;

    AttributeIterator() = default;
    explicit AttributeIterator(typename A::Entity& entity)
        : Base(&A::map(entity)), owner_(&entity) {}
    AttributeIterator(typename A::Entity& entity, typename A::Key const& key)
        : Base(&A::map(entity), key), owner_(&entity) {}

    AttributeIterator& operator++() {
        Base::operator++();
        return *this;
    }
    typename A::Value value() const { return A::valueOf(Base::operator*()); }

  protected:
    using Base::deleteNotify;
    void deleteNotify(Ptr<typename A::Member> const& member) const override {
        A::notify(*owner_, member->fwkKey(), member);
    }

  private:
    Ptr<typename A::Entity> owner_;
};

/// A step of a range-for.
template <class K, class V>
struct AttributeEntry {
    K key;
    V value;
};

template <class Walk>
class AttributeRangeIterator {
  public:
    explicit AttributeRangeIterator(Walk walk) : walk_(std::move(walk)) {}
    auto operator*() const {
        return AttributeEntry<decltype(walk_.key()), decltype(walk_.value())>{walk_.key(),
                                                                              walk_.value()};
    }
    AttributeRangeIterator& operator++() {
        ++walk_;
        return *this;
    }
    bool operator!=(std::default_sentinel_t) const { return static_cast<bool>(walk_); }

  private:
    Walk walk_;
};

template <class A>
AttributeRangeIterator<AttributeIteratorConst<A>> begin(AttributeIteratorConst<A> walk) {
    return AttributeRangeIterator(std::move(walk));
}
template <class A>
std::default_sentinel_t end(AttributeIteratorConst<A> const&) {
    return {};
}
template <class A>
AttributeRangeIterator<AttributeIterator<A>> begin(AttributeIterator<A> walk) {
    return AttributeRangeIterator(std::move(walk));
}
template <class A>
std::default_sentinel_t end(AttributeIterator<A> const&) {
    return {};
}

}  // namespace Qor

#endif
