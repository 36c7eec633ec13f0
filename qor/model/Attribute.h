// Descriptors: one small struct for each attribute of a class, from which the templates of this
// folder work. A descriptor derives from the base of its kind below and adds, as static members,
//
//   name                     the attribute's name
//   field(entity)            the field of a scalar, a constructor attribute or a single child
//   map(entity)              the map of a keyed attribute
//   tell(hearer[, key])      calls the attribute's handler, of a notifiee or of who stands for one
//   tellWhole(hearer)        of a keyed attribute: calls the handler for it as a whole
//   pending(notifiee)        of a keyed attribute: the keys that wait for delivery
//   set, del                 the operations, where a derived class can override them
//   notify(entity, key, m)   calls the attribute's aNotify operation, of a keyed attribute
//
// A class lists its own descriptors, in the order of their ids, as QorAttributes.
#ifndef QOR_MODEL_ATTRIBUTE_H
#define QOR_MODEL_ATTRIBUTE_H

#include <array>
#include <tuple>

#include <qor/collections/HashMap.h>
#include <qor/collections/Members.h>
#include <qor/core/Name.h>

namespace Qor {

enum class AttributeKind : U8 {
    scalar,      // a value with a setter
    constField,  // a value that only the constructor sets
    valueMap,    // keyed values: a set (of bool) or a map (of text)
    refMap,      // keyed references to entities that something else owns
    childMap,    // entities that this one owns, keyed by their names
    child,       // one entity that this one owns
    operation,   // a registered operation
};

template <class E, AttributeId n, AttributeKind k>
struct AttributeBase {
    using Entity = E;
    static constexpr AttributeId id = n;
    static constexpr AttributeKind kind = k;
    static constexpr bool isKeyed =
        k == AttributeKind::valueMap || k == AttributeKind::refMap || k == AttributeKind::childMap;
};

template <class E, AttributeId n, class T>
struct ScalarAttribute : AttributeBase<E, n, AttributeKind::scalar> {
    using Value = T;
};

template <class E, AttributeId n, class T>
struct ConstFieldAttribute : AttributeBase<E, n, AttributeKind::constField> {
    using Value = T;
};

template <class E, AttributeId n, class K, class V>
struct ValueMapAttribute : AttributeBase<E, n, AttributeKind::valueMap> {
    using Key = K;
    using Value = V;
    using Member = ValueMember<K, V>;
    using Map = HashMap<Member, K>;
    static decltype(auto) valueOf(Member const& member) noexcept { return member.value(); }
};

template <class E, AttributeId n, class K, class X>
struct RefMapAttribute : AttributeBase<E, n, AttributeKind::refMap> {
    using Key = K;
    using Target = X;
    using Value = Ptr<X>;
    using Member = RefMember<K, X>;
    using Map = HashMap<Member, K>;
    static Ptr<X> const& valueOf(Member const& member) noexcept { return member.value(); }
};

template <class E, AttributeId n, class X>
struct ChildMapAttribute : AttributeBase<E, n, AttributeKind::childMap> {
    using Key = Name;
    using Target = X;
    using Value = Ptr<X>;
    using Member = X;
    using Map = HashMap<X, Name>;
    static Ptr<X> valueOf(X& member) noexcept { return Ptr<X>(&member); }
};

template <class E, AttributeId n, class X>
struct ChildAttribute : AttributeBase<E, n, AttributeKind::child> {
    using Target = X;
    using Value = Ptr<X>;
};

/// Its descriptor also has argumentNames, and call(entity, arguments...).
template <class E, AttributeId n, class... Argument>
struct OperationAttribute : AttributeBase<E, n, AttributeKind::operation> {
    using Arguments = std::tuple<Argument...>;
};

/// The own attributes of a class, in the order of their ids.
template <class... A>
struct AttributeList {
    /// Calls `visit.template operator()<A>()` for each.
    template <class Visit>
    static constexpr void forEach(Visit&& visit) {
        (visit.template operator()<A>(), ...);
    }
    /// The name of the attribute with that id, or null.
    static constexpr char const* nameOf([[maybe_unused]] AttributeId id) noexcept {
        char const* found = nullptr;
        static_cast<void>(((A::id == id ? (found = A::name, true) : false) || ...));
        return found;
    }
    /// Whether the attribute with that id is keyed.
    static constexpr bool isKeyed([[maybe_unused]] AttributeId id) noexcept {
        return ((A::id == id && A::isKeyed) || ...);
    }
};

}  // namespace Qor

#endif
