#include <vgwd/agent/LogWords.h>

namespace Vgwd {
namespace {

std::optional<Vgw::OvsdbLogLevel> levelNamed(std::string const& name) {
    if (name == "off") return Vgw::OvsdbLogLevel::disabled;
    if (name == "emer") return Vgw::OvsdbLogLevel::emergency;
    if (name == "err") return Vgw::OvsdbLogLevel::error;
    if (name == "warn") return Vgw::OvsdbLogLevel::warning;
    if (name == "info") return Vgw::OvsdbLogLevel::information;
    if (name == "dbg") return Vgw::OvsdbLogLevel::debug;
    return std::nullopt;
}

}  // namespace

std::string takeLogWord(Options& options, std::string const& word) {
    std::size_t const colon = word.find(':');
    std::string const destination = colon == std::string::npos ? "" : word.substr(0, colon);
    auto const level = levelNamed(colon == std::string::npos ? word : word.substr(colon + 1));
    if (!level) return word + ": a level is off, emer, err, warn, info or dbg";
    if (colon == std::string::npos) {
        options.logConsole = *level;
        options.logFileLevel = std::nullopt;
    } else if (destination == "console") {
        // The file no longer follows what the console is told.
        options.logFileLevel = options.fileLevel();
        options.logConsole = *level;
    } else if (destination == "syslog") {
        options.logSyslog = *level;
    } else if (destination == "file") {
        options.logFileLevel = *level;
    } else {
        return word + ": a destination is console, syslog or file";
    }
    return {};
}

}  // namespace Vgwd
