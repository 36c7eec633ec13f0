// The member nodes of collections: what a set, a map or a reference collection holds for each key.
// The reversed hash of the key stands beside the count word, where it costs no memory.
#ifndef QOR_COLLECTIONS_MEMBERS_H
#define QOR_COLLECTIONS_MEMBERS_H

#include <utility>

#include <qor/collections/MemberFields.h>
#include <qor/core/Ptr.h>
#include <qor/core/VFPtrInterface.h>

namespace Qor {

/// A key and a value in a collection.
template <class K, class V>
class ValueMember final : public VFPtrInterface {
  public:
    using Ptr = Qor::Ptr<ValueMember>;
    using PtrConst = Qor::Ptr<ValueMember const>;
    using Key = K;
    using Value = V;

    ValueMember(K key, V value)
        : hash_(HashMapKey<K>::hash(key)), link_(std::move(value)), key_(std::move(key)) {}

    // Numbers and bools are given by value, all else by reference.
    decltype(auto) key() const noexcept { return key_.key(hash_); }
    decltype(auto) value() const noexcept { return link_.value(); }
    /// Changes the value and tells nobody: setters are the owner's.
    void valueIs(V value) { link_.valueIs(std::move(value)); }

    decltype(auto) fwkKey() const noexcept { return key(); }
    U32 fwkHash() const noexcept { return hash_; }
    ValueMember* fwkHmNext() const noexcept { return link_.next(); }
    void fwkHmNextIs(ValueMember* next) noexcept { link_.nextIs(next); }

  private:
    // What a look-up reads of the members that it passes stands together.
    U32 hash_;
    MemberLink<ValueMember, V> link_;
    [[no_unique_address]] MemberKey<K> key_;
};

/// A key and a counted reference to an entity that something else owns.
template <class K, class X>
using RefMember = ValueMember<K, Qor::Ptr<X>>;

/// Base part of an entity that can be its own member in an owning collection, keyed by its name.
/// `Self` is the class that the collection holds.
template <class Self, class Base>
class NameKeyed : public Base {
  public:
    using Base::Base;

    auto const& fwkKey() const noexcept { return this->qorName(); }
    U32 fwkHash() const noexcept { return rhash(this->qorName()); }
    Self* fwkHmNext() const noexcept { return fwkHmNext_; }
    void fwkHmNextIs(Self* next) noexcept { fwkHmNext_ = next; }

  private:
    Self* fwkHmNext_ = nullptr;
};

}  // namespace Qor

#endif
