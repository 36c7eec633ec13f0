// Accessors must not collide: `port` brings `ports()`, `portIs()`, `newPort()` and more, and a
// class that has them can have no member of such a name besides.
#ifndef MODELC_CHECK_ACCESSORCHECK_H
#define MODELC_CHECK_ACCESSORCHECK_H

#include <modelc/check/Context.h>

namespace Modelc {

void checkAccessors(Context const& context, Tree::Entity const& tree, Entity const& entity);

}  // namespace Modelc

#endif
