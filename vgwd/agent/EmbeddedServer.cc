#include <vgwd/agent/EmbeddedServer.h>

#include <vgwd/agent/ChildProcess.h>
#include <vgwd/agent/RunDirectory.h>
#include <vgwd/serve/UnixSocket.h>

#include <sys/wait.h>
#include <unistd.h>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <thread>
#include <utility>

namespace Vgwd {
namespace {

using Ovsdb::LogLevel;
using std::chrono::milliseconds;

constexpr char const* transient = "vtep.db.transient";
constexpr milliseconds look{20};        // how often it is looked whether it listens, or has ended
constexpr milliseconds endLimit{5000};  // how long it may take to end
constexpr milliseconds leastRestart{100};
constexpr milliseconds mostRestart{5000};
// A predecessor whose agent was killed may hold the database for a moment.
constexpr int bearableDeaths = 5;
constexpr std::chrono::seconds steady{10};  // one that ran so long is restarted at once again

}  // namespace

EmbeddedServer::EmbeddedServer(asio::io_context& loop, Options const& options, Handlers handlers,
                               Ovsdb::LogSink log)
    : options_(options),
      handlers_(std::move(handlers)),
      log_(std::move(log)),
      timer_(loop),
      backoff_(leastRestart, mostRestart) {
    static_cast<void>(remote());  // refuses a path that is too long for a socket
}

std::string EmbeddedServer::file(char const* name) const {
    return runFile(options_.runDirectory, name);
}

Ovsdb::Remote EmbeddedServer::remote() const {
    return Ovsdb::parseRemote("unix:" + file("db.sock"));
}

void EmbeddedServer::wantedIs(bool wanted) {
    if (std::exchange(wanted_, wanted) == wanted) return;
    if (wanted) {
        backoff_.reset();
        // One that is still ending is followed by the new one.
        if (server_ == 0) begin();
        return;
    }
    ending_ = true;
    if (server_ == 0) return handleEnd();
    ::kill(server_, SIGTERM);
    after(endLimit, &EmbeddedServer::kill);
}

void EmbeddedServer::begin() {
    ending_ = false;
    if (!persist_ || std::filesystem::exists(file(transient))) removeDatabase();
    markTransient();
    launch();
}

void EmbeddedServer::persistIs(bool persist) {
    if (std::exchange(persist_, persist) != persist) markTransient();
}

// Outlives us, so that the next start knows what a kill left behind.
void EmbeddedServer::markTransient() const {
    if (persist_) {
        std::error_code ignored;
        std::filesystem::remove(file(transient), ignored);
    } else {
        std::ofstream(file(transient)) << "vtep.db is removed at the next start\n";
    }
}

// Made aside, so that one that was interrupted is not taken for a database.
void EmbeddedServer::createDatabase() const {
    if (!std::filesystem::exists(options_.schemaFile))
        throw std::runtime_error("schema " + options_.schemaFile + " is not there (--schema)");
    std::string const tool = findProgram("ovsdb-tool", options_.serverProgram);
    std::string const aside = file("vtep.db.new");
    std::filesystem::remove(aside);
    int const code = awaitProgram(startProgram({tool, "create", aside, options_.schemaFile}));
    if (code != 0)
        throw std::runtime_error(tool + " create " + aside + " " + options_.schemaFile +
                                 " ended with " + std::to_string(code));
    std::filesystem::rename(aside, file("vtep.db"));
    std::filesystem::remove(file(".vtep.db.new.~lock~"));
}

std::string EmbeddedServer::program() const {
    if (options_.serverProgram.empty()) return findProgram("ovsdb-server", "");
    if (::access(options_.serverProgram.c_str(), X_OK) == 0) return options_.serverProgram;
    throw std::runtime_error("program " + options_.serverProgram + " can't be executed");
}

std::vector<std::string> EmbeddedServer::words() const {
    std::vector<std::string> words{program(),
                                   "--no-chdir",
                                   "-vconsole:off",
                                   "-vsyslog:off",
                                   "--log-file=" + file("ovsdb-server.log"),
                                   "--unixctl=" + file("server.ctl"),
                                   "--pidfile=" + file("server.pid"),
                                   "--remote=punix:" + file("db.sock"),
                                   "--remote=db:hardware_vtep,Global,managers"};
    if (options_.tls.complete()) {
        words.push_back("--private-key=" + options_.tls.privateKey);
        words.push_back("--certificate=" + options_.tls.certificate);
        words.push_back("--ca-cert=" + options_.tls.authority);
    }
    words.push_back(file("vtep.db"));
    return words;
}

void EmbeddedServer::launch() {
    try {
        std::vector<std::string> const server = words();
        if (!std::filesystem::exists(file("vtep.db"))) createDatabase();
        std::filesystem::remove(file("db.sock"));
        server_ = startProgram(server);
    } catch (std::exception const& e) {
        fail(e.what());
        return handlers_.failed(e.what());
    }
    launched_ = Clock::now();
    log_(LogLevel::info,
         "ovsdb-server runs in " + options_.runDirectory + ", process " + std::to_string(server_));
    awaitSocket();
}

// It binds before it listens, and refuses who comes in between. What can't be asked now, as for
// want of descriptors, is asked again.
bool EmbeddedServer::listens() const {
    try {
        return isListening(file("db.sock"));
    } catch (std::exception const&) {
        return false;
    }
}

void EmbeddedServer::awaitSocket() {
    if (!listens()) return after(look, &EmbeddedServer::awaitSocket);
    deaths_ = 0;
    handlers_.listening();
}

void EmbeddedServer::handleChild() {
    int status = 0;
    if (server_ == 0 || ::waitpid(server_, &status, WNOHANG) == 0) return;
    pid_t const ended = std::exchange(server_, 0);
    step_.cut();
    if (ending_) return handleEnd();
    std::string const reason = "our ovsdb-server, process " + std::to_string(ended) +
                               ", ended; its log is " + file("ovsdb-server.log");
    fail(reason);
    if (++deaths_ > bearableDeaths) handlers_.failed(reason);
}

// It ended as it was told to.
void EmbeddedServer::handleEnd() {
    step_.cut();
    timer_.cancel();
    if (!persist_) removeDatabase();
    if (wanted_) begin();
}

void EmbeddedServer::fail(std::string const& reason) {
    if (Clock::now() - launched_ > steady) backoff_.reset();
    launched_ = {};
    milliseconds const wait = backoff_.next();
    log_(LogLevel::error,
         reason + "; it is started again in " + std::to_string(wait.count()) + " ms");
    // The database stays what it was: the agent has not ended.
    after(wait, &EmbeddedServer::launch);
}

void EmbeddedServer::kill() {
    if (server_ != 0) ::kill(server_, SIGKILL);
}

void EmbeddedServer::stop() {
    step_.cut();
    timer_.cancel();
    wanted_ = false;
    ending_ = true;
    if (server_ == 0) return;
    ::kill(server_, SIGTERM);
    auto const limit = Clock::now() + endLimit;
    while (::waitpid(server_, nullptr, WNOHANG) == 0) {
        if (Clock::now() >= limit) ::kill(server_, SIGKILL);
        std::this_thread::sleep_for(look);
    }
    server_ = 0;
    if (!persist_) removeDatabase();
}

void EmbeddedServer::removeDatabase() const {
    std::error_code ignored;
    for (char const* const name : {"vtep.db", ".vtep.db.~lock~", transient})
        std::filesystem::remove(file(name), ignored);
}

void EmbeddedServer::after(milliseconds wait, void (EmbeddedServer::*step)()) {
    timer_.expires_after(wait);
    step_.cut();
    timer_.async_wait(step_.tie([this, step](std::error_code error) {
        if (!error) (this->*step)();
    }));
}

}  // namespace Vgwd
