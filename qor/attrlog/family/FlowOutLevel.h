// What one class level owes: a bit for each attribute, which says "dirty" for a value and "synced"
// for a collection, and for each collection the keys that are dirty.
#ifndef QOR_ATTRLOG_FAMILY_FLOWOUTLEVEL_H
#define QOR_ATTRLOG_FAMILY_FLOWOUTLEVEL_H

#include <qor/attrlog/family/StreamAttribute.h>
#include <qor/attrlog/flow/ConnectDesc.h>
#include <qor/attrlog/flow/EntityAdapter.h>

#include <array>
#include <tuple>

namespace Qor {

/// A key that is owed; the link of its map comes first.
template <class K>
class DirtyKey final : public VFPtrInterface {
  public:
    DirtyKey(K key, bool isDirty)
        : hash_(HashMapKey<K>::hash(key)), isDirty_(isDirty), key_(std::move(key)) {}

    bool isDirty() const noexcept { return isDirty_; }
    void isDirtyIs(bool isDirty) noexcept { isDirty_ = isDirty; }

    K const& fwkKey() const noexcept { return key_; }
    U32 fwkHash() const noexcept { return hash_; }
    DirtyKey* fwkHmNext() const noexcept { return fwkHmNext_; }
    void fwkHmNextIs(DirtyKey* next) noexcept { fwkHmNext_ = next; }

  private:
    DirtyKey* fwkHmNext_ = nullptr;
    U32 hash_;
    bool isDirty_;
    K key_;
};

template <class K>
using DirtyKeyMap = HashMap<DirtyKey<K>, K>;

template <class K>
void deleteAll(DirtyKeyMap<K>& keys) {
    keys.emptyAllBucketsG(keys.qorVTable());
}

namespace family {

struct NoKeys {};

/// Of one collection: the keys that are owed, and what a bookmark among keys that tie needs.
template <class K>
struct OwedKeys {
    DirtyKeyMap<K> dirty;
    [[no_unique_address]] MetKeys<K, HashMapKey<K>::hasTies> met;
};

template <class S, bool isKeyed>
struct DirtyKeysOf {
    using Type = NoKeys;
};
template <class S>
struct DirtyKeysOf<S, true> {
    using Type = OwedKeys<typename S::Key>;
};

template <class List>
struct DirtyKeysOfAll;
template <class... S>
struct DirtyKeysOfAll<StreamList<S...>> {
    using Type = std::tuple<typename DirtyKeysOf<S, S::isKeyed>::Type...>;
};

}  // namespace family

/// The flow that those of all root classes derive from.
class EntityFlowOut : public NboAttrLog::FlowOut {
  public:
    EntityFlowOut(Qor::Ptr<NboAttrLog::Out> const&,
                  Qor::Ptr<Entity::QorNboAttrLogSa> const& adapter, NboAttrLog::ConnectDesc const&,
                  bool, AttributeId)
        : FlowOut(*adapter) {}
};

template <class List, class Base>
class FlowOutLevel : public Base {
  public:
    FlowOutLevel(Ptr<NboAttrLog::Out> const& out, Ptr<Entity::QorNboAttrLogSa> const& adapter,
                 NboAttrLog::ConnectDesc const& desc, bool flag, AttributeId startAttr)
        : Base(out, adapter, desc, flag, startAttr) {
        List::forEach(
            [&]<class S>() { this->template bitIs<S>((startAttr <= S::id) != S::isKeyed); });
    }

    bool hasDirtyAttributes() const override {
        if (Base::hasDirtyAttributes()) return true;
        bool dirty = false;
        List::forEach([&]<class S>() {
            if constexpr (S::isKeyed) {
                dirty = dirty || !hasSynced<S>() || dirtyKeys<S>().size() != 0;
            } else {
                dirty = dirty || isDirty<S>();
            }
        });
        return dirty;
    }

    template <class S>
    bool isDirty() const noexcept {
        return bit<S>();
    }
    template <class S>
    void isDirtyIs(bool dirty) {
        bitIs<S>(dirty);
        if (dirty) this->owes();
    }
    template <class S>
    bool hasSynced() const noexcept {
        return bit<S>();
    }
    template <class S>
    void hasSyncedIs(bool synced) {
        bitIs<S>(synced);
    }
    template <class S>
    DirtyKeyMap<typename S::Key>& dirtyKeys() noexcept {
        return std::get<List::template indexOf<S>()>(owedKeys_).dirty;
    }
    template <class S>
    DirtyKeyMap<typename S::Key> const& dirtyKeys() const noexcept {
        return std::get<List::template indexOf<S>()>(owedKeys_).dirty;
    }
    /// Where the bookmark stands in the collection: the keys of its tie that went before.
    template <class S>
    MetKeys<typename S::Key, true>& metKeys() noexcept {
        return std::get<List::template indexOf<S>()>(owedKeys_).met;
    }
    template <class S>
    Ptr<DirtyKey<typename S::Key>> newDirtyKey(typename S::Key const& key, bool dirty) {
        auto member = make<DirtyKey<typename S::Key>>(key, dirty);
        dirtyKeys<S>().newMember(member, member->fwkHash());
        return member;
    }
    template <class S>
    void dirtyKeyIs(typename S::Key const& key, bool dirty) {
        if (auto* const member = dirtyKeys<S>().member(key)) {
            member->isDirtyIs(dirty);
        } else {
            newDirtyKey<S>(key, dirty);
        }
        this->owes();
    }
    // Whether it was there.
    template <class S>
    bool dirtyKeyDel(typename S::Key const& key) {
        return dirtyKeys<S>().size() != 0 && static_cast<bool>(dirtyKeys<S>().memberDel(key));
    }
    template <class S>
    void dirtyKeysDelAll() {
        deleteAll(dirtyKeys<S>());
    }
    // The first 32 attributes' bits.
    U32 qorDirtyBitSet() const noexcept { return bits_[0]; }

  private:
    template <class S>
    bool bit() const noexcept {
        constexpr U32 index = List::template indexOf<S>();
        return (bits_[index / 32] >> index % 32 & 1) != 0;
    }
    template <class S>
    void bitIs(bool on) noexcept {
        constexpr U32 index = List::template indexOf<S>();
        constexpr U32 mask = U32{1} << index % 32;
        bits_[index / 32] = on ? bits_[index / 32] | mask : bits_[index / 32] & ~mask;
    }

    std::array<U32, List::size / 32 + 1> bits_{};
    [[no_unique_address]] typename family::DirtyKeysOfAll<List>::Type owedKeys_;
};

}  // namespace Qor

#endif
