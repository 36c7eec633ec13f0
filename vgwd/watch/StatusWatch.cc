#include <vgwd/watch/StatusWatch.h>

#include <vgwd/watch/EntityWatch.h>

namespace Vgwd {
namespace {

class StatusWatch final : public EntityWatch<Vgw::Status> {
  public:
    using EntityWatch::EntityWatch;
    void onRunning() override { scalar("running", entity().running()); }
    void onVtepListType() override { scalar("vtepListType", entity().vtepListType()); }
};

class SessionWatch final : public EntityWatch<Vgw::OvsdbSessionStatus> {
  public:
    using EntityWatch::EntityWatch;
    void onSessionState() override { scalar("sessionState", entity().sessionState()); }
    void onLastStateChange() override { scalar("lastStateChange", entity().lastStateChange()); }
    void onLastMsgSent() override { scalar("lastMsgSent", entity().lastMsgSent()); }
    void onLastMsgSentDetail() override {
        scalar("lastMsgSentDetail", entity().lastMsgSentDetail());
    }
    void onTimeOfLastMsg() override { scalar("timeOfLastMsg", entity().timeOfLastMsg()); }
    void onResponseTimeForLastMsg() override {
        scalar("responseTimeForLastMsg", entity().responseTimeForLastMsg());
    }
    void onLastSuccessfulMsg() override {
        scalar("lastSuccessfulMsg", entity().lastSuccessfulMsg());
    }
    void onLastSuccessfulMsgDetail() override {
        scalar("lastSuccessfulMsgDetail", entity().lastSuccessfulMsgDetail());
    }
    void onNumSuccessfulMsg() override { scalar("numSuccessfulMsg", entity().numSuccessfulMsg()); }
    void onLastFailedMsg() override { scalar("lastFailedMsg", entity().lastFailedMsg()); }
    void onLastFailedMsgDetail() override {
        scalar("lastFailedMsgDetail", entity().lastFailedMsgDetail());
    }
    void onNumFailedMsg() override { scalar("numFailedMsg", entity().numFailedMsg()); }
    void onLastSuccessfulMsgTime() override {
        scalar("lastSuccessfulMsgTime", entity().lastSuccessfulMsgTime());
    }
    void onLastFailedMsgTime() override {
        scalar("lastFailedMsgTime", entity().lastFailedMsgTime());
    }
    void onLastErrorCode() override { scalar("lastErrorCode", entity().lastErrorCode()); }
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
