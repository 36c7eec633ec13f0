#ifndef VGWCTL_OPTIONS_FAILURE_H
#define VGWCTL_OPTIONS_FAILURE_H

// Why a command ends early, and with which exit code.

#include <stdexcept>
#include <string>

namespace Vgwctl {

/// As with the OVSDB tools, as far as they have them.
enum class ExitCode : int {
    success = 0,
    fatal = 1,    // a usage error, or what can't be done
    absent = 2,   // what was asked for does not exist
    timeout = 3,  // it took longer than --timeout
    differs = 4,  // diff and verify: there are differences
};

class Failure : public std::runtime_error {
  public:
    explicit Failure(std::string const& message, ExitCode code = ExitCode::fatal)
        : std::runtime_error(message), code_(code) {}

    ExitCode code() const { return code_; }

  private:
    ExitCode code_;
};

/// What was asked for does not exist.
inline Failure absent(std::string const& what) {
    return Failure(what + " does not exist", ExitCode::absent);
}

}  // namespace Vgwctl

#endif
