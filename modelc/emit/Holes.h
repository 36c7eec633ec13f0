// Text with named holes: `$name$`.
//
// A hole that stands alone on its line takes a text of any number of lines, each of which gets the
// line's indentation; if the text is empty the line goes. Elsewhere a hole takes a text in place. A
// hole that nothing is known of is a mistake in the compiler and stops it.
#ifndef MODELC_EMIT_HOLES_H
#define MODELC_EMIT_HOLES_H

#include <functional>
#include <map>
#include <string>
#include <string_view>

namespace Modelc {

using Holes = std::map<std::string, std::string, std::less<>>;

// The text with all its holes filled. A line break at the very start of the text is left out, so
// that a raw string may begin on a line of its own.
std::string fill(std::string_view text, Holes const& holes);

// Both; what `more` says goes before what `holes` says.
Holes with(Holes holes, Holes const& more);

}  // namespace Modelc

#endif
