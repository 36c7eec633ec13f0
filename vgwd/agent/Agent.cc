#include <vgwd/agent/Agent.h>

#include <vgwd/agent/Report.h>
#include <vgwd/agent/RunDirectory.h>
#include <vgwd/agent/ServeSetting.h>

#include <asio/post.hpp>

#include <unistd.h>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <utility>

namespace Vgwd {

using Ovsdb::LogLevel;

namespace {

// While a first copy is on its way peers wait: a copy of theirs, from before a restart, would be
// emptied and filled again. A server that works on its answer is as silent as one that is stopped.
constexpr std::chrono::seconds longestAdmission{5};

}  // namespace

Agent::Agent(asio::io_context& loop, Options options, LogOutputs& logs)
    : loop_(loop),
      options_(std::move(options)),
      logs_(logs),
      log_(logs.sink()),
      signals_(loop, SIGTERM, SIGINT, SIGUSR1),
      timeout_(loop),
      session_(loop, options_, tree_, static_cast<SessionListener&>(*this), log_),
      served_(loop, tree_, session_, log_),
      reactor_(Qor::make<ConfigReactor>(loop, tree_.status(), session_, logs_)),
      notice_(loop) {
    signals_.add(SIGCHLD);
    signals_.add(SIGHUP);
    describeRunDirectory(*tree_.config(), options_);
    if (options_.watch) addWatcher();
}

Agent::~Agent() { stop(); }

void Agent::addWatcher() {
    Ovsdb::MacDirectories const& macs = tree_.macs();
    watcher_.emplace(tree_.database(),
                     std::vector{macs.ucastMacsLocal, macs.mcastMacsLocal, macs.ucastMacsRemote,
                                 macs.mcastMacsRemote},
                     stdout);
    watcher_->watch(tree_.status());
}

int Agent::run() {
    start();
    loop_.run();
    stop();
    return exitCode_;
}

void Agent::start() {
    configure();
    prepareRunDirectory();
    reactor_->follow(tree_.cliConfig());
    if (options_.serves && !options_.once) serve();
    awaitSignal();
    startTimeout();
    if (!starting_) handleReady();
}

void Agent::handleReady() {
    writePidFile();
    notice_.ready();
    for (ListenAddress const& address : server().addresses())
        notice_.status("listening on " + address.text());
}

// Of our own server nothing is read again: it has its files from its start.
void Agent::reload() {
    notice_.reloading();
    logs_.reopen();
    log_(LogLevel::info, "SIGHUP: logs are opened anew");
    served_.reloadCertificates();
    notice_.ready();
}

void Agent::writePidFile() {
    if (!options_.pidFile.empty()) writeWhole(options_.pidFile, std::to_string(::getpid()) + "\n");
}

// An agent that was started is to run: the library's own default is not to.
void Agent::configure() {
    Vgw::CliConfig& config = *tree_.cliConfig();
    config.logConsoleIs(options_.logConsole);
    config.logSyslogIs(options_.logSyslog);
    config.logFileIs(options_.fileLevel());
    config.enableAgentIs(!options_.disabled);
    starting_ = options_.remotes.empty() && config.enableAgent();
}

// A print of someone else's database needs none.
void Agent::prepareRunDirectory() {
    if (options_.once && !options_.remotes.empty()) return;
    try {
        madeRunDirectory_ = makeRunDirectory(options_.runDirectory, log_);
    } catch (std::exception const& e) {
        if (options_.remotes.empty()) throw;
        return log_(LogLevel::warning, e.what());
    }
    lock_ = lockRunDirectory(options_.runDirectory);
}

// Without its run directory the agent still serves where it was told to.
void Agent::serve() {
    if (!lock_.isHeld() && options_.listen.empty())
        return log_(LogLevel::warning, "nobody can connect without the run directory");
    ServeOptions serve = serveOptionsOf(options_);
    if (!options_.disabled) serve.admission = longestAdmission;
    if (madeRunDirectory_) letThroughRunDirectory(options_.runDirectory, serve.access);
    served_.start(std::move(serve));
}

void Agent::stop() {
    if (reactor_ == nullptr) return;
    notice_.stopping();
    reactor_->leave();
    reactor_ = nullptr;
    tether_.cut();
    signals_.cancel();
    timeout_.cancel();
    tree_.status()->runningIs(false);
    session_.stop();
    served_.stop("the agent ends");
    lock_ = {};
    std::error_code ignored;
    if (!options_.pidFile.empty()) std::filesystem::remove(options_.pidFile, ignored);
}

void Agent::awaitSignal() {
    signals_.async_wait(tether_.tie([this](std::error_code error, int number) {
        if (error) return;
        if (number == SIGUSR1) writeDump();
        if (number == SIGCHLD) session_.handleChild();
        if (number == SIGHUP) reload();
        if (number == SIGTERM || number == SIGINT) {
            log_(LogLevel::info, number == SIGTERM ? "SIGTERM: ending" : "SIGINT: ending");
            return end(0);
        }
        awaitSignal();
    }));
}

void Agent::startTimeout() {
    if (!options_.once || options_.timeout <= 0) return;
    timeout_.expires_after(std::chrono::milliseconds(static_cast<long>(options_.timeout * 1000)));
    timeout_.async_wait(tether_.tie([this](std::error_code error) {
        if (error) return;
        log_(LogLevel::error,
             "not in step within " + std::to_string(options_.timeout) + " s; " + lastReason_);
        end(1);
    }));
}

void Agent::end(int exitCode) {
    exitCode_ = exitCode;
    asio::post(loop_, tether_.tie([this] {
        stop();
        loop_.stop();
    }));
}

void Agent::onStep() {
    if (!watcher_ || watcher_->flush()) return;
    log_(LogLevel::error, "standard output can't be written: changes are not printed any more");
    watcher_.reset();
}

void Agent::onInStep() {
    served_.admit();
    if (!options_.once) return;
    std::string const text = reportOf(options_.format, *tree_.status(), session_.mirror());
    bool const written =
        std::fwrite(text.data(), 1, text.size(), stdout) == text.size() && std::fflush(stdout) == 0;
    if (!written) log_(LogLevel::error, "standard output can't be written");
    end(written ? 0 : 1);
}

// A print of a part would be taken for the whole.
void Agent::onIncomplete(std::string const& gap) {
    served_.admit();
    lastReason_ = "out of step: " + gap;
    if (!options_.once || options_.timeout > 0) return;
    logs_.logFatal(lastReason_);
    end(1);
}

void Agent::onStanding(std::string const& words) {
    if (std::exchange(standing_, words) != words) notice_.status(words);
}

void Agent::onListening() {
    if (std::exchange(starting_, false)) handleReady();
}

void Agent::onOff() { served_.admit(); }

void Agent::onFailed(std::string const& reason) {
    lastReason_ = reason;
    served_.admit();
    bool const giveUp = options_.once && options_.timeout <= 0;
    if (!giveUp && !starting_) return;
    logs_.logFatal(reason);
    end(1);
}

void Agent::writeDump() {
    if (options_.dumpFile.empty())
        return log_(LogLevel::warning, "SIGUSR1: there is no --dump-file to write");
    try {
        writeWhole(options_.dumpFile, reportOf("json", *tree_.status(), session_.mirror()));
    } catch (std::exception const& e) {
        log_(LogLevel::error, e.what());
    }
}

}  // namespace Vgwd
