// Entities from a description of one's own behave like those of the libraries: setters tell once,
// collections own.

#include <box/Chassis.h>

#include <iostream>

namespace {

class FanWatcher : public Box::Fan::Notifiee {
  public:
    void onState() override {
        std::cout << notifier()->name() << " is " << stringValue(notifier()->state()) << '\n';
    }
    void onSpeed() override {
        std::cout << notifier()->name() << " turns at " << notifier()->speed() << '\n';
    }
};

class ChassisWatcher : public Box::Chassis::Notifiee {
  public:
    void onMgmtIp(Kelp::IpAddr address) override {
        std::cout << address << (notifier()->mgmtIp(address) ? " is ours\n" : " is gone\n");
    }
};

}  // namespace

int main() {
    auto const chassis = Box::chassisFactory("chassis");
    auto const watcher = Qor::adopt(new ChassisWatcher);
    watcher->notifierIs(chassis);
    chassis->mgmtIpIs(Kelp::IpAddr("192.0.2.1"), true);

    auto const fan = chassis->fanIs("fan-1");
    auto const fanWatcher = Qor::adopt(new FanWatcher);
    fanWatcher->notifierIs(fan);
    fan->stateIs(Box::fanTurns);
    fan->speedIs(4800);
    fan->speedIs(4800);  // the same value: nobody is told
    chassis->mgmtIpDel(Kelp::IpAddr("192.0.2.1"));
}
