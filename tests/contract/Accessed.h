// The attributes of a compiled class by its accessors: one class for each kind of attribute.
#ifndef TESTS_CONTRACT_ACCESSED_H
#define TESTS_CONTRACT_ACCESSED_H

#include <type_traits>

#include "Accessors.h"
#include "Attribute.h"
#include "Samples.h"

namespace Contract {

/// The name of a type as it stands in a table of attributes.
template <class T>
std::string typeName() {
    if constexpr (std::is_same_v<T, bool>) {
        return "bool";
    } else if constexpr (std::is_same_v<T, double>) {
        return "double";
    } else if constexpr (std::is_same_v<T, Qor::String8>) {
        return "Qor::String8";
    } else if constexpr (std::is_same_v<T, Qor::Name>) {
        return "Qor::Name";
    } else if constexpr (std::is_same_v<T, Kelp::IpAddr>) {
        return "Kelp::IpAddr";
    } else if constexpr (std::is_same_v<T, Kelp::EthAddr>) {
        return "Kelp::EthAddr";
    } else if constexpr (std::is_same_v<T, Vxlan::Vni>) {
        return "Vxlan::Vni";
    } else if constexpr (std::is_integral_v<T>) {
        return "U" + std::to_string(8 * sizeof(T));
    } else if constexpr (std::is_enum_v<T>) {
        return std::string("Vgw::") + Qor::EnumTable<T>::type;
    } else {
        return T::qorTypeName;
    }
}

template <class A>
typename A::Entity& as(Qor::Entity& entity) {
    return static_cast<typename A::Entity&>(entity);
}
template <class A>
typename A::Entity const& as(Qor::Entity const& entity) {
    return static_cast<typename A::Entity const&>(entity);
}

template <class A>
class AccessedScalar final : public Scalar {
  public:
    using Scalar::Scalar;
    using To = Accessors<A>;
    using Value = typename A::Value;

    std::string held(Qor::Entity const& entity) const override {
        static_assert(std::is_same_v<decltype(To::get(as<A>(entity))), Value>);
        return textOf(To::get(as<A>(entity)));
    }
    void change(Qor::Entity& entity) const override {
        To::set(as<A>(entity), another(To::get(as<A>(entity))));
    }
    unsigned values() const override { return static_cast<unsigned>(all_.size()); }
    std::string value(unsigned i) const override { return textOf(all_[i]); }
    void set(Qor::Entity& entity, unsigned i) const override { To::set(as<A>(entity), all_[i]); }
    void setToHeld(Qor::Entity& entity) const override {
        To::set(as<A>(entity), To::get(as<A>(entity)));
    }

  private:
    std::vector<Value> const all_ = samples<Value>();
};

template <class A>
class AccessedConstField final : public Attribute {
  public:
    using Attribute::Attribute;
    std::string held(Qor::Entity const& entity) const override {
        return textOf(Accessors<A>::get(as<A>(entity)));
    }
};

// The order of collections, by definition: the hash of the key with its bits reversed, then the
// key.
template <class Key>
Qor::U32 reversedHash(Key const& key) {
    Qor::U32 hash = 0;
    if constexpr (std::is_integral_v<Key>) {
        hash = key;
    } else {
        hash = key.hash();
    }
    Qor::U32 out = 0;
    for (int bit = 0; bit < 32; ++bit) {
        out |= (hash >> bit & 1U) << (31 - bit);
    }
    return out;
}

/// The part of a keyed attribute that all kinds share. `Face` is Mapped or OwnedMap.
template <class A, class Face>
class AccessedKeyed : public Face {
  public:
    using Face::Face;
    using To = Accessors<A>;
    using Key = typename A::Key;

    std::string held(Qor::Entity const& entity) const override {
        std::string text;
        for (auto const& entry : entriesOf(To::iteratorConst(as<A>(entity)))) {
            text += entry.key + ":" + entry.value + ",";
        }
        return text;
    }
    unsigned keys() const override { return static_cast<unsigned>(keys_.size()); }
    std::string key(unsigned i) const override { return textOf(keys_[i]); }
    unsigned count(Qor::Entity const& entity) const override { return To::count(as<A>(entity)); }
    void delAll(Qor::Entity& entity) const override { To::delAll(as<A>(entity)); }
    Entries walk(Qor::Entity& entity, Walk walk) const override {
        auto const& readOnly = as<A>(std::as_const(entity));
        switch (walk) {
            case Walk::iterator:
                return entriesOf<typename To::Iterator>(To::iterator(as<A>(entity)));
            case Walk::constIterator:
                return entriesOf<typename To::IteratorConst>(To::constIterator(readOnly));
            case Walk::iteratorConst:
                return entriesOf<typename To::IteratorConst>(To::iteratorConst(readOnly));
            case Walk::range:
                return rangeOf(To::iterator(as<A>(entity)));
            case Walk::constRange:
                return rangeOf(To::constIterator(readOnly));
        }
        return {};
    }
    Entries walkFrom(Qor::Entity& entity, unsigned from, bool isConst) const override {
        return isConst ? entriesOf(To::constIterator(as<A>(std::as_const(entity)), keys_[from]))
                       : entriesOf(To::iterator(as<A>(entity), keys_[from]));
    }
    bool isOrdered(Qor::Entity& entity) const override {
        std::vector<Key> met;
        for (typename To::QorIterator at = To::iterator(as<A>(entity)); at; ++at) {
            met.push_back(at.member()->fwkKey());
        }
        for (std::size_t i = 1; i < met.size(); ++i) {
            auto const before = reversedHash(met[i - 1]);
            auto const after = reversedHash(met[i]);
            if (after < before || (after == before && met[i] < met[i - 1])) {
                return false;
            }
        }
        return true;
    }
    std::vector<std::string> delThirds(Qor::Entity& entity) const override {
        std::vector<std::string> removed;
        unsigned met = 0;
        for (auto at = To::iterator(as<A>(entity)); at; ++at, ++met) {
            if (met % 3 == 0) {
                removed.push_back(textOf(at.key()));
                at.del();
            }
        }
        return removed;
    }

