// What is wrong with a description. Everything that is wrong is gathered, not the first error only,
// and handed out in the order of the files, the lines and the columns, whatever the order in which
// it was found.
//
// A diagnostic says what is wrong and what was expected, and prints as
//     FILE:LINE:COLUMN: error: WHAT; expected WHAT
// Words quoted from the description are shortened and have their unprintable bytes escaped
// (quoted()), so that a diagnostic is one line whatever the input was. More than `most` errors are
// cut off, with a last one that says so.
#ifndef MODELC_SYNTAX_DIAGNOSTICS_H
#define MODELC_SYNTAX_DIAGNOSTICS_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include <modelc/syntax/Position.h>

namespace Modelc {

// A place in one of the files of a run; `file` is the ordinal under which Diagnostics knows the
// file.
struct Place {
    std::uint32_t file = 0;
    Position at;

    friend auto operator<=>(Place const&, Place const&) = default;
};

struct Diagnostic {
    Place place;
    std::string what;
    std::string expected;
};

class Diagnostics {
  public:
    static constexpr std::size_t most = 200;

    // Makes a file known under the name by which diagnostics call it, and returns its ordinal.
    std::uint32_t fileIs(std::string name);

    void report(Place place, std::string what, std::string expected);

    bool empty() const { return found_.empty(); }
    // One line a diagnostic, sorted, equal ones once.
    std::vector<std::string> lines() const;

  private:
    std::vector<std::string> files_;
    std::vector<Diagnostic> found_;
    bool cut_ = false;
};

// The text between single quotes, at most 40 bytes of it, unprintable bytes as \xNN.
std::string quoted(std::string_view text);

}  // namespace Modelc

#endif
