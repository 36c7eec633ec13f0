#ifndef VGWCTL_OUTPUT_VALUE_TEXT_H
#define VGWCTL_OUTPUT_VALUE_TEXT_H

// Values as texts for people and for scripts.
//
// What came from a peer never reaches a terminal as it is: control bytes and bytes that are no
// UTF-8 are written as \xNN.

#include <vgwctl/state/Value.h>

#include <nlohmann/json_fwd.hpp>

#include <string>
#include <string_view>

namespace Vgwctl {

/// How texts inside of cells are written; as the OVSDB tools' --data.
enum class TextForm {
    string,  // in double quotes where they could be taken for something else
    bare,    // as they are
    json,    // the json form of the value
};

/// On one line: `red`, `5000`, `"a b"`, `{7=red, 8=blue}`, `{192.0.2.1, 192.0.2.2}`.
std::string textOf(Value const& value, TextForm form = TextForm::string);

/// Truth values and numbers as such, texts and paths as strings, records as objects, sets as
/// ["set", [...]] and maps as ["map", [[key, value], ...]], as the OVSDB tools do (RFC 7047,
/// section 5.1).
nlohmann::json jsonOf(Value const& value);

/// Without bytes that a terminal could take for a command.
std::string printable(std::string_view text);

/// Indented by `indent`, or, below 0, on one line; bytes that are no UTF-8 are replaced.
std::string jsonText(nlohmann::json const& json, int indent = -1);

}  // namespace Vgwctl

#endif
