// The operations of keyed values: sets, whose value is a stored bool and not presence, and maps.
// Only setKeyed searches, compares and tells; newKeyed is the bare step beneath it.
#ifndef QOR_MODEL_KEYED_H
#define QOR_MODEL_KEYED_H

#include <utility>

#include <qor/model/AttributeIterators.h>
#include <qor/model/Tell.h>

namespace Qor {

/// The value under `key`, or the default of its type.
template <class A>
typename A::Value keyedValue(typename A::Entity const& entity, typename A::Key const& key) {
    typename A::Member const* const member = A::map(entity).member(key);
    return member ? A::valueOf(*member) : typename A::Value();
}

/// Adds a member whose key must not be there, and tells nobody.
template <class A>
Ptr<typename A::Member> newKeyed(typename A::Entity& entity, typename A::Key key,
                                 typename A::Value value) {
    auto member = make<typename A::Member>(std::move(key), std::move(value));
    A::map(entity).newMember(member, member->fwkHash());
    return member;
}

/// Stores `value` under `key`, adding a member when there is none, and tells so unless the key held
/// that value already.
template <class A>
void setKeyed(typename A::Entity& entity, typename A::Key key, typename A::Value value) {
    if (typename A::Member* const member = A::map(entity).member(key)) {
        if (member->value() == value) {
            return;
        }
        member->valueIs(std::move(value));
    } else {
        newKeyed<A>(entity, key, std::move(value));
    }
    tellKeyed<A>(entity, key);
}

/// Removes the member, tells so and gives the old value; the default when there was none.
template <class A>
typename A::Value delKeyed(typename A::Entity& entity, typename A::Key const& key) {
    Ptr<typename A::Member> const gone = A::map(entity).memberDel(key);
    if (!gone) {
        return typename A::Value();
    }
    tellKeyed<A>(entity, key);
    return A::valueOf(*gone);
}

/// Removes all members and tells each; also those that handlers add meanwhile.
template <class A>
void delAll(typename A::Entity& entity) {
    Ptr<typename A::Entity> const held(&entity);
    AttributeIterator<A>(entity).deleteAll();
}

}  // namespace Qor

#endif
