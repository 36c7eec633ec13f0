#include "AgentUnderTest.h"

#include <vgwd/agent/ChildProcess.h>
#include <vgwd/serve/UnixSocket.h>

#include <spdlog/sinks/basic_file_sink.h>
#include <spdlog/sinks/ostream_sink.h>

#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <thread>

namespace Vgwd {
namespace {

namespace fs = std::filesystem;
using std::chrono::milliseconds;

// Sanitized builds are slower.
milliseconds slowly(milliseconds time) {
    char const* const slowness = std::getenv("VGW_SLOWNESS");
    return time * (slowness != nullptr ? std::atoi(slowness) : 1);
}

std::string outputOf(std::string const& command, int* code = nullptr) {
    std::FILE* const pipe = ::popen(command.c_str(), "r");
    if (pipe == nullptr) throw std::runtime_error("popen");
    std::string text;
    for (int c = std::fgetc(pipe); c != EOF; c = std::fgetc(pipe)) text += static_cast<char>(c);
    int const status = ::pclose(pipe);
    if (code != nullptr) *code = status;
    while (!text.empty() && text.back() == '\n') text.pop_back();
    return text;
}

std::string makeDirectory() {
    std::string name = (fs::temp_directory_path() / "vgw-agent-XXXXXX").string();
    if (::mkdtemp(name.data()) == nullptr) throw std::runtime_error("mkdtemp");
    return name;
}

}  // namespace

std::string const& ovsPrefix() {
    static std::string const prefix = outputOf(VGW_SOURCE_DIR "/tools/ovs.sh");
    return prefix;
}

RealServer::RealServer(std::string directory) : directory_(std::move(directory)) {
    fs::create_directories(directory_);
    awaitProgram(
        startProgram({ovsPrefix() + "/usr/bin/ovsdb-tool", "create", directory_ + "/vtep.db",
                      ovsPrefix() + "/usr/share/openvswitch/vtep.ovsschema"}));
}

void RealServer::start() {
    fs::remove(directory_ + "/db.sock");
    process_ = startProgram({ovsPrefix() + "/usr/sbin/ovsdb-server", "--no-chdir", "-vconsole:off",
                             "-vsyslog:off", "--log-file=" + directory_ + "/server.log",
                             "--unixctl=" + directory_ + "/server.ctl",
                             "--remote=punix:" + directory_ + "/db.sock", directory_ + "/vtep.db"});
    for (int i = 0; i < 1000 && !isListening(directory_ + "/db.sock"); ++i)
        std::this_thread::sleep_for(milliseconds(10));
}

void RealServer::stop() {
    if (process_ == 0) return;
    ::kill(process_, SIGKILL);
    awaitProgram(process_);
    process_ = 0;
    fs::remove(directory_ + "/db.sock");
}

void RealServer::signal(int number) const { ::kill(process_, number); }

std::string RealServer::vtepCtl(std::string const& words) const {
    int code = 0;
    std::string const text = outputOf(
        ovsPrefix() + "/usr/bin/vtep-ctl --timeout=10 --db=" + remote() + " " + words, &code);
    EXPECT_EQ(code, 0) << "vtep-ctl " << words;
    return text;
}

AgentTest::AgentTest()
    : directory_(makeDirectory()),
      server_(directory_ + "/server"),
      logFile_(directory_ + "/vgwd.log") {
    options_.runDirectory = directory_ + "/run";
    options_.remotes = Ovsdb::parseRemotes(server_.remote());
    options_.schemaFile = ovsPrefix() + "/usr/share/openvswitch/vtep.ovsschema";
    options_.serverProgram = ovsPrefix() + "/usr/sbin/ovsdb-server";
    logs_.emplace(LogOutputs::Openers{
        [this] { return std::make_shared<spdlog::sinks::ostream_sink_st>(console_); },
        [this] { return std::make_shared<spdlog::sinks::ostream_sink_st>(syslog_); },
        [this] { return std::make_shared<spdlog::sinks::basic_file_sink_st>(logFile_); }});
}

AgentTest::~AgentTest() {
    agent_.reset();
    loop_.restart();
    loop_.poll();
    if (HasFailure()) std::fputs(console_.str().c_str(), stderr);
    server_.stop();
    fs::remove_all(directory_);
}

void AgentTest::startAgent() {
    logs_->levelIs(LogDestination::console, options_.logConsole);
    agent_ = std::make_unique<Agent>(loop_, options_, *logs_);
    agent_->start();
}

bool AgentTest::becomes(std::function<bool()> const& holds) {
    auto const end = std::chrono::steady_clock::now() + slowly(milliseconds(10000));
    while (!holds()) {
        if (std::chrono::steady_clock::now() >= end) return false;
        runFor(milliseconds(10));
    }
    return true;
}

void AgentTest::runFor(milliseconds time) {
    loop_.restart();
    loop_.run_for(time);
}

}  // namespace Vgwd
