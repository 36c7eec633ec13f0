#include "ModelTable.h"

namespace Contract {
namespace {

char const* const text = "Qor::String8";
char const* const name = "Qor::Name";
char const* const ip = "Kelp::IpAddr";
char const* const mac = "Kelp::EthAddr";
char const* const vni = "Vxlan::Vni";

AttributeRow scalar(int id, char const* attribute, char const* type, char const* defaultValue) {
    return {id, attribute, "scalar", type, "", defaultValue};
}
AttributeRow string(int id, char const* attribute) { return scalar(id, attribute, text, "''"); }
AttributeRow time(int id, char const* attribute) { return scalar(id, attribute, "double", "0"); }
AttributeRow set(int id, char const* attribute, char const* key) {
    return {id, attribute, "valueMap", "bool", key, ""};
}
AttributeRow map(int id, char const* attribute, char const* key) {
    return {id, attribute, "valueMap", text, key, ""};
}
AttributeRow refers(int id, char const* attribute, char const* entity, char const* key) {
    return {id, attribute, "refMap", entity, key, ""};
}
AttributeRow owns(int id, char const* attribute, char const* entity) {
    return {id, attribute, "childMap", entity, name, ""};
}
AttributeRow child(int id, char const* attribute, char const* entity) {
    return {id, attribute, "child", entity, "", "null"};
}
AttributeRow operation(int id, char const* attribute) {
    return {id, attribute, "operation", "", "", ""};
}

char const* const noIp = "'0.0.0.0'";
char const* const noMac = "'00:00:00:00:00:00'";
char const* const row = "Vgw::OvsdbDataModel";
char const* const entity = "Qor::Entity";

std::vector<ClassRow> switchesAndPorts() {
    return {
        {"Vgw::PhysicalSwitch",
         row,
         {scalar(386, "displayName", name, "''"), string(387, "desc"), set(388, "port", text),
          set(389, "mgmtIp", ip), set(390, "tunnelIp", ip), set(391, "fault", text),
          operation(392, "isEqualTo")}},
        {"Vgw::PhysicalPort",
         row,
         {string(386, "displayName"), string(387, "desc"), map(388, "vlanBinding", "U16"),
          map(389, "vlanStat", "U32"), set(390, "fault", text), operation(391, "isEqualTo")}},
        {"Vgw::LogicalBindingStats",
         row,
         {scalar(386, "inBytes", "U64", "0"), scalar(387, "inPackets", "U64", "0"),
          scalar(388, "outBytes", "U64", "0"), scalar(389, "outPackets", "U64", "0")}},
        {"Vgw::LogicalSwitch",
         row,
         {string(386, "displayName"), string(387, "desc"),
          scalar(388, "tunnelKey", "U32", "16777216")}},
    };
}

std::vector<ClassRow> baseAndManagers() {
    return {
        {row,
         entity,
         {scalar(258, "type", "Vgw::OvsdbDataType", "'unknownDataType'"),
          set(259, "invalidAttrib", text), operation(260, "clone")}},
        {"Vgw::Global",
         row,
         {set(386, "pSwitch", text), set(387, "manager", text), operation(388, "isEqualTo")}},
        {"Vgw::Manager", row, {string(386, "target"), operation(387, "isEqualTo")}},
        {"Vgw::BackupManager", "Vgw::Manager", {}},
    };
}

std::vector<ClassRow> macRows() {
    return {
        {"Vgw::UcastMacsLocal",
         row,
         {{386, "macAddr", "constField", mac, "", "'00:00:5e:00:53:00'"},
          scalar(387, "vtepIp", ip, noIp),
          string(388, "uuid"),
          scalar(389, "vni", vni, "0"),
          string(390, "logicalSwitch")}},
        {"Vgw::McastMacsLocal",
         row,
         {{386, "macAddr", "constField", mac, "", "'00:00:5e:00:53:00'"},
          set(387, "vtepIp", ip),
          string(388, "uuid"),
          scalar(389, "vni", vni, "0"),
          string(390, "physicalLocatorSet"),
          string(391, "logicalSwitch")}},
        {"Vgw::UcastMacsRemote",
         row,
         {scalar(386, "mac", mac, noMac), string(387, "logicalSwitch"),
          string(388, "physicalLocator"), scalar(389, "ipAddr", ip, noIp)}},
        {"Vgw::McastMacsRemote",
         row,
         {scalar(386, "mac", mac, noMac), string(387, "logicalSwitch"),
          string(388, "physicalLocatorSet"), scalar(389, "ipAddr", ip, noIp)}},
    };
}

std::vector<ClassRow> locatorsAndContainer() {
    return {
        {"Vgw::PhysicalLocator",
         row,
         {scalar(386, "key", "Vgw::PhysicalLocatorKey",
                 "Value('Vgw::PhysicalLocatorKey', ** {'encapType': 'vxlan_over_ipv4', "
                 "'dstIp': '0.0.0.0'})"),
          map(387, "bfd", text), map(388, "bfdStatus", text),
          set(389, "ucastMacRef", "Vgw::MacVniPair"), set(390, "mcastMacRef", "Vgw::MacVniPair"),
          operation(391, "isEqualTo")}},
        {"Vgw::PhysicalLocatorSet", row, {set(386, "locator", text), operation(387, "isEqualTo")}},
        {"Vgw::HwVtepOvsdb",
         entity,
         {owns(258, "root", "Vgw::Global"), owns(259, "manager", "Vgw::Manager"),
          refers(260, "physicalSwitch", "Vgw::PhysicalSwitch", text),
          owns(261, "physicalPort", "Vgw::PhysicalPort"),
          owns(262, "logicalBindingStats", "Vgw::LogicalBindingStats"),
          owns(263, "logicalSwitch", "Vgw::LogicalSwitch"),
          refers(264, "physicalLocator", "Vgw::PhysicalLocator", ip),
          owns(265, "physicalLocatorSet", "Vgw::PhysicalLocatorSet"),
          owns(266, "physicalSwitchRaw", "Vgw::PhysicalSwitch"),
          owns(267, "physicalLocatorRaw", "Vgw::PhysicalLocator"),
          refers(268, "remoteLocator", "Vgw::PhysicalLocator", "Vgw::PhysicalLocatorKey"),
          operation(269, "clear")}},
    };
}

std::vector<ClassRow> statusAndConfiguration() {
    return {
        {"Vgw::OvsdbSessionStatus",
         entity,
         {scalar(258, "sessionState", "Vgw::SessionState", "'stateUnknown'"),
          time(259, "lastStateChange"), string(260, "lastMsgSent"),
          string(261, "lastMsgSentDetail"), time(262, "timeOfLastMsg"),
          time(263, "responseTimeForLastMsg"), string(264, "lastSuccessfulMsg"),
          string(265, "lastSuccessfulMsgDetail"), scalar(266, "numSuccessfulMsg", "U32", "0"),
          string(267, "lastFailedMsg"), string(268, "lastFailedMsgDetail"),
          scalar(269, "numFailedMsg", "U32", "0"), time(270, "lastSuccessfulMsgTime"),
          time(271, "lastFailedMsgTime"), string(272, "lastErrorCode"),
          operation(273, "toDisplayMsg")}},
        {"Vgw::Status",
         entity,
         {child(258, "ovsdbSessionStatus", "Vgw::OvsdbSessionStatus"),
          child(259, "ovsdb", "Vgw::HwVtepOvsdb"), scalar(260, "running", "bool", "false"),
          scalar(261, "vtepListType", "Vgw::VtepListType", "'sendToAny'")}},
        {"Vgw::Config",
         entity,
         {string(258, "ovsdbRunDir"), string(259, "ovsdbLogDir"), string(260, "ovsdbCertDir"),
          string(261, "ovsdbBackupDir"), string(262, "ovsdbDataDir"),
          string(263, "ovsdbSocketFile"), string(264, "ovsdbCertFile"), string(265, "ovsdbPidFile"),
          scalar(266, "restartSyncLimit", "U32", "100"),
          scalar(267, "restartSyncShort", "U32", "10")}},
        {"Vgw::CliConfig",
         entity,
         {scalar(258, "enableAgent", "bool", "false"), scalar(259, "enableOvsdb", "bool", "true"),
          scalar(260, "vtepListType", "Vgw::VtepListType", "'sendToAny'"),
          scalar(261, "managerIp", ip, noIp), scalar(262, "managerPort", "U16", "6632"),
          operation(263, "managerTarget"), scalar(264, "persistDatabase", "bool", "true"),
          scalar(265, "logConsole", "Vgw::OvsdbLogLevel", "'disabled'"),
          scalar(266, "logSyslog", "Vgw::OvsdbLogLevel", "'disabled'"),
          scalar(267, "logFile", "Vgw::OvsdbLogLevel", "'disabled'"), operation(268, "reset")}},
    };
}

}  // namespace

std::vector<ClassRow> const& modelTable() {
    static std::vector<ClassRow> const all = [] {
        std::vector<ClassRow> rows;
        for (auto const& part : {baseAndManagers(), switchesAndPorts(), macRows(),
                                 locatorsAndContainer(), statusAndConfiguration()}) {
            rows.insert(rows.end(), part.begin(), part.end());
        }
        return rows;
    }();
    return all;
}

}  // namespace Contract
