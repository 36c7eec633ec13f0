// Documentation of the description as documentation comments of the code, broken anew for the
// code's line length.
#ifndef MODELC_EMIT_DOCTEXT_H
#define MODELC_EMIT_DOCTEXT_H

#include <cstddef>
#include <string>

#include <modelc/check/Model.h>

namespace Modelc {

// The lines of the comment, for a place that is indented so far. Empty for no documentation. A line
// that begins with a blank stands as it is; an empty line parts paragraphs.
std::string docText(Doc const& doc, std::size_t indentation);

// The same for a comment that begins with `marker`, such as "//".
std::string commentText(Doc const& doc, std::size_t indentation, std::string const& marker);

}  // namespace Modelc

#endif
