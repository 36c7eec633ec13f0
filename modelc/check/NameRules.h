// Which names a description may give.
#ifndef MODELC_CHECK_NAMERULES_H
#define MODELC_CHECK_NAMERULES_H

#include <modelc/check/Context.h>

namespace Modelc {

// Each reports what it finds wrong, and returns whether the name may be used.
bool checkClassName(Context const& context, Tree::Word const& name);
bool checkEnumeratorName(Context const& context, Tree::Word const& name);
bool checkValueMemberName(Context const& context, Tree::Word const& name);
bool checkEntityMemberName(Context const& context, Tree::Word const& name);
bool checkArgumentName(Context const& context, Tree::Word const& name);

}  // namespace Modelc

#endif
