#include <vgwd/agent/ConfigReactor.h>

#include <asio/post.hpp>

namespace Vgwd {

ConfigReactor::ConfigReactor(asio::io_context& loop, Vgw::Status::Ptr status,
                             DatabaseSession& session, LogOutputs& logs)
    : loop_(loop), status_(std::move(status)), session_(session), logs_(logs) {}

void ConfigReactor::follow(Vgw::CliConfig::Ptr const& config) {
    notifierIs(config);
    onLogConsole();
    onLogSyslog();
    onLogFile();
    onVtepListType();
    schedule();
}

void ConfigReactor::leave() { notifierIs({}); }

Vgw::CliConfig const& ConfigReactor::config() const {
    return static_cast<Vgw::CliConfig const&>(*qorNotifier());
}

void ConfigReactor::onVtepListType() { status_->vtepListTypeIs(config().vtepListType()); }

void ConfigReactor::onLogConsole() {
    logs_.levelIs(LogDestination::console, config().logConsole());
}

void ConfigReactor::onLogSyslog() { logs_.levelIs(LogDestination::syslog, config().logSyslog()); }

void ConfigReactor::onLogFile() { logs_.levelIs(LogDestination::file, config().logFile()); }

void ConfigReactor::schedule() {
    if (std::exchange(scheduled_, true)) return;
    asio::post(loop_, [self = Ptr(this)] {
        self->scheduled_ = false;
        if (self->qorNotifier() != nullptr) self->apply();
    });
}

void ConfigReactor::apply() {
    Vgw::CliConfig const& config = this->config();
    status_->runningIs(config.enableAgent());
    session_.persistIs(config.persistDatabase());
    session_.managerTargetIs(std::string(config.managerTarget().view()));
    session_.enabledIs(config.enableAgent() && config.enableOvsdb());
}

}  // namespace Vgwd
