// The operations of what an entity owns: collections keyed by the owned entities' names, and single
// children. The owner makes the entity, is its parent, and clears that when it lets it go.
#ifndef QOR_MODEL_OWNED_H
#define QOR_MODEL_OWNED_H

#include <qor/core/ValidPtr.h>
#include <qor/model/Keyed.h>

namespace Qor {

/// The entity of that name, or null.
template <class A>
typename A::Value ownedEntity(typename A::Entity const& entity, Name const& name) {
    return typename A::Value(A::map(entity).member(name));
}

/// Makes an entity and puts it into the collection; the name must not be there. Tells nobody.
template <class A>
typename A::Value newOwned(typename A::Entity& entity, Name name) {
    auto owned = validPtr(make<typename A::Target>(std::move(name)));
    owned->parentAttrIdIs(A::id);
    A::map(entity).newMember(owned, owned->fwkHash());
    owned->parentIs(Ptr<Entity>(&entity));
    return owned;
}

/// The entity of that name, made and told of when there is none.
template <class A>
typename A::Value setOwned(typename A::Entity& entity, Name const& name) {
    if (typename A::Member* const member = A::map(entity).member(name)) {
        return typename A::Value(member);
    }
    typename A::Value owned = newOwned<A>(entity, name);
    tellKeyed<A>(entity, name);
    return validPtr(std::move(owned));
}

/// What follows the removal of an owned entity: its parent is cleared, and the removal told.
template <class A>
void notifyOwned(typename A::Entity& entity, Name const& name, typename A::Value const& owned) {
    owned->parentIs(nullptr);
    tellKeyed<A>(entity, name);
}

/// Removes the entity of that name and hands it over; null if there is none.
template <class A>
typename A::Value delOwned(typename A::Entity& entity, Name const& name) {
    typename A::Value gone = A::map(entity).memberDel(name);
    if (gone) {
        notifyOwned<A>(entity, name, gone);
    }
    return gone;
}

/// Makes the entity the parent of what is, or is to be, its single child.
template <class A>
void takeChild(typename A::Entity& entity, typename A::Target& child) {
    child.parentAttrIdIs(A::id);
    child.parentIs(Ptr<Entity>(&entity));
}

/// Makes a single child and leaves the attribute unset. Tells nobody.
template <class A>
typename A::Value newChild(typename A::Entity& entity, Name name) {
    auto child = validPtr(make<typename A::Target>(std::move(name)));
    takeChild<A>(entity, *child);
    return child;
}

/// The child of that name; one of another name is let go and a new one made and told of.
template <class A>
typename A::Value setChild(typename A::Entity& entity, Name const& name) {
    typename A::Value& field = A::field(entity);
    if (field && field->qorName() == name) {
        return field;
    }
    // Made before the old one is let go: it may be that it can't be.
    typename A::Value child = validPtr(make<typename A::Target>(name));
    if (field) {
        field->parentIs(nullptr);
    }
    takeChild<A>(entity, *child);
    // The old one goes when all is told: its end may run any code.
    typename A::Value const old = std::exchange(field, child);
    tellScalar<A>(entity);
    return child;
}

/// Lets the child go and hands it over; null if there is none.
template <class A>
typename A::Value delChild(typename A::Entity& entity) {
    typename A::Value gone = std::exchange(A::field(entity), nullptr);
    if (gone) {
        gone->parentIs(nullptr);
        tellScalar<A>(entity);
    }
    return gone;
}

/// One step down a path through what the entity owns: "attribute/name" or, for a single child,
/// "attribute". See Entity::qorPathStep.
template <class Attributes, class E>
Ptr<Entity> ownedAt(E& entity, String8 const* elements, std::size_t count, std::size_t* used) {
    Ptr<Entity> found;
    Attributes::forEach([&]<class A>() {
        if (count == 0 || elements[0].view() != A::name) {
            return;
        }
        if constexpr (A::kind == AttributeKind::childMap) {
            if (count > 1) {
                found = ownedEntity<A>(entity, elements[1]);
                *used = 2;
            }
        } else if constexpr (A::kind == AttributeKind::child) {
            found = A::field(entity);
            *used = 1;
        }
    });
    return found;
}

/// Clears the parent of everything that an owner still has. Tells nobody.
template <class Attributes, class E>
void orphanOwned(E& entity) {
    Attributes::forEach([&]<class A>() {
        if constexpr (A::kind == AttributeKind::childMap) {
            for (AttributeIteratorConst<A> at(entity); at; ++at) {
                at.value()->parentIs(nullptr);
            }
        } else if constexpr (A::kind == AttributeKind::child) {
            if (A::field(entity)) {
                A::field(entity)->parentIs(nullptr);
            }
        }
    });
}

/// The end of an owner: everything that it owns goes, in the order of the attributes, and is told.
/// What handlers add meanwhile goes with the owner's fields; whoever holds it has no parent then.
template <class Attributes, class E>
void dropOwned(E& entity) {
    Attributes::forEach([&]<class A>() {
        if constexpr (A::kind == AttributeKind::childMap) {
            delAll<A>(entity);
        } else if constexpr (A::kind == AttributeKind::child) {
            delChild<A>(entity);
        }
    });
    orphanOwned<Attributes>(entity);
}

}  // namespace Qor

#endif
