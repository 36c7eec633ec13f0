#ifndef VGWD_AGENT_LOG_OUTPUTS_H
#define VGWD_AGENT_LOG_OUTPUTS_H

// Where the program's log goes: the console (standard error), the system log, a file; each at a
// level of its own that can be changed while running. A destination that is disabled is closed, so
// a log file that was moved away is opened anew when it is disabled and enabled again.
//
//     emergency    what ends the program           warning      what an operator should look at
//     error        what can't be done              information  what happened
//                                                  debug        each step
//
// Each level holds those above it. Not thread-safe.

#include <ovsdb/client/Log.h>
#include <vgw/values/OvsdbLogLevel.h>

#include <array>
#include <cstddef>
#include <functional>
#include <memory>
#include <string>

namespace spdlog {
class logger;
namespace sinks {
class sink;
}
}  // namespace spdlog

namespace Vgwd {

enum class LogDestination : std::size_t { console, syslog, file };

class LogOutputs {
  public:
    using Open = std::function<std::shared_ptr<spdlog::sinks::sink>()>;
    /// How the destinations are opened, in the order of LogDestination. May raise what tells why it
    /// can't be.
    using Openers = std::array<Open, 3>;

    explicit LogOutputs(Openers openers);
    ~LogOutputs();
    LogOutputs(LogOutputs const&) = delete;
    LogOutputs& operator=(LogOutputs const&) = delete;

    /// A destination that can't be opened is said on the others, and tried again with the next
    /// change of its level.
    void levelIs(LogDestination destination, Vgw::OvsdbLogLevel level);

    /// Closes and opens what is open, so that a log file which was moved away is made anew.
    void reopen();

    void log(Ovsdb::LogLevel level, std::string const& text);
    /// At level emergency.
    void logFatal(std::string const& text);
    /// The same as log(), for whoever knows no outputs. Lives no longer than this.
    Ovsdb::LogSink sink();

  private:
    void open(std::size_t destination);
    void gather();

    Openers openers_;
    std::array<std::shared_ptr<spdlog::sinks::sink>, 3> sinks_;
    std::shared_ptr<spdlog::logger> logger_;
};

/// Standard error, the system log's daemon facility, and that file.
LogOutputs::Openers standardOutputs(std::string const& logFile);

}  // namespace Vgwd

#endif
