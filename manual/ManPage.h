#ifndef MANUAL_MAN_PAGE_H
#define MANUAL_MAN_PAGE_H

// Man pages of the programs, in the language of man(7), out of what --help is made of.

#include <string>
#include <string_view>

namespace CLI {
class App;
}

namespace Manual {

/// A text in which nothing means something to man(7).
std::string escaped(std::string_view text);
/// A paragraph under a bold term.
std::string item(std::string_view term, std::string_view text);
/// Name and synopsis; what the program does is the app's description.
std::string head(CLI::App const& app, int section, std::string_view version,
                 std::string_view synopsis);
/// The section of all options.
std::string options(CLI::App const& app);

}  // namespace Manual

#endif