  protected:
    static std::string entryText(typename A::Value const& value) {
        if constexpr (A::kind == Kind::childMap) {
            return textOf(value->name());
        } else {
            return textOf(value);
        }
    }
    template <class It>
    static Entries entriesOf(It at) {
        Entries all;
        for (; at; ++at) {
            all.push_back({textOf(at.key()), entryText(at.value())});
        }
        return all;
    }
    template <class It>
    static Entries rangeOf(It at) {
        Entries all;
        for (auto const& [key, value] : at) {
            all.push_back({textOf(key), entryText(value)});
        }
        return all;
    }

    std::vector<Key> const keys_ = distinctSamples<Key>(40);
};

template <class A>
class AccessedMap final : public AccessedKeyed<A, Mapped> {
  public:
    using AccessedKeyed<A, Mapped>::AccessedKeyed;
    using To = Accessors<A>;
    using Value = typename A::Value;

    void change(Qor::Entity& entity) const override { set(entity, 1, 0); }
    std::string value(unsigned i) const override { return textOf(values_[i]); }
    std::string absent() const override { return textOf(Value()); }
    std::string get(Qor::Entity const& entity, unsigned key) const override {
        return textOf(To::get(as<A>(entity), this->keys_[key]));
    }
    void set(Qor::Entity& entity, unsigned key, unsigned value) const override {
        To::set(as<A>(entity), this->keys_[key], values_[value]);
    }
    void setAbsent(Qor::Entity& entity, unsigned key) const override {
        To::set(as<A>(entity), this->keys_[key], Value());
    }
    std::string del(Qor::Entity& entity, unsigned key) const override {
        return textOf(To::del(as<A>(entity), this->keys_[key]));
    }
    std::pair<unsigned, std::string> add(Qor::Entity& entity, unsigned key,
                                         unsigned value) const override {
        Qor::Ptr<typename To::Member> const member =
            To::add(as<A>(entity), this->keys_[key], values_[value]);
        return {member->qorRefs(), textOf(member->key())};
    }
    void notify(Qor::Entity& entity, unsigned key) const override {
        To::notify(as<A>(entity), this->keys_[key],
                   To::iterator(as<A>(entity), this->keys_[key]).member());
    }
    void const* node(Qor::Entity& entity, unsigned key) const override {
        return To::iterator(as<A>(entity), this->keys_[key]).member().ptr();
    }
    EntityPtr target(unsigned value) const override {
        if constexpr (A::kind == Kind::refMap) {
            return values_[value];
        } else {
            return nullptr;
        }
    }
    std::string viaNode(Qor::Entity const& entity, unsigned key) const override {
        if constexpr (A::kind == Kind::refMap) {
            auto const member = To::member(as<A>(entity), this->keys_[key]);
            return member ? textOf(member->value()) : "no node";
        } else {
            return "no reference";
        }
    }

  private:
    std::vector<Value> const values_{numbered<Value>(0), numbered<Value>(1)};
};

template <class A>
class AccessedOwnedMap final : public AccessedKeyed<A, OwnedMap> {
  public:
    using AccessedKeyed<A, OwnedMap>::AccessedKeyed;
    using To = Accessors<A>;

    void change(Qor::Entity& entity) const override { set(entity, 1); }
    EntityPtr get(Qor::Entity const& entity, unsigned nth) const override {
        return To::get(as<A>(entity), this->keys_[nth]);
    }
    EntityPtr set(Qor::Entity& entity, unsigned nth) const override {
        return To::set(as<A>(entity), this->keys_[nth]);
    }
    EntityPtr add(Qor::Entity& entity, unsigned nth) const override {
        return To::add(as<A>(entity), this->keys_[nth]);
    }
    EntityPtr del(Qor::Entity& entity, unsigned nth) const override {
        return To::del(as<A>(entity), this->keys_[nth]);
    }
    void notify(Qor::Entity& entity, unsigned nth) const override {
        auto const member = To::get(as<A>(entity), this->keys_[nth]);
        To::notify(as<A>(entity), this->keys_[nth], member);
    }
};

template <class A>
class AccessedChild final : public Child {
  public:
    using Child::Child;
    using To = Accessors<A>;

    std::string held(Qor::Entity const& entity) const override {
        auto const child = To::get(as<A>(entity));
        return child ? textOf(child->name()) : "null";
    }
    void change(Qor::Entity& entity) const override { set(entity, 1); }
    EntityPtr get(Qor::Entity const& entity, unsigned nth) const override {
        auto const child = To::get(as<A>(entity));
        return child && child->name() == numbered<Qor::Name>(nth) ? child : nullptr;
    }
    EntityPtr set(Qor::Entity& entity, unsigned nth) const override {
        return To::set(as<A>(entity), numbered<Qor::Name>(nth));
    }
    EntityPtr add(Qor::Entity& entity, unsigned nth) const override {
        return To::add(as<A>(entity), numbered<Qor::Name>(nth));
    }
    EntityPtr del(Qor::Entity& entity, unsigned) const override { return To::del(as<A>(entity)); }
};

}  // namespace Contract

#endif
