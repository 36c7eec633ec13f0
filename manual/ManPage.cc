#include <manual/ManPage.h>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cctype>

namespace Manual {

// A leading dot or quote, a backslash and a hyphen mean something.
std::string escaped(std::string_view text) {
    std::string out = !text.empty() && (text[0] == '.' || text[0] == '\'') ? "\\&" : "";
    for (char const c : text) {
        if (c == '-') {
            out += "\\-";
        } else if (c == '\\') {
            out += "\\e";
        } else {
            out += c;
        }
    }
    return out;
}

std::string item(std::string_view term, std::string_view text) {
    return ".TP\n\\fB" + escaped(term) + "\\fR\n" + escaped(text) + "\n";
}

std::string head(CLI::App const& app, int section, std::string_view version,
                 std::string_view synopsis) {
    std::string title = app.get_name();
    std::transform(title.begin(), title.end(), title.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    std::string what = app.get_description();
    what.erase(what.find_last_not_of('.') + 1);
    what[0] = static_cast<char>(std::tolower(static_cast<unsigned char>(what[0])));
    return ".TH " + title + " " + std::to_string(section) + " \"\" \"" + app.get_name() + " " +
           std::string(version) + "\"\n.SH NAME\n" + app.get_name() + " \\- " + escaped(what) +
           "\n.SH SYNOPSIS\n\\fB" + app.get_name() + "\\fR " + escaped(synopsis) + "\n";
}

std::string options(CLI::App const& app) {
    std::string text = ".SH OPTIONS\n";
    for (CLI::Option const* const option : app.get_options()) {
        if (option->get_group().empty()) continue;  // a hidden one
        std::string term = option->get_name(false, true);
        for (std::size_t at = 0; (at = term.find(',', at)) != std::string::npos; at += 2)
            term.insert(at + 1, " ");
        if (!option->get_type_name().empty() && option->get_items_expected_max() > 0)
            term += " " + option->get_type_name();
        std::string what = option->get_description();
        if (!option->get_default_str().empty()) what += " [" + option->get_default_str() + "]";
        if (!option->get_envname().empty())
            what += "; without it, what " + option->get_envname() + " says";
        text += item(term, what);
    }
    return text;
}

}  // namespace Manual
