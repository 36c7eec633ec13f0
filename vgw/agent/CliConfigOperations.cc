#include <vgw/agent/CliConfig.h>
#include <vgw/values/Trace.h>

namespace Vgw {

Qor::String8 CliConfig::managerTarget() const {
    traceEntry(vgwTypesUnit, __LINE__, "managerTarget",
               "Qor::String Vgw::CliConfig::managerTarget() const");
    if (managerIp() == Kelp::IpAddr()) {
        return {};
    }
    return Qor::format("ssl:%s:%d", managerIp().stringValue().charPtr(), int{managerPort()});
}

// The defaults stand here, in the constructor and in CliDefaults; a test holds them together.
void CliConfig::reset() {
    traceEntry(vgwTypesUnit, __LINE__, "reset", "void Vgw::CliConfig::reset()");
    Ptr const held(this);  // a handler may let go of it
    enableAgentIs(false);
    enableOvsdbIs(true);
    vtepListTypeIs(VtepListType::sendToAny);
    managerIpIs(Kelp::IpAddr());
    managerPortIs(6632);
    persistDatabaseIs(true);
    logConsoleIs(OvsdbLogLevel::disabled);
    logSyslogIs(OvsdbLogLevel::disabled);
    logFileIs(OvsdbLogLevel::disabled);
}

}  // namespace Vgw
