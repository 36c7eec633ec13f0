// Digests of parts of a tree, by which two processes find out whether they hold the same without
// sending it again. They are made from the text forms of values, so they are the same on every
// machine, and whether a class is compiled or known by its description.
#ifndef QOR_ATTRLOG_SESSION_STATE_DIGEST_H
#define QOR_ATTRLOG_SESSION_STATE_DIGEST_H

#include <qor/entity/Entity.h>

namespace Qor {

namespace NboAttrLog {

/// Some members of a collection, in its order; or an entity's own values, which are one row.
struct DigestPage {
    String8 path;               // of the entity
    AttributeId attribute = 0;  // the collection; 0: the entity's own values
    String8 from;               // the text of the key that it begins with; empty: the first
    U32 most = 0;               // rows
};

struct StateDigest {
    U32 rows = 0;
    U64 value = 0;
    String8 next;  // the text of the key behind the last row; empty at the end
};

/// Of an entity all values that it holds, collections of values too, and not its children; of a
/// member that is a child of the entity the same of it. Raises RangeException for an attribute that
/// is no collection and a key that can't be one. Some 2 us a row.
QOR_EXPORT StateDigest stateDigest(Entity& entity, DigestPage const& page);

}  // namespace NboAttrLog

}  // namespace Qor

#endif
