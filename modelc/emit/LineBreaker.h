// Breaks a line that is too long where the house's format breaks it.
//
// It knows the shapes of the lines that emitters write: heads of classes, aliases of templates,
// heads of functions with and without initializers, calls, comparisons and assignments. A line of
// another shape stays as it is.
#ifndef MODELC_EMIT_LINEBREAKER_H
#define MODELC_EMIT_LINEBREAKER_H

#include <cstddef>
#include <string>

namespace Modelc {

constexpr std::size_t longestLine = 100;

// One or more lines, without a line break at the end.
std::string breakLine(std::string const& line);

}  // namespace Modelc

#endif
