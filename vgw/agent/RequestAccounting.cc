#include <qor/core/Assert.h>
#include <qor/core/Now.h>
#include <vgw/agent/RequestAccounting.h>
#include <vgw/values/Trace.h>

namespace Vgw {

namespace {

constexpr Qor::U32 longestDetail = 80;
constexpr char const* resultSignature =
    "void Vgw::updateOvsdbRequestResult(const Vgw::OvsdbSessionStatus::Ptr&, Vgw::SessionState, "
    "Vgw::OvsdbRequestType, const Qor::String&)";

Qor::String8 shortForm(Qor::String8 const& detail) {
    if (detail.length() <= longestDetail) {
        return detail;
    }
    return detail.substr(0, longestDetail - 3) + "...";
}

void accountSuccess(OvsdbSessionStatus& status, OvsdbRequestType type, Qor::String8 const& detail) {
    status.responseTimeForLastMsgIs(Qor::now() - status.timeOfLastMsg());
    status.numSuccessfulMsgIs(status.numSuccessfulMsg() + 1);
    status.lastSuccessfulMsgIs(OvsdbSessionStatus::toDisplayMsg(type));
    status.lastSuccessfulMsgDetailIs(detail);
    status.lastSuccessfulMsgTimeIs(status.timeOfLastMsg());
}

void accountFailure(OvsdbSessionStatus& status, OvsdbRequestType type, Qor::String8 const& detail) {
    status.responseTimeForLastMsgIs(0.0);
    status.numFailedMsgIs(status.numFailedMsg() + 1);
    status.lastFailedMsgIs(OvsdbSessionStatus::toDisplayMsg(type));
    status.lastFailedMsgDetailIs(detail);
    status.lastFailedMsgTimeIs(status.timeOfLastMsg());
}

[[noreturn]] void refuseState(int line) {
    Qor::assertionFailed("0 && \"Unexpected session state.\"", vgwTypesUnit, line, resultSignature);
}

}  // namespace

Qor::String8 OvsdbSessionStatus::toDisplayMsg(OvsdbRequestType requestType) {
    constexpr char const* signature =
        "static Qor::String Vgw::OvsdbSessionStatus::toDisplayMsg(Vgw::OvsdbRequestType)";
    constexpr char const* refusal = "false && \"Unknown soap message type\"";
    traceEntry(vgwTypesUnit, __LINE__, "toDisplayMsg", signature);
    switch (requestType) {
        case OvsdbRequestType::transactRequestType:
            return "Transaction request";
        case OvsdbRequestType::cancelRequestType:
            return "Cancel request";
        case OvsdbRequestType::monitorRequestType:
            return "Monitor request";
        case OvsdbRequestType::unknownOvsdbRequestType:
            Qor::assertionFailed(refusal, vgwTypesUnit, 83, signature);
        case OvsdbRequestType::queryRequestType:
            break;
    }
    Qor::assertionFailed(refusal, vgwTypesUnit, 103, signature);
}

void updateOvsdbRequest(OvsdbSessionStatus::Ptr const& status, OvsdbRequestType type,
                        Qor::String8 const& detail) {
    Qor::String8 const shortDetail = shortForm(detail);
    OvsdbSessionStatus::Ptr const held = status;  // a handler may let go of the caller's
    held->lastMsgSentIs(OvsdbSessionStatus::toDisplayMsg(type));
    held->lastMsgSentDetailIs(shortDetail);
    held->timeOfLastMsgIs(Qor::now());
}

void updateOvsdbRequestResult(OvsdbSessionStatus::Ptr const& status, SessionState state,
                              OvsdbRequestType type, Qor::String8 const& detail) {
    Qor::trace(traceHandle(), 5, vgwTypesUnit, __LINE__, "updateOvsdbRequestResult",
               [&](std::ostream& out) { out << resultSignature << ' ' << stringValue(state); });
    Qor::String8 const shortDetail = shortForm(detail);
    OvsdbSessionStatus::Ptr const held = status;
    switch (state) {
        case SessionState::stateConnected:
        case SessionState::stateBackupDbSynced:
            accountSuccess(*held, type, shortDetail);
            break;
        case SessionState::stateDisconnected:
            accountFailure(*held, type, shortDetail);
            break;
        case SessionState::stateUnknown:
            refuseState(42);
        default:
            refuseState(68);
    }
    held->sessionStateIs(state);
    held->lastStateChangeIs(Qor::now());
}

}  // namespace Vgw
