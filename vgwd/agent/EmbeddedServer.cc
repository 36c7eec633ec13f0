#include <vgwd/agent/EmbeddedServer.h>

#include <vgwd/agent/ChildProcess.h>

#include <sys/wait.h>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <stdexcept>
#include <thread>

namespace Vgwd {
namespace {

using std::chrono::milliseconds;

constexpr milliseconds step{20};
constexpr int stepsToStart = 250;
constexpr int stepsToEnd = 250;

}  // namespace

EmbeddedServer::EmbeddedServer(asio::io_context& loop, std::string const& runDirectory,
                               std::string schemaFile, Ovsdb::LogSink log)
    : log_(std::move(log)),
      restart_(loop),
      directory_(std::filesystem::absolute(runDirectory)),
      schemaFile_(std::move(schemaFile)) {}

Ovsdb::Remote EmbeddedServer::remote() const {
    return Ovsdb::parseRemote("unix:" + file("db.sock"));
}

void EmbeddedServer::start() {
    static_cast<void>(remote());  // refuses a path that is too long for a socket
    std::filesystem::create_directories(directory_);
    if (!std::filesystem::exists(file("vtep.db"))) createDatabase();
    launch();
    awaitSocket();
}

void EmbeddedServer::createDatabase() {
    if (!std::filesystem::exists(schemaFile_))
        throw std::runtime_error("schema " + schemaFile_ + " is not there (--schema)");
    int const code = awaitProgram(
        startProgram({findProgram("ovsdb-tool"), "create", file("vtep.db"), schemaFile_}));
    if (code != 0)
        throw std::runtime_error("ovsdb-tool create " + file("vtep.db") + " " + schemaFile_ +
                                 " ended with " + std::to_string(code));
}

void EmbeddedServer::launch() {
    std::filesystem::remove(file("db.sock"));
    server_ = startProgram({findProgram("ovsdb-server"), "--no-chdir", "-vconsole:off",
                            "-vsyslog:off", "--log-file=" + file("ovsdb-server.log"),
                            "--unixctl=" + file("server.ctl"), "--remote=punix:" + file("db.sock"),
                            "--remote=db:hardware_vtep,Global,managers", file("vtep.db")});
    log_(Ovsdb::LogLevel::info,
         "ovsdb-server runs in " + directory_ + ", process " + std::to_string(server_));
}

void EmbeddedServer::awaitSocket() {
    for (int i = 0; i < stepsToStart; ++i) {
        if (std::filesystem::exists(file("db.sock"))) return;
        if (::waitpid(server_, nullptr, WNOHANG) != 0) {
            server_ = 0;
            throw std::runtime_error("ovsdb-server ended at once; its log is " +
                                     file("ovsdb-server.log"));
        }
        std::this_thread::sleep_for(step);
    }
    throw std::runtime_error("ovsdb-server doesn't listen on " + file("db.sock"));
}

void EmbeddedServer::stop() {
    restart_.cancel();
    if (server_ == 0) return;
    ::kill(server_, SIGTERM);
    for (int i = 0; i < stepsToEnd; ++i) {
        if (::waitpid(server_, nullptr, WNOHANG) != 0) {
            server_ = 0;
            return;
        }
        std::this_thread::sleep_for(step);
    }
    ::kill(server_, SIGKILL);
    static_cast<void>(awaitProgram(server_));
    server_ = 0;
}

void EmbeddedServer::handleChild() {
    if (server_ == 0 || ::waitpid(server_, nullptr, WNOHANG) == 0) return;
    log_(Ovsdb::LogLevel::error,
         "our ovsdb-server, process " + std::to_string(server_) + ", ended; it is started again");
    server_ = 0;
    restart_.expires_after(milliseconds(500));
    restart_.async_wait([this](std::error_code error) {
        if (error) return;
        try {
            launch();
        } catch (std::exception const& e) {
            log_(Ovsdb::LogLevel::error, e.what());
        }
    });
}

}  // namespace Vgwd
