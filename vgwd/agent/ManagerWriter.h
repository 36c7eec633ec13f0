#ifndef VGWD_AGENT_MANAGER_WRITER_H
#define VGWD_AGENT_MANAGER_WRITER_H

// Sees to it that the database names the configured manager.
//
// A target makes it the only manager (ManagerRequest.h), when it is configured and each time the
// mirror comes in step; between these, what others write is left alone. When the target is taken
// back, the row that had it is removed, also when that can happen only later. A target that was
// never configured in this process removes nothing: a manager that vtep-ctl set stays.
//
// One transaction at a time. One that fails is repeated after a second, then ever more rarely, up
// to a minute; one that is lost with its connection, when the mirror is in step again.

#include <ovsdb/client/Backoff.h>
#include <ovsdb/client/Client.h>
#include <ovsdb/rpc/Tether.h>
#include <vgw/tables/HwVtepOvsdb.h>

#include <asio/io_context.hpp>
#include <asio/steady_timer.hpp>

#include <nlohmann/json_fwd.hpp>

#include <set>
#include <string>

namespace Vgwd {

class ManagerWriter {
  public:
    ManagerWriter(asio::io_context& loop, Ovsdb::Client& client, Vgw::HwVtepOvsdb::Ptr database,
                  Ovsdb::LogSink log);

    /// Empty: no manager is configured.
    void targetIs(std::string const& target);
    void inStepIs(bool inStep);

  private:
    void write();
    nlohmann::json operations() const;
    void handleOutcome(std::string const& target, Ovsdb::RpcError const* error);
    void retry();

    Ovsdb::Client& client_;
    Vgw::HwVtepOvsdb::Ptr database_;
    Ovsdb::LogSink log_;
    asio::steady_timer retry_;
    Ovsdb::Tether tether_;
    Ovsdb::Backoff backoff_;
    std::string wanted_;
    std::set<std::string> written_;  // what the database may name because of us
    bool inStep_ = false;
    bool busy_ = false;   // a transaction is under way
    bool raced_ = false;  // the one before lost against another writer
};

}  // namespace Vgwd

#endif
