#include <vgwd/agent/SessionBooks.h>

#include <qor/core/Now.h>
#include <vgw/agent/RequestAccounting.h>

namespace Vgwd {
namespace {

using std::chrono::steady_clock;

Vgw::OvsdbRequestType typeOf(Ovsdb::RequestKind kind) {
    switch (kind) {
        case Ovsdb::RequestKind::transact:
            return Vgw::transactRequestType;
        case Ovsdb::RequestKind::monitor:
            return Vgw::monitorRequestType;
        case Ovsdb::RequestKind::cancel:
            return Vgw::cancelRequestType;
    }
    return Vgw::transactRequestType;
}

}  // namespace

class SessionBooks::LimitReactor final : public Vgw::Config::NotifieeConst {
  public:
    explicit LimitReactor(SessionBooks& books) : books_(books) {}
    void onRestartSyncLimit() override { books_.rearm(); }
    void onRestartSyncShort() override { books_.rearm(); }

  private:
    SessionBooks& books_;
};

SessionBooks::SessionBooks(asio::io_context& loop, Vgw::OvsdbSessionStatus::Ptr session,
                           Vgw::Config::Ptr config)
    : overdue_(loop),
      session_(std::move(session)),
      config_(std::move(config)),
      limits_(Qor::make<LimitReactor>(*this)) {
    limits_->notifierIs(config_);
}

SessionBooks::~SessionBooks() { limits_->notifierIs({}); }

void SessionBooks::request(Ovsdb::RequestKind kind, std::string const& detail) {
    Vgw::updateOvsdbRequest(session_, typeOf(kind), std::string_view(detail));
}

void SessionBooks::outcome(Ovsdb::RequestKind kind, std::string const& detail,
                           Ovsdb::RpcError const* error) {
    if (error == nullptr) {
        bool const isCopy = kind == Ovsdb::RequestKind::monitor;
        bool const isFirst = isCopy && !synced_;
        if (isCopy) {
            synced_ = true;
            awaiting_ = isIncomplete_ = false;
            overdue_.cancel();
        }
        Vgw::updateOvsdbRequestResult(session_,
                                      isFirst ? Vgw::stateBackupDbSynced : Vgw::stateConnected,
                                      typeOf(kind), std::string_view(detail));
        if (isIncomplete_)
            session_->sessionStateIs(Vgw::stateDisconnected);
        else
            stateIs(Vgw::stateConnected);
        return;
    }
    Vgw::SessionState const state = session_->sessionState();
    session_->lastErrorCodeIs(std::string_view(error->error));
    Vgw::updateOvsdbRequestResult(session_, Vgw::stateDisconnected, typeOf(kind),
                                  std::string_view(error->text() + "; " + detail));
    session_->sessionStateIs(state);
}

void SessionBooks::incomplete(std::string const& detail, std::string const& gap) {
    awaiting_ = reported_ = isIncomplete_ = true;
    overdue_.cancel();
    session_->lastErrorCodeIs(std::string_view(gap));
    Vgw::updateOvsdbRequestResult(session_, Vgw::stateDisconnected, Vgw::monitorRequestType,
                                  std::string_view("not in step: " + gap + "; " + detail));
}

void SessionBooks::awaitCopy(std::string const& reason) {
    reason_ = reason;
    if (awaiting_) return;
    awaiting_ = true;
    reported_ = false;
    since_ = steady_clock::now();
    rearm();
}

void SessionBooks::resume() {
    awaiting_ = false;
    overdue_.cancel();
    stateIs(Vgw::stateConnected);
}

void SessionBooks::close() {
    awaiting_ = false;
    overdue_.cancel();
    stateIs(Vgw::stateDisconnected);
}

// A change of state that ends no request.
void SessionBooks::stateIs(Vgw::SessionState state) {
    if (session_->sessionState() == state) return;
    session_->sessionStateIs(state);
    session_->lastStateChangeIs(Qor::now());
}

void SessionBooks::rearm() {
    if (!awaiting_ || reported_) return;
    std::chrono::seconds const limit(synced_ ? config_->restartSyncShort()
                                             : config_->restartSyncLimit());
    if (steady_clock::now() - since_ >= limit) return reportOverdue();
    overdue_.expires_at(since_ + limit);
    overdue_.async_wait(tether_.tie([this](std::error_code error) {
        if (!error) rearm();
    }));
}

void SessionBooks::reportOverdue() {
    overdue_.cancel();
    reported_ = true;
    Vgw::updateOvsdbRequestResult(session_, Vgw::stateDisconnected, Vgw::monitorRequestType,
                                  std::string_view("not in step: " + reason_));
}

}  // namespace Vgwd
