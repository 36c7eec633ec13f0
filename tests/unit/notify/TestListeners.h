// Notifiees of the sample entities. Each has a name; what it hears goes into a log as "name:event",
// and then the test's own reaction runs, in which anything may be done.
#ifndef TESTS_UNIT_NOTIFY_TEST_LISTENERS_H
#define TESTS_UNIT_NOTIFY_TEST_LISTENERS_H

#include <tests/unit/notify/TestEntities.h>

namespace Sample {

using Log = std::vector<std::string>;

inline std::string text(Qor::String8 const& string) { return std::string(string.view()); }

template <class Base>
class Listening : public Base, Live<Listening<Base>> {
  public:
    using Ptr = Qor::Ptr<Listening>;

    Listening(Log& log, std::string name) : name_(std::move(name)), log_(&log) {}
    static int living() { return Live<Listening>::count; }
    std::string const& listenerName() const { return name_; }

    std::function<void(std::string const& event)> react;  // after each event but the exception
    std::function<void()> onException;
    bool adapter = false;  // stands at the head of the list, as those that stream do

    bool isStreamAdapter() const override { return adapter; }
    void onNotificationException(Qor::AttributeId id) override {
        write("exception(" + std::to_string(id) + ")");
        if (onException) {
            onException();
        }
    }
    void onZeroReferences() override { heard("zero"); }
    void onIsNondestructing() override { heard("nondestructing"); }

  protected:
    void write(std::string const& event) { log_->push_back(name_ + ":" + event); }
    void heard(std::string const& event) {
        write(event);
        if (auto const reaction = react) {  // a copy: the reaction may be replaced meanwhile
            reaction(event);
        }
    }

  private:
    std::string name_;
    Log* log_;
};

class RowListener : public Listening<Row::NotifieeConst> {
  public:
    using Ptr = Qor::Ptr<RowListener>;
    using Listening::Listening;
    void onMode() override { heard("mode"); }
    void onMark(Qor::String8 key) override { heard("mark(" + text(key) + ")"); }
    void onLabel(Qor::U16 key) override { heard("label(" + std::to_string(key) + ")"); }
};

class PortListener : public Listening<Port::NotifieeConst> {
  public:
    using Ptr = Qor::Ptr<PortListener>;
    using Listening::Listening;
    void onMode() override { heard("mode"); }
    void onSpeed() override { heard("speed"); }
};

class DeviceListener : public Listening<Device::NotifieeConst> {
  public:
    using Ptr = Qor::Ptr<DeviceListener>;
    using Listening::Listening;
    void onPort(Qor::Name name) override { heard("port(" + text(name) + ")"); }
    void onUplink(Qor::String8 key) override { heard("uplink(" + text(key) + ")"); }
    void onMain() override { heard("main"); }
};

/// A listener that is attached to `notifier`.
template <class L, class E>
Qor::Ptr<L> listen(Qor::Ptr<E> const& notifier, Log& log, std::string name) {
    auto listener = Qor::make<L>(log, std::move(name));
    listener->notifierIs(notifier);
    return listener;
}

}  // namespace Sample

#endif
