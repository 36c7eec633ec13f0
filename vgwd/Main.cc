#include <vgwd/agent/Agent.h>
#include <vgwd/agent/LogOutputs.h>
#include <vgwd/agent/Options.h>
#include <vgwd/agent/RunDirectory.h>

#include <cstdio>
#include <exception>

namespace {

int runAgent(Vgwd::Options const& options) {
    Vgwd::LogOutputs logs(Vgwd::standardOutputs(
        options.logFile.empty() ? Vgwd::runFile(options.runDirectory, "vgwd.log")
                                : options.logFile));
    logs.levelIs(Vgwd::LogDestination::console, options.logConsole);
    try {
        asio::io_context loop(1);
        Vgwd::Agent agent(loop, options, logs);
        return agent.run();
    } catch (std::exception const& e) {
        logs.logFatal(e.what());
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
