// The operations of reference collections: each member counts a reference on an entity that stands
// elsewhere, and takes no part in where that is.
#ifndef QOR_MODEL_REFERENCE_H
#define QOR_MODEL_REFERENCE_H

#include <qor/model/Keyed.h>

namespace Qor {

/// The member that holds the reference, or null.
template <class A>
Ptr<typename A::Member> referenceMember(typename A::Entity const& entity,
                                        typename A::Key const& key) {
    return Ptr<typename A::Member>(A::map(entity).member(key));
}

/// Makes `key` refer to `target`; a null target removes the key. Tells so when that is a change.
/// What `key` referred to, and the member that bore the key, go when all is told: their ends may
/// run any code.
template <class A>
void setReference(typename A::Entity& entity, typename A::Key const& key,
                  typename A::Value const& target) {
    typename A::Value old;
    Ptr<typename A::Member> gone;
    if (typename A::Member* const member = A::map(entity).member(key)) {
        if (member->value() == target) {
            return;
        }
        if (target) {
            old = member->value();
            member->valueIs(target);
        } else {
            gone = A::map(entity).memberDel(key);
        }
    } else if (target) {
        newKeyed<A>(entity, key, target);
    } else {
        return;
    }
    tellKeyed<A>(entity, key);
}

}  // namespace Qor

#endif
