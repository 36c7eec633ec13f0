#ifndef VGWD_AGENT_CONFIG_REACTOR_H
#define VGWD_AGENT_CONFIG_REACTOR_H

// Does what Vgw::CliConfig says, whenever it changes.
//
// Log levels and the list type follow at once. What starts, stops or writes something follows later
// in the same turn of the event loop, once for all that changed in it: an address and a port that
// are set one after the other make one manager, and reset() is one change.

#include <vgw/agent/CliConfig.h>
#include <vgwd/agent/DatabaseSession.h>
#include <vgwd/agent/LogOutputs.h>

#include <asio/io_context.hpp>

namespace Vgwd {

class ConfigReactor final : public Vgw::CliConfig::NotifieeConst {
  public:
    using Ptr = Qor::Ptr<ConfigReactor>;

    ConfigReactor(asio::io_context& loop, Vgw::Status::Ptr status, DatabaseSession& session,
                  LogOutputs& logs);

    /// Follows that configuration from now on, beginning with what it says already.
    void follow(Vgw::CliConfig::Ptr const& config);
    /// Follows none; what waits to be done is not done any more.
    void leave();

    void onEnableAgent() override { schedule(); }
    void onEnableOvsdb() override { schedule(); }
    void onVtepListType() override;
    void onManagerIp() override { schedule(); }
    void onManagerPort() override { schedule(); }
    void onPersistDatabase() override { schedule(); }
    void onLogConsole() override;
    void onLogSyslog() override;
    void onLogFile() override;

  private:
    Vgw::CliConfig const& config() const;
    void schedule();
    void apply();

    asio::io_context& loop_;
    Vgw::Status::Ptr status_;
    DatabaseSession& session_;
    LogOutputs& logs_;
    bool scheduled_ = false;
};

}  // namespace Vgwd

#endif
