#include <vgwd/agent/Run.h>

#include <vgwd/agent/Agent.h>
#include <vgwd/agent/LogOutputs.h>
#include <vgwd/agent/RunDirectory.h>

#include <exception>

namespace Vgwd {

int runAgent(Options const& options) {
    LogOutputs logs(standardOutputs(
        options.logFile.empty() ? runFile(options.runDirectory, "vgwd.log") : options.logFile));
    logs.levelIs(LogDestination::console, options.logConsole);
    try {
        asio::io_context loop(1);
        Agent agent(loop, options, logs);
        return agent.run();
    } catch (std::exception const& e) {
        logs.logFatal(e.what());
        return 1;
    }
}

}  // namespace Vgwd
