// The row of a class's table for each attribute, made from its descriptor: which C++ operations a
// generic one stands for. What a setter refuses or throws passes through.
#ifndef QOR_GENERIC_ATTRIBUTE_STEPS_H
#define QOR_GENERIC_ATTRIBUTE_STEPS_H

#include <array>
#include <tuple>

#include <qor/generic/GenericIfEntity.h>
#include <qor/generic/GenericList.h>
#include <qor/model/Class.h>

namespace Qor {

template <class A>
struct AttributeSteps {
    using E = typename A::Entity;
    static E& of(Entity& entity) noexcept { return static_cast<E&>(entity); }
    static E const& of(Entity const& entity) noexcept { return static_cast<E const&>(entity); }
};

/// Through the class's own operation where it can be overridden.
template <class A>
struct SingleSteps : AttributeSteps<A> {
    static GenericIf::Ptr get(Entity& entity, GenericIf const*, bool isConst) {
        return wrapped(A::field(SingleSteps::of(entity)), isConst);
    }
    static void set(Entity& entity, GenericIf const*, GenericIf const& value) {
        setAttribute<A>(SingleSteps::of(entity), unwrapped<typename A::Value>(value));
    }
};

template <class A>
struct ChildSteps : SingleSteps<A> {
    static GenericIf::Ptr make(Entity& entity, GenericIf const* list, bool isConst) {
        GenericArguments arguments(list);
        auto const name = argument<Name>(arguments.next("name").ptr(), "name");
        arguments.end(A::name);
        return wrapped(setChild<A>(ChildSteps::of(entity), name), isConst);
    }
    static GenericIf::Ptr del(Entity& entity, GenericIf const*, bool isConst) {
        typename A::Value const gone = delChild<A>(ChildSteps::of(entity));
        return gone ? wrapped(gone, isConst) : nullptr;
    }
};

template <class A>
struct WalkSteps : AttributeSteps<A> {
    using Key = typename A::Key;
    struct Held : QorMemPool {
        explicit Held(AttributeIteratorConst<A> iterator) : at(std::move(iterator)) {}
        AttributeIteratorConst<A> at;
    };
    static Held& held(void* iterator) noexcept { return *static_cast<Held*>(iterator); }
    static Held const& held(void const* iterator) noexcept {
        return *static_cast<Held const*>(iterator);
    }

    static void* atStart(Entity& entity) {
        return new Held(AttributeIteratorConst<A>(WalkSteps::of(entity)));
    }
    static void* atKey(Entity& entity, GenericIf const& key) {
        return new Held(AttributeIteratorConst<A>(WalkSteps::of(entity), unwrapped<Key>(key)));
    }
    static void* atHash(Entity& entity, GenericIf const& key) {
        return new Held(
            AttributeIteratorConst<A>::fromHash(WalkSteps::of(entity), unwrapped<Key>(key)));
    }
    static GenericIf::Ptr value(void const* iterator, bool isConst) {
        typename A::Value const value = held(iterator).at.value();
        return wrapped(value, isConst);
    }
    static GenericIf::PtrConst key(void const* iterator) {
        Key const& key = held(iterator).at.key();
        return wrapped(key, true);
    }
    static void step(void* iterator) { ++held(iterator).at; }
    static void* clone(void const* iterator) { return new Held(held(iterator).at); }
    static bool isThere(void const* iterator) { return static_cast<bool>(held(iterator).at); }
    static void end(void* iterator) { delete &held(iterator); }

