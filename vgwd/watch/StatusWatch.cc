#include <vgwd/watch/StatusWatch.h>

#include <array>
#include <cstdio>

namespace Vgwd {
namespace {

std::string textOf(Qor::String8 const& text) { return "\"" + std::string(text.view()) + "\""; }
std::string textOf(bool flag) { return flag ? "true" : "false"; }
std::string textOf(Qor::U32 number) { return std::to_string(number); }
std::string textOf(Vgw::SessionState state) { return std::string(Vgw::stringValue(state).view()); }
std::string textOf(Vgw::VtepListType type) { return std::string(Vgw::stringValue(type).view()); }
// Seconds, to the millisecond.
std::string textOf(Qor::Seconds const& seconds) {
    std::array<char, 48> text{};
    std::snprintf(text.data(), text.size(), "%.3f", seconds);
    return text.data();
}

// What both watches share.
template <class X>
class Watch : public X::NotifieeConst {
  public:
    Watch(std::string path, ChangePrinter& printer) : path_(std::move(path)), printer_(printer) {}

  protected:
    X const& entity() const { return static_cast<X const&>(*this->qorNotifier()); }

    template <class V>
    void tell(std::string_view attribute, V const& value) {
        printer_.tell(path_, attribute, textOf(value));
    }

  private:
    std::string path_;
    ChangePrinter& printer_;
};

class StatusWatch final : public Watch<Vgw::Status> {
  public:
    using Watch::Watch;
    void onRunning() override { tell("running", entity().running()); }
    void onVtepListType() override { tell("vtepListType", entity().vtepListType()); }
};

class SessionWatch final : public Watch<Vgw::OvsdbSessionStatus> {
  public:
    using Watch::Watch;
    void onSessionState() override { tell("sessionState", entity().sessionState()); }
    void onLastStateChange() override { tell("lastStateChange", entity().lastStateChange()); }
    void onLastMsgSent() override { tell("lastMsgSent", entity().lastMsgSent()); }
    void onLastMsgSentDetail() override { tell("lastMsgSentDetail", entity().lastMsgSentDetail()); }
    void onTimeOfLastMsg() override { tell("timeOfLastMsg", entity().timeOfLastMsg()); }
    void onResponseTimeForLastMsg() override {
        tell("responseTimeForLastMsg", entity().responseTimeForLastMsg());
    }
    void onLastSuccessfulMsg() override { tell("lastSuccessfulMsg", entity().lastSuccessfulMsg()); }
    void onLastSuccessfulMsgDetail() override {
        tell("lastSuccessfulMsgDetail", entity().lastSuccessfulMsgDetail());
    }
    void onNumSuccessfulMsg() override { tell("numSuccessfulMsg", entity().numSuccessfulMsg()); }
    void onLastFailedMsg() override { tell("lastFailedMsg", entity().lastFailedMsg()); }
    void onLastFailedMsgDetail() override {
        tell("lastFailedMsgDetail", entity().lastFailedMsgDetail());
    }
    void onNumFailedMsg() override { tell("numFailedMsg", entity().numFailedMsg()); }
    void onLastSuccessfulMsgTime() override {
        tell("lastSuccessfulMsgTime", entity().lastSuccessfulMsgTime());
    }
    void onLastFailedMsgTime() override { tell("lastFailedMsgTime", entity().lastFailedMsgTime()); }
    void onLastErrorCode() override { tell("lastErrorCode", entity().lastErrorCode()); }
};

template <class W, class X>
Qor::Entity::NotifieeConst::Ptr watch(Qor::Ptr<X> const& entity, ChangePrinter& printer) {
    auto const watch = Qor::make<W>(std::string(entity->uriPath().view()), printer);
    watch->notifierIs(entity);
    return watch;
}

}  // namespace

std::vector<Qor::Entity::NotifieeConst::Ptr> watchStatus(Vgw::Status::Ptr const& status,
                                                         ChangePrinter& printer) {
    std::vector<Qor::Entity::NotifieeConst::Ptr> watches{watch<StatusWatch>(status, printer)};
    if (auto const session = status->ovsdbSessionStatus())
        watches.push_back(watch<SessionWatch>(session, printer));
    return watches;
}

}  // namespace Vgwd
