#include <vgwd/agent/LogOutputs.h>

#include <qor/core/TextUtf8.h>

#include <spdlog/pattern_formatter.h>
#include <spdlog/sinks/basic_file_sink.h>
#include <spdlog/sinks/stdout_sinks.h>
#include <spdlog/sinks/syslog_sink.h>
#include <spdlog/spdlog.h>

#include <algorithm>
#include <cstdio>
#include <string_view>

namespace Vgwd {
namespace {

namespace level = spdlog::level;

constexpr char const* pattern = "%Y-%m-%dT%H:%M:%S.%eZ %n %l: %v";
// The system log has its own time and level.
constexpr char const* syslogPattern = "%v";
constexpr std::array<char const*, 3> names{"console", "system log", "log file"};

level::level_enum thresholdOf(Vgw::OvsdbLogLevel wanted) {
    switch (wanted) {
        case Vgw::OvsdbLogLevel::disabled:
            return level::off;
        case Vgw::OvsdbLogLevel::emergency:
            return level::critical;
        case Vgw::OvsdbLogLevel::error:
            return level::err;
        case Vgw::OvsdbLogLevel::warning:
            return level::warn;
        case Vgw::OvsdbLogLevel::information:
            return level::info;
        case Vgw::OvsdbLogLevel::debug:
            return level::debug;
    }
    // A number that is no level asks for more than there is.
    return level::debug;
}

level::level_enum levelOf(Ovsdb::LogLevel said) {
    switch (said) {
        case Ovsdb::LogLevel::debug:
            return level::debug;
        case Ovsdb::LogLevel::info:
            return level::info;
        case Ovsdb::LogLevel::warning:
            return level::warn;
        case Ovsdb::LogLevel::error:
            return level::err;
    }
    return level::err;
}

// Names and texts come from anybody: no byte of them may begin a line, or speak to a terminal.
std::string inOneLine(std::string_view text) {
    std::string line;
    while (!text.empty()) {
        std::size_t const length = Qor::printableLength(text);
        if (length != 0) {
            line += text.substr(0, length);
        } else {
            std::array<char, 5> escaped{};
            std::snprintf(escaped.data(), escaped.size(), "\\x%02x",
                          static_cast<unsigned>(static_cast<unsigned char>(text[0])));
            line += escaped.data();
        }
        text.remove_prefix(std::max<std::size_t>(length, 1));
    }
    return line;
}

}  // namespace

LogOutputs::LogOutputs(Openers openers)
    : openers_(std::move(openers)), logger_(std::make_shared<spdlog::logger>("vgwd")) {
    logger_->set_level(level::trace);
    logger_->flush_on(level::trace);
}

LogOutputs::~LogOutputs() = default;

void LogOutputs::levelIs(LogDestination destination, Vgw::OvsdbLogLevel wanted) {
    auto const at = static_cast<std::size_t>(destination);
    if (wanted == Vgw::OvsdbLogLevel::disabled)
        sinks_[at] = nullptr;
    else if (sinks_[at] == nullptr)
        open(at);
    if (sinks_[at] != nullptr) sinks_[at]->set_level(thresholdOf(wanted));
    gather();
}

void LogOutputs::reopen() {
    for (std::size_t at = 0; at < sinks_.size(); ++at) {
        if (sinks_[at] == nullptr) continue;
        level::level_enum const threshold = sinks_[at]->level();
        sinks_[at] = nullptr;
        gather();
        open(at);
        if (sinks_[at] != nullptr) sinks_[at]->set_level(threshold);
    }
    gather();
}

void LogOutputs::open(std::size_t destination) {
    try {
        sinks_[destination] = openers_[destination]();
        bool const isSyslog = destination == static_cast<std::size_t>(LogDestination::syslog);
        sinks_[destination]->set_formatter(std::make_unique<spdlog::pattern_formatter>(
            isSyslog ? syslogPattern : pattern, spdlog::pattern_time_type::utc));
    } catch (std::exception const& e) {
        log(Ovsdb::LogLevel::error,
            std::string("the ") + names[destination] + " can't be opened: " + e.what());
    }
}

void LogOutputs::gather() {
    logger_->sinks().clear();
    for (auto const& sink : sinks_)
        if (sink != nullptr) logger_->sinks().push_back(sink);
}

void LogOutputs::log(Ovsdb::LogLevel said, std::string const& text) {
    logger_->log(levelOf(said), inOneLine(text));
}

void LogOutputs::logFatal(std::string const& text) { logger_->critical(inOneLine(text)); }

Ovsdb::LogSink LogOutputs::sink() {
    return [this](Ovsdb::LogLevel said, std::string const& text) { log(said, text); };
}

LogOutputs::Openers standardOutputs(std::string const& logFile) {
    return {[] { return std::make_shared<spdlog::sinks::stderr_sink_st>(); },
            [] {
                return std::make_shared<spdlog::sinks::syslog_sink_st>("vgwd", LOG_PID, LOG_DAEMON,
                                                                       true);
            },
            [logFile] { return std::make_shared<spdlog::sinks::basic_file_sink_st>(logFile); }};
}

}  // namespace Vgwd
