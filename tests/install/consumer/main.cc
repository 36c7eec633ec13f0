#include <vgw/OvsdbDataTypes.h>

#include <iostream>

struct Watcher : Vgw::LogicalSwitch::Notifiee {
    void onTunnelKey() override { std::cout << "tunnelKey " << notifier()->tunnelKey() << '\n'; }
};

int main() {
    auto database = Vgw::hwVtepOvsdbFactory("ovsdb");
    auto red = database->logicalSwitchIs("red");
    auto watcher = Qor::adopt(new Watcher);
    watcher->notifierIs(red);
    red->tunnelKeyIs(5001);
}
