#include <vgwd/agent/StateTree.h>

namespace Vgwd {
namespace {

constexpr char const* macTables[] = {"ucastMacsLocal", "mcastMacsLocal", "ucastMacsRemote",
                                     "mcastMacsRemote"};

Qor::Dir::Ptr addDirectory(Qor::Dir& root, char const* name) {
    Qor::Dir::Ptr directory = Qor::make<Qor::Dir>(name);
    root.entryIs(name, directory);
    return directory;
}

}  // namespace

StateTree::StateTree()
    : root_(Qor::make<Qor::Dir>("vgw")),
      status_(Vgw::statusFactory("status")),
      database_(status_->ovsdbIs("ovsdb")),
      session_(status_->ovsdbSessionStatusIs("ovsdbSessionStatus")),
      cliConfig_(Vgw::cliConfigFactory("cliConfig")),
      config_(Vgw::configFactory("config")),
      report_(Qor::make<DatabaseReport>("database")) {
    root_->entryIs("status", status_);
    root_->entryIs("cliConfig", cliConfig_);
    root_->entryIs("config", config_);
    macs_ = {addDirectory(*root_, macTables[0]), addDirectory(*root_, macTables[1]),
             addDirectory(*root_, macTables[2]), addDirectory(*root_, macTables[3])};
    root_->entryIs("database", report_);
    sessions_ = addDirectory(*root_, "sessions");
    mirrorStateIs(Qor::Dir::EntryState::pending);
}

void StateTree::mirrorStateIs(Qor::Dir::EntryState state) {
    root_->entryStateIs("status", state);
    for (char const* const table : macTables) root_->entryStateIs(table, state);
}

}  // namespace Vgwd
