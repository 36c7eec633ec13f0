// A small agent: hears of logical switches as they come and go, and of each one's tunnel key.
//
// The database here is filled by hand; in vgwd the same rows follow an OVSDB server, and this code
// would not change.

#include <vgw/OvsdbDataTypes.h>

#include <iostream>
#include <map>
#include <string>

namespace {

// One of these for each switch. It holds its notifier, so that the row lives as long as somebody
// listens to it.
class KeyWatcher : public Vgw::LogicalSwitch::Notifiee {
  public:
    void onTunnelKey() override {
        std::cout << notifier()->name() << ": tunnel key " << notifier()->tunnelKey() << '\n';
    }
};

// One for the database: attaches a KeyWatcher to each switch that comes, drops it with the switch.
class SwitchWatcher : public Vgw::HwVtepOvsdb::Notifiee {
  public:
    void onLogicalSwitch(Qor::Name name) override {
        auto const row = notifier()->logicalSwitch(name);
        std::string const key(name.view());
        if (!row) {
            watchers_.erase(key);
            std::cout << name << ": gone\n";
            return;
        }
        std::cout << name << ": here\n";
        auto const watcher = Qor::adopt(new KeyWatcher);
        watcher->notifierIs(row);
        watchers_[key] = watcher;
    }

  private:
    std::map<std::string, Qor::Ptr<KeyWatcher>> watchers_;
};

}  // namespace

int main() {
    auto const database = Vgw::hwVtepOvsdbFactory("ovsdb");
    auto const watcher = Qor::adopt(new SwitchWatcher);
    watcher->notifierIs(database);

    auto const red = database->logicalSwitchIs("red");
    red->tunnelKeyIs(5001);
    red->tunnelKeyIs(5001);  // the same value: nobody is told
    database->logicalSwitchIs("blue")->tunnelKeyIs(5002);
    red->tunnelKeyIs(6001);
    database->logicalSwitchDel("red");
}
