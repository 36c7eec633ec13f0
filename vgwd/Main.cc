#include <vgwd/agent/Agent.h>
#include <vgwd/agent/Options.h>

#include <spdlog/sinks/basic_file_sink.h>
#include <spdlog/sinks/stdout_sinks.h>
#include <spdlog/spdlog.h>

#include <cstdio>
#include <exception>
#include <memory>
#include <vector>

namespace {

spdlog::level::level_enum levelOf(Ovsdb::LogLevel level) {
    switch (level) {
        case Ovsdb::LogLevel::debug:
            return spdlog::level::debug;
        case Ovsdb::LogLevel::info:
            return spdlog::level::info;
        case Ovsdb::LogLevel::warning:
            return spdlog::level::warn;
        case Ovsdb::LogLevel::error:
            return spdlog::level::err;
    }
    return spdlog::level::err;
}

spdlog::level::level_enum levelNamed(std::string const& name) {
    if (name == "off") return spdlog::level::off;
    if (name == "err") return spdlog::level::err;
    if (name == "warn") return spdlog::level::warn;
    return name == "dbg" ? spdlog::level::debug : spdlog::level::info;
}

std::shared_ptr<spdlog::logger> makeLogger(Vgwd::Options const& options) {
    std::vector<spdlog::sink_ptr> sinks{std::make_shared<spdlog::sinks::stderr_sink_st>()};
    if (!options.logFile.empty())
        sinks.push_back(std::make_shared<spdlog::sinks::basic_file_sink_st>(options.logFile));
    auto logger = std::make_shared<spdlog::logger>("vgwd", sinks.begin(), sinks.end());
    logger->set_pattern("%Y-%m-%dT%H:%M:%S.%eZ %n %l: %v", spdlog::pattern_time_type::utc);
    logger->set_level(levelNamed(options.logLevel));
    logger->flush_on(spdlog::level::debug);
    return logger;
}

int runAgent(Vgwd::Options const& options) {
    std::shared_ptr<spdlog::logger> const logger = makeLogger(options);
    try {
        asio::io_context loop(1);
        Vgwd::Agent agent(loop, options, [&](Ovsdb::LogLevel level, std::string const& text) {
            logger->log(levelOf(level), text);
        });
        return agent.run();
    } catch (std::exception const& e) {
        logger->error(e.what());
        return 1;
    }
}

}  // namespace

int main(int count, char** words) {
    int exitCode = 0;
    try {
        std::optional<Vgwd::Options> const options = Vgwd::parseOptions(count, words, exitCode);
        return options ? runAgent(*options) : exitCode;
    } catch (std::exception const& e) {
        std::fprintf(stderr, "vgwd: %s\n", e.what());
        return 1;
    }
}
