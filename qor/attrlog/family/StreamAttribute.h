// What the attribute log needs of an attribute, beside its descriptor: the record kind, and how the
// value is set and the change replayed. Each attribute of a class that is streamed has one small
// struct, X::QorNboAttrLogSa::AStream, which derives from the base of its kind here and adds
//
//   set(entity[, key], value), del(entity[, key])   through the entity's own setters
//   on(adapter[, key])                              the adapter's handler, through its slot
//
// The list of them, in the order of their ids, is X::QorNboAttrLogSa::QorStreamed.
#ifndef QOR_ATTRLOG_FAMILY_STREAMATTRIBUTE_H
#define QOR_ATTRLOG_FAMILY_STREAMATTRIBUTE_H

#include <qor/model/Attribute.h>
#include <qor/model/Notifier.h>

#include <limits>

namespace Qor {

enum class StreamKind : U8 {
    scalar,       // a value, whole in one record
    text,         // a text, in chunks
    flagMember,   // keyed truth values
    textMember,   // keyed texts, in chunks
    reference,    // keyed references
    childMember,  // keyed entities that are owned
    child,        // one entity that is owned
    entry,        // keyed entities of any class, which the descriptor sends and reads itself
};

/// The attribute that a record's id is about: a negated one tells a removal. The one number that
/// has no counterpart is no attribute's.
constexpr AttributeId withoutSign(AttributeId id) noexcept {
    if (id == std::numeric_limits<AttributeId>::min()) return 0;
    return id < 0 ? -id : id;
}

constexpr bool isKeyedKind(StreamKind kind) noexcept {
    return kind == StreamKind::flagMember || kind == StreamKind::textMember ||
           kind == StreamKind::reference || kind == StreamKind::childMember ||
           kind == StreamKind::entry;
}

template <class A, StreamKind k>
struct StreamAttribute {
    using Attr = A;
    using Entity = typename A::Entity;
    using Value = typename A::Value;
    static constexpr AttributeId id = A::id;
    static constexpr StreamKind kind = k;
    static constexpr bool isKeyed = isKeyedKind(k);
    static constexpr char const* name = A::name;
};

template <class A>
struct StreamScalar : StreamAttribute<A, StreamKind::scalar> {
    static typename A::Value get(typename A::Entity const& entity) { return A::field(entity); }
};

template <class A>
struct StreamText : StreamAttribute<A, StreamKind::text> {
    static auto const& get(typename A::Entity const& entity) { return A::field(entity); }
};

template <class A, StreamKind k>
struct StreamKeyed : StreamAttribute<A, k> {
    using Key = typename A::Key;
    using Member = typename A::Member;
};

template <class A>
struct StreamFlagMember : StreamKeyed<A, StreamKind::flagMember> {};
template <class A>
struct StreamTextMember : StreamKeyed<A, StreamKind::textMember> {};
template <class A>
struct StreamReference : StreamKeyed<A, StreamKind::reference> {
    using Target = typename A::Target;
};
template <class A>
struct StreamChildMember : StreamKeyed<A, StreamKind::childMember> {
    using Target = typename A::Target;
};
template <class A>
struct StreamChild : StreamAttribute<A, StreamKind::child> {
    using Target = typename A::Target;
    static typename A::Value const& get(typename A::Entity const& entity) {
        return A::field(entity);
    }
};

/// The child that a member of an owning collection is, or holds; null of null.
template <class S>
Ptr<typename S::Target> childOfMember(typename S::Member* member) {
    if constexpr (std::is_same_v<typename S::Member, typename S::Target>) {
        return Ptr<typename S::Target>(member);
    } else {
        return member ? S::Attr::valueOf(*member) : nullptr;
    }
}

/// isNondestructing, the framework's attribute that every root class streams.
template <class E>
struct NondestructingAttribute {
    using Entity = E;
    using Value = bool;
    static constexpr AttributeId id = isNondestructingId;
    static constexpr char const* name = "isNondestructing";
};

template <class E>
struct StreamNondestructing : StreamAttribute<NondestructingAttribute<E>, StreamKind::scalar> {
    /// How references are counted is no peer's to say.
    static constexpr bool isOfOneProcess = true;
    static bool get(E const& entity) { return entity.isNondestructing(); }
    static void set(E& entity, bool value) { entity.isNondestructingIs(value); }
    template <class Adapter>
    static void on(Adapter& adapter) {
        adapter.onIsNondestructing();
    }
};

/// The streamed attributes of one class.
template <class... S>
struct StreamList {
    static constexpr std::size_t size = sizeof...(S);
    static constexpr bool hasChildren =
        ((S::kind == StreamKind::childMember || S::kind == StreamKind::child) || ...);
    template <class Visit>
    static constexpr void forEach(Visit&& visit) {
        (visit.template operator()<S>(), ...);
    }
    /// Visits in order while the visit returns true; whether it passed the last.
    template <class Visit>
    static constexpr bool whileTrue(Visit&& visit) {
        return (visit.template operator()<S>() && ...);
    }
    static constexpr bool has([[maybe_unused]] AttributeId id) noexcept {
        return ((S::id == id) || ...);
    }
    static constexpr AttributeId first() noexcept {
        AttributeId result = 0;
        static_cast<void>(((result = S::id, true) || ...));
        return result;
    }
    static constexpr AttributeId last() noexcept {
        AttributeId result = 0;
        ((result = S::id), ...);
        return result;
    }
    /// The attribute after that id, 0 after the last.
    static constexpr AttributeId after([[maybe_unused]] AttributeId id) noexcept {
        AttributeId result = 0;
        static_cast<void>(((S::id > id ? (result = S::id, true) : false) || ...));
        return result;
    }
    /// The place of an attribute in the list.
    template <class Wanted>
    static constexpr U32 indexOf() noexcept {
        U32 index = 0;
        static_cast<void>(((std::is_same_v<S, Wanted> ? true : (++index, false)) || ...));
        return index;
    }
};

}  // namespace Qor

#endif
