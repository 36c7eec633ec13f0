#include <vgwd/agent/Agent.h>

#include <vgw/agent/RequestAccounting.h>
#include <vgwd/show/Contents.h>
#include <vgwd/show/JsonText.h>
#include <vgwd/show/TreeText.h>

#include <asio/post.hpp>

#include <unistd.h>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <fstream>

namespace Vgwd {
namespace {

using Ovsdb::ClientState;
using Ovsdb::LogLevel;

constexpr char const* macTables[] = {"ucastMacsLocal", "mcastMacsLocal", "ucastMacsRemote",
                                     "mcastMacsRemote"};

}  // namespace

Agent::Agent(asio::io_context& loop, Options options, Ovsdb::LogSink log)
    : loop_(loop),
      options_(std::move(options)),
      log_(std::move(log)),
      signals_(loop, SIGTERM, SIGINT, SIGUSR1),
      timeout_(loop),
      root_(Qor::make<Qor::Dir>("vgw")),
      status_(Vgw::statusFactory("status")) {
    signals_.add(SIGCHLD);
    root_->entryIs("status", status_);
    Vgw::HwVtepOvsdb::Ptr const database = status_->ovsdbIs("ovsdb");
    session_ = status_->ovsdbSessionStatusIs("ovsdbSessionStatus");
    Ovsdb::MacDirectories const directories = makeDirectories();
    entriesAre(Qor::Dir::EntryState::pending);
    client_.emplace(loop_, clientOptions(), static_cast<Ovsdb::ClientListener&>(*this), log_);
    mirror_.emplace(client_->rows(), database, directories);
    if (options_.watch)
        watcher_.emplace(database,
                         std::vector{directories.ucastMacsLocal, directories.mcastMacsLocal,
                                     directories.ucastMacsRemote, directories.mcastMacsRemote},
                         stdout);
}

Agent::~Agent() = default;

Ovsdb::MacDirectories Agent::makeDirectories() const {
    for (char const* const table : macTables) root_->entryIs(table, Qor::make<Qor::Dir>(table));
    auto const directory = [&](char const* table) {
        return Qor::dynamicCast<Qor::Dir>(root_->entry(table));
    };
    return {directory("ucastMacsLocal"), directory("mcastMacsLocal"), directory("ucastMacsRemote"),
            directory("mcastMacsRemote")};
}

Ovsdb::ClientOptions Agent::clientOptions() {
    Ovsdb::ClientOptions options;
    options.remotes = options_.remotes;
    options.tls = options_.tls;
    if (options.remotes.empty()) {
        server_.emplace(loop_, options_.runDirectory, options_.schemaFile, log_);
        options.remotes.push_back(server_->remote());
    }
    return options;
}

int Agent::run() {
    if (server_) server_->start();
    status_->runningIs(true);
    awaitSignal();
    writePidFile();
    startTimeout();
    client_->start();
    loop_.run();
    status_->runningIs(false);
    if (server_) server_->stop();
    if (!options_.pidFile.empty()) std::filesystem::remove(options_.pidFile);
    return exitCode_;
}

void Agent::awaitSignal() {
    signals_.async_wait([this](std::error_code error, int number) {
        if (error) return;
        if (number == SIGUSR1) writeDump();
        if (number == SIGCHLD && server_) server_->handleChild();
        if (number == SIGTERM || number == SIGINT) {
            log_(LogLevel::info, number == SIGTERM ? "SIGTERM: ending" : "SIGINT: ending");
            return end(0);
        }
        awaitSignal();
    });
}

void Agent::startTimeout() {
    if (!options_.once || options_.timeout <= 0) return;
    timeout_.expires_after(std::chrono::milliseconds(static_cast<long>(options_.timeout * 1000)));
    timeout_.async_wait([this](std::error_code error) {
        if (error) return;
        log_(LogLevel::error,
             "not in step within " + std::to_string(options_.timeout) + " s; " + lastReason_);
        end(1);
    });
}

// Nothing is left that could keep the loop running.
void Agent::end(int exitCode) {
    exitCode_ = exitCode;
    asio::post(loop_, [this] {
        client_->stop();
        signals_.cancel();
        timeout_.cancel();
        if (server_) server_->stop();
    });
}

void Agent::onPlan(Ovsdb::MonitorPlan const& plan) { mirror_->planIs(plan); }

void Agent::onChanges(std::vector<Ovsdb::RowChange> const& changes) {
    mirror_->apply(changes);
    if (watcher_) watcher_->flush();
}

void Agent::onState(ClientState state, std::string const& reason) {
    if (state == ClientState::disconnected) accountLoss(reason);
    if (state == ClientState::copying) {
        if (!reason.empty()) accountLoss(reason);
        monitoring_ = true;
        Vgw::updateOvsdbRequest(session_, Vgw::monitorRequestType,
                                std::string_view(client_->remoteName()));
    }
    if (state != ClientState::inStep) return;
    // The schema may have changed, and no row with it.
    mirror_->apply({});
    Vgw::updateOvsdbRequestResult(session_,
                                  synced_ ? Vgw::stateConnected : Vgw::stateBackupDbSynced,
                                  Vgw::monitorRequestType, std::string_view(client_->remoteName()));
    synced_ = true;
    entriesAre(Qor::Dir::EntryState::ready);
    if (options_.once) printOnce();
}

void Agent::accountLoss(std::string const& reason) {
    lastReason_ = reason;
    entriesAre(synced_ ? Qor::Dir::EntryState::stale : Qor::Dir::EntryState::pending);
    session_->lastErrorCodeIs(std::string_view(reason));
    bool const told = !monitoring_ && session_->sessionState() == Vgw::stateDisconnected;
    monitoring_ = false;
    if (!told)
        Vgw::updateOvsdbRequestResult(session_, Vgw::stateDisconnected, Vgw::monitorRequestType,
                                      std::string_view(reason));
}

void Agent::entriesAre(Qor::Dir::EntryState state) {
    root_->entryStateIs("status", state);
    for (char const* const table : macTables) root_->entryStateIs(table, state);
}

void Agent::onRoundFailed(std::string const& reason) {
    if (!options_.once || options_.timeout > 0) return;
    log_(LogLevel::error, reason);
    end(1);
}

void Agent::printOnce() {
    std::string text;
    if (options_.format == "json") {
        JsonText json;
        tellMirror(*mirror_, json);
        text = json.take();
    } else {
        TreeText tree;
        tree.begin("/vgw");
        tellStatus(*status_, tree);
        tellMirror(*mirror_, tree);
        tree.end();
        text = tree.take();
    }
    bool const written =
        std::fwrite(text.data(), 1, text.size(), stdout) == text.size() && std::fflush(stdout) == 0;
    if (!written) log_(LogLevel::error, "standard output can't be written");
    end(written ? 0 : 1);
}

// Aside first, so that whoever reads the file finds one whole dump or another.
void Agent::writeDump() const {
    if (options_.dumpFile.empty())
        return log_(LogLevel::warning, "SIGUSR1: there is no --dump-file to write");
    JsonText json;
    tellMirror(*mirror_, json);
    std::string const aside = options_.dumpFile + ".new";
    std::ofstream out(aside, std::ios::binary | std::ios::trunc);
    out << json.take();
    out.close();
    std::error_code failed;
    if (out) std::filesystem::rename(aside, options_.dumpFile, failed);
    if (!out || failed)
        log_(LogLevel::error, options_.dumpFile + " can't be written: " + failed.message());
}

void Agent::writePidFile() const {
    if (options_.pidFile.empty()) return;
    std::string const aside = options_.pidFile + ".new";
    std::ofstream out(aside, std::ios::trunc);
    out << ::getpid() << "\n";
    out.close();
    if (!out) throw std::runtime_error("pid file " + options_.pidFile + " can't be written");
    std::filesystem::rename(aside, options_.pidFile);
}

}  // namespace Vgwd
