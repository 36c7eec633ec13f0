#ifndef VGWD_AGENT_STATE_TREE_H
#define VGWD_AGENT_STATE_TREE_H

// The tree in which all of the agent's state stands. It is made whole and stays as it is: what
// changes is what the entities hold.
//
//     /vgw/status           Vgw::Status, with ovsdb (the mirror) and ovsdbSessionStatus below it
//     /vgw/cliConfig        Vgw::CliConfig: what the agent is told to do
//     /vgw/config           Vgw::Config: where it keeps what, and its limits
//     /vgw/ucastMacsLocal   and mcastMacsLocal, ucastMacsRemote, mcastMacsRemote: directories of
//                           MAC rows
//     /vgw/database         Vgwd::DatabaseReport: how the agent stands with the database
//     /vgw/sessions         directory of Vgwd::PeerSession: who mounts this tree

#include <ovsdb/mirror/MacRows.h>
#include <qor/tree/Dir.h>
#include <vgw/agent/CliConfig.h>
#include <vgw/agent/Config.h>
#include <vgw/agent/Status.h>
#include <vgwd/model/DatabaseReport.h>

namespace Vgwd {

class StateTree {
  public:
    StateTree();

    Qor::Dir::Ptr const& root() const { return root_; }
    Vgw::Status::Ptr const& status() const { return status_; }
    Vgw::HwVtepOvsdb::Ptr const& database() const { return database_; }
    Vgw::OvsdbSessionStatus::Ptr const& session() const { return session_; }
    Vgw::CliConfig::Ptr const& cliConfig() const { return cliConfig_; }
    Vgw::Config::Ptr const& config() const { return config_; }
    Ovsdb::MacDirectories const& macs() const { return macs_; }
    DatabaseReport::Ptr const& report() const { return report_; }
    Qor::Dir::Ptr const& sessions() const { return sessions_; }

    /// How far what is mirrored can be relied on: the state of /vgw/status and of the MAC rows'
    /// directories.
    void mirrorStateIs(Qor::Dir::EntryState state);

  private:
    Qor::Dir::Ptr root_;
    Vgw::Status::Ptr status_;
    Vgw::HwVtepOvsdb::Ptr database_;
    Vgw::OvsdbSessionStatus::Ptr session_;
    Vgw::CliConfig::Ptr cliConfig_;
    Vgw::Config::Ptr config_;
    Ovsdb::MacDirectories macs_;
    DatabaseReport::Ptr report_;
    Qor::Dir::Ptr sessions_;
};

}  // namespace Vgwd

#endif