    static constexpr GenericWalk walk{&atStart, &atKey, &atHash,  &value, &key,
                                      &step,    &clone, &isThere, &end};
};

/// What collections of all kinds have in common.
template <class A>
struct CollectionSteps : AttributeSteps<A> {
    using Key = typename A::Key;
    static U32 count(Entity const& entity) { return A::map(CollectionSteps::of(entity)).size(); }
    static U32 version(Entity const& entity) {
        return A::map(CollectionSteps::of(entity)).version();
    }
    static bool exists(Entity const& entity, GenericIf const& key) {
        return A::map(CollectionSteps::of(entity)).member(unwrapped<Key>(key)) != nullptr;
    }
};

template <class A>
struct KeyedSteps : CollectionSteps<A> {
    using Key = typename A::Key;
    using Value = typename A::Value;
    static GenericIf::Ptr get(Entity& entity, GenericIf const* key, bool isConst) {
        return wrapped(keyedValue<A>(KeyedSteps::of(entity), unwrapped<Key>(*key)), isConst);
    }
    static void set(Entity& entity, GenericIf const* key, GenericIf const& value) {
        auto to = unwrapped<Value>(value);
        setKeyedAttribute<A>(KeyedSteps::of(entity), unwrapped<Key>(*key), std::move(to));
    }
    static GenericIf::Ptr del(Entity& entity, GenericIf const* key, bool) {
        auto const at = unwrapped<Key>(*key);
        bool const wasThere = KeyedSteps::exists(entity, *key);
        [[maybe_unused]] Value const old = delKeyedAttribute<A>(KeyedSteps::of(entity), at);
        if constexpr (std::is_same_v<Value, bool>) {
            return wrapped(old, false);
        } else {
            return wrapped(wasThere, false);
        }
    }
};

template <class A>
struct ChildMapSteps : CollectionSteps<A> {
    static GenericIf::Ptr get(Entity& entity, GenericIf const* key, bool isConst) {
        return wrapped(ownedEntity<A>(ChildMapSteps::of(entity), unwrapped<Name>(*key)), isConst);
    }
    static GenericIf::Ptr make(Entity& entity, GenericIf const* list, bool isConst) {
        GenericArguments arguments(list);
        auto const name = argument<Name>(arguments.next("name").ptr(), "name");
        arguments.end(A::name);
        return wrapped(setOwned<A>(ChildMapSteps::of(entity), name), isConst);
    }
    static GenericIf::Ptr del(Entity& entity, GenericIf const* key, bool isConst) {
        auto const gone = delOwned<A>(ChildMapSteps::of(entity), unwrapped<Name>(*key));
        return gone ? wrapped(gone, isConst) : nullptr;
    }
};

/// A call: all arguments are read before anything is done.
template <class A>
struct OperationSteps : AttributeSteps<A> {
    static GenericIf::Ptr call(Entity& entity, GenericIf const* list, bool) {
        GenericArguments given(list);
        return callWith(OperationSteps::of(entity), given,
                        std::make_index_sequence<std::tuple_size_v<typename A::Arguments>>());
    }

  private:
    template <std::size_t... i>
    static GenericIf::Ptr callWith(typename A::Entity& entity, GenericArguments& given,
                                   std::index_sequence<i...>) {
        // Braces, so that the arguments are taken in their order.
        typename A::Arguments const arguments{
            argument<std::tuple_element_t<i, typename A::Arguments>>(
                given.next(A::argumentNames[i]).ptr(), A::argumentNames[i])...};
        given.end(A::name);
        using Result = decltype(A::call(entity, std::get<i>(arguments)...));
        if constexpr (std::is_void_v<Result>) {
            A::call(entity, std::get<i>(arguments)...);
            return nullptr;
        } else {
            return wrapped(A::call(entity, std::get<i>(arguments)...), false);
        }
    }
};

template <class A>
constexpr GenericAttribute genericAttribute() {
    GenericAttribute row{.id = A::id, .name = A::name, .kind = A::kind};
    if constexpr (A::kind == AttributeKind::scalar) {
        row.get = &SingleSteps<A>::get;
        row.set = &SingleSteps<A>::set;
    } else if constexpr (A::kind == AttributeKind::constField) {
        row.get = &SingleSteps<A>::get;
    } else if constexpr (A::kind == AttributeKind::child) {
        row.get = &ChildSteps<A>::get;
        row.make = &ChildSteps<A>::make;
        row.del = &ChildSteps<A>::del;
    } else if constexpr (A::kind == AttributeKind::childMap) {
        row.get = &ChildMapSteps<A>::get;
        row.make = &ChildMapSteps<A>::make;
        row.del = &ChildMapSteps<A>::del;
    } else if constexpr (A::kind == AttributeKind::operation) {
        row.get = &OperationSteps<A>::call;
    } else {
        row.get = &KeyedSteps<A>::get;
        row.set = &KeyedSteps<A>::set;
        row.del = &KeyedSteps<A>::del;
    }
    if constexpr (A::isKeyed) {
        row.count = &CollectionSteps<A>::count;
        row.version = &CollectionSteps<A>::version;
        row.exists = &CollectionSteps<A>::exists;
        row.walk = &WalkSteps<A>::walk;
    }
    return row;
}

/// The rows of a class, in the order of its attributes.
template <class Attributes>
struct GenericTable;

template <class... A>
struct GenericTable<AttributeList<A...>> {
    static constexpr std::array<GenericAttribute, sizeof...(A)> rows{genericAttribute<A>()...};
};

}  // namespace Qor

#endif
