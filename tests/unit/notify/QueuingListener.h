// A notifiee that puts its work off to its activity, as those do that must not work in a setter.
#ifndef TESTS_UNIT_NOTIFY_QUEUING_LISTENER_H
#define TESTS_UNIT_NOTIFY_QUEUING_LISTENER_H

#include <tests/unit/notify/TestListeners.h>

namespace Sample {

/// Queues what it hears of "mode" and "speed", and of "label" with its keys. What is delivered goes
/// into the log: "now" before it when it was not put off.
class QueuingListener : public Port::NotifieeConst, Live<QueuingListener> {
  public:
    using Ptr = Qor::Ptr<QueuingListener>;

    QueuingListener(Log& log, Qor::ActivityManager& manager) : log_(&log) {
        activityIs(Qor::make<Qor::Activity>(manager, "queuing"));
    }
    static int living() { return Live<QueuingListener>::count; }

    std::function<void()> inDelivery;
    std::function<void()> onAll;  // within the turn, before the keys are delivered

    void onMode() override { hear(Row::ModeAttr::id); }
    void onSpeed() override { hear(Port::SpeedAttr::id); }
    void onLabel(Qor::U16 key) override {
        if (!qorOnAttribute(Row::LabelAttr::id, labels_.note(key))) {
            write("now label(" + std::to_string(key) + ")");
        }
    }

    // The pending keys are its own to deliver, everything else the framework's.
    void handleNotification(Qor::ActivityConfig* config) override {
        if (pendingAttribute() != Row::LabelAttr::id) {
            Port::NotifieeConst::handleNotification(config);
        } else {
            pendingAttributeIs(nothingPending);
        }
        Qor::U8 const pending = std::exchange(labels_.count, Qor::U8{0});
        if (pending == 1) {
            write("label(" + std::to_string(labels_.lastKey) + ")");
        } else if (pending > 1) {
            write("label");
        }
        if (auto const work = inDelivery) {
            work();
        }
    }
    void qorDropPendingKeys() override {
        labels_.drop();
        Port::NotifieeConst::qorDropPendingKeys();
    }
    void onAttribute(Qor::AttributeId id) override { write(std::to_string(id)); }
    void onNotification() override {
        write("all");
        if (onAll) {
            onAll();
        }
    }
    void handleNotificationException() override { write("exception"); }

  private:
    void hear(Qor::AttributeId id) {
        if (!qorOnAttribute(id, nullptr)) {
            write("now " + std::to_string(id));
        }
    }
    void write(std::string const& what) { log_->push_back(what); }

    Qor::PendingKey<Qor::U16> labels_;
    Log* log_;
};

}  // namespace Sample

#endif
