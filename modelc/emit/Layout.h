// Text in long form -> text in the house's format.
//
// Emitters write every declaration on one line and every function's body on lines of its own.
// Layout puts short bodies behind their heads, breaks what is longer than a line where clang-format
// would break it, and leaves single empty lines between things and none at the ends of blocks. It
// knows the shapes that emitters write, and no others. What stands between `// clang-format off`
// and `on` keeps its lines.
#ifndef MODELC_EMIT_LAYOUT_H
#define MODELC_EMIT_LAYOUT_H

#include <string>

namespace Modelc {

std::string layout(std::string const& text);

}  // namespace Modelc

#endif
