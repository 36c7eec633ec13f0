#ifndef MANUAL_USAGE_ERROR_H
#define MANUAL_USAGE_ERROR_H

#include <CLI/CLI.hpp>

#include <string>

namespace Manual {

/// What is wrong with a command line is told under the program's name, as all its errors are.
inline void tellsErrorsByName(CLI::App& app) {
    app.failure_message([](CLI::App const* failed, CLI::Error const& error) {
        return failed->get_name() + ": " + error.what() + "; see --help\n";
    });
}

}  // namespace Manual

#endif
