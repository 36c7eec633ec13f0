#include "RegistryTable.h"

namespace Contract {

using namespace FlagsOf;
using namespace TypeNames;

std::vector<RegisteredType> tableOfMacsAndLocators() {
    constexpr Made step = Made::step;
    constexpr Made tree = Made::tree;
    return {
        {"Vgw::MacVniPair",
         Sort::value,
         "",
         {{"mac", mac}, {"vni", vni}},
         false,
         {
             {"mac", 2, mac, "", constField, step, {}},
             {"vni", 3, vni, "", constField, step, {}},
             {"hash", 4, "U32", "", derived, step, {}},
         }},
        {"Vgw::UcastMacsLocal",
         Sort::entity,
         row,
         {{"macAddr", mac}},
         false,
         {
             {"qorHasAttrLogInterface", 154, flag, "", functionBase, step, {}},
             {"clone", 260, "void*", "", function, tree, {{"rhs", row}}},
             {"macAddr", 386, mac, "", constField, step, {}},
             {"vtepIp", 387, ip, "", scalar, step, {}},
             {"uuid", 388, text, "", scalar, step, {}},
             {"vni", 389, vni, "", scalar, step, {}},
             {"logicalSwitch", 390, text, "", scalar, step, {}},
         }},
        {"Vgw::McastMacsLocal",
         Sort::entity,
         row,
         {{"macAddr", mac}},
         false,
         {
             {"qorHasAttrLogInterface", 154, flag, "", functionBase, step, {}},
             {"clone", 260, "void*", "", function, tree, {{"rhs", row}}},
             {"macAddr", 386, mac, "", constField, step, {}},
             {"vtepIp", 387, flag, ip, valueMap, step, {}},
             {"uuid", 388, text, "", scalar, step, {}},
             {"vni", 389, vni, "", scalar, step, {}},
             {"physicalLocatorSet", 390, text, "", scalar, step, {}},
             {"logicalSwitch", 391, text, "", scalar, step, {}},
         }},
        {"Vgw::UcastMacsRemote",
         Sort::entity,
         row,
         {{"name", name}},
         true,
         {
             {"qorHasAttrLogInterface", 154, flag, "", functionBase, step, {}},
             {"clone", 260, "void*", "", function, tree, {{"rhs", row}}},
             {"mac", 386, mac, "", scalar, step, {}},
             {"logicalSwitch", 387, text, "", scalar, step, {}},
             {"physicalLocator", 388, text, "", scalar, step, {}},
             {"ipAddr", 389, ip, "", scalar, step, {}},
         }},
        {"Vgw::McastMacsRemote",
         Sort::entity,
         row,
         {{"name", name}},
         true,
         {
             {"qorHasAttrLogInterface", 154, flag, "", functionBase, step, {}},
             {"clone", 260, "void*", "", function, tree, {{"rhs", row}}},
             {"mac", 386, mac, "", scalar, step, {}},
             {"logicalSwitch", 387, text, "", scalar, step, {}},
             {"physicalLocatorSet", 388, text, "", scalar, step, {}},
             {"ipAddr", 389, ip, "", scalar, step, {}},
         }},
        enumeration("Vgw::EncapsulationType", {"unknownEncapType", "vxlan_over_ipv4"}),
        {"Vgw::PhysicalLocatorKey",
         Sort::value,
         "",
         {{"encapType", "Vgw::EncapsulationType"}, {"dstIp", ip}},
         false,
         {
             {"encapType", 2, "Vgw::EncapsulationType", "", constField, step, {}},
             {"dstIp", 3, ip, "", constField, step, {}},
             {"hash", 4, "U32", "", derived, step, {}},
         }},
        {"Vgw::PhysicalLocator",
         Sort::entity,
         row,
         {{"name", name}},
         false,
         {
             {"qorHasAttrLogInterface", 154, flag, "", functionBase, step, {}},
             {"clone", 260, "void*", "", function, tree, {{"rhs", row}}},
             {"key", 386, "Vgw::PhysicalLocatorKey", "", scalar, step, {}},
             {"bfd", 387, text, text, valueMap, step, {}},
             {"bfdStatus", 388, text, text, valueMap, step, {}},
             {"ucastMacRef", 389, flag, "Vgw::MacVniPair", valueMap, step, {}},
             {"mcastMacRef", 390, flag, "Vgw::MacVniPair", valueMap, step, {}},
             {"isEqualTo", 391, flag, "", function, tree, {{"rhs", "Vgw::PhysicalLocator"}}},
             {"fwkKey", 0, name, "", key, step, {}},
         }},
        {"Vgw::PhysicalLocatorSet",
         Sort::entity,
         row,
         {{"name", name}},
         false,
         {
             {"qorHasAttrLogInterface", 154, flag, "", functionBase, step, {}},
             {"clone", 260, "void*", "", function, tree, {{"rhs", row}}},
             {"locator", 386, flag, text, valueMap, step, {}},
             {"isEqualTo", 387, flag, "", function, tree, {{"rhs", "Vgw::PhysicalLocatorSet"}}},
             {"fwkKey", 0, name, "", key, step, {}},
         }},
    };
}

}  // namespace Contract
