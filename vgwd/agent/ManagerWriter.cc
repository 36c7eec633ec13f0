#include <vgwd/agent/ManagerWriter.h>

#include <vgwd/agent/ManagerRequest.h>

#include <utility>

namespace Vgwd {
namespace {

using std::chrono::milliseconds;

constexpr milliseconds leastRetry{1000};
constexpr milliseconds mostRetry{60000};

}  // namespace

ManagerWriter::ManagerWriter(asio::io_context& loop, Ovsdb::Client& client,
                             Vgw::HwVtepOvsdb::Ptr database, Ovsdb::LogSink log)
    : client_(client),
      database_(std::move(database)),
      log_(std::move(log)),
      retry_(loop),
      backoff_(leastRetry, mostRetry) {}

void ManagerWriter::targetIs(std::string const& target) {
    if (std::exchange(wanted_, target) == target) return;
    backoff_.reset();
    write();
}

void ManagerWriter::inStepIs(bool inStep) {
    inStep_ = inStep;
    retry_.cancel();
    backoff_.reset();
    if (inStep) write();
}

nlohmann::json ManagerWriter::operations() const {
    return wanted_.empty() ? managerRemoval(*database_, written_)
                           : managerSetting(*database_, wanted_);
}

void ManagerWriter::write() {
    if (!inStep_ || busy_ || (wanted_.empty() && written_.empty())) return;
    nlohmann::json const request = operations();
    // Noted before the answer: that may get lost although the transaction did not.
    if (!wanted_.empty()) written_.insert(wanted_);
    if (request.empty()) {
        if (wanted_.empty()) written_.clear();
        return;
    }
    busy_ = true;
    client_.transact(request, wanted_.empty() ? "Manager: remove" : "Manager: set " + wanted_,
                     [this, target = wanted_](Ovsdb::RpcError const* error) {
                         busy_ = false;
                         handleOutcome(target, error);
                     });
}

void ManagerWriter::handleOutcome(std::string const& target, Ovsdb::RpcError const* error) {
    std::string const what = target.empty() ? "removing the manager" : "setting manager " + target;
    if (error == nullptr) {
        written_.clear();
        if (!target.empty()) written_.insert(target);
        log_(Ovsdb::LogLevel::info, what + ": done");
        backoff_.reset();
        raced_ = false;
    } else {
        log_(Ovsdb::LogLevel::warning, what + ": " + error->text());
        if (error->kind == Ovsdb::RpcError::Kind::lost) return;
        // The wait failed: what another writer changed is mirrored by now.
        if (error->error == "timed out" && !std::exchange(raced_, true)) return write();
        retry();
    }
    if (target != wanted_) write();
}

void ManagerWriter::retry() {
    retry_.expires_after(backoff_.next());
    retry_.async_wait(tether_.tie([this](std::error_code error) {
        if (!error) write();
    }));
}

}  // namespace Vgwd
