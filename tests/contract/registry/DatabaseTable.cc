#include "RegistryTable.h"

namespace Contract {

using namespace FlagsOf;
using namespace TypeNames;

std::vector<RegisteredType> tableOfTheDatabase() {
    constexpr Made step = Made::step;
    constexpr Made tree = Made::tree;
    return {
        {"Vgw::HwVtepOvsdb",
         Sort::entity,
         entity,
         {{"name", name}},
         true,
         {
             {"isNondestructing", 6, flag, "", nondestructing, step, {}},
             {"qorHasAttrLogInterface", 154, flag, "", functionBase, step, {}},
             {"root", 258, "Vgw::Global", name, childMap, tree, {{"name", name}}},
             {"manager", 259, "Vgw::Manager", name, childMap, tree, {{"name", name}}},
             {"physicalSwitch", 260, "Vgw::PhysicalSwitch", text, refMap, step, {}},
             {"physicalPort", 261, "Vgw::PhysicalPort", name, childMap, tree, {{"name", name}}},
             {"logicalBindingStats",
              262,
              "Vgw::LogicalBindingStats",
              name,
              childMap,
              tree,
              {{"name", name}}},
             {"logicalSwitch", 263, "Vgw::LogicalSwitch", name, childMap, tree, {{"name", name}}},
             {"physicalLocator", 264, "Vgw::PhysicalLocator", ip, refMap, step, {}},
             {"physicalLocatorSet",
              265,
              "Vgw::PhysicalLocatorSet",
              name,
              childMap,
              tree,
              {{"name", name}}},
             {"physicalSwitchRaw",
              266,
              "Vgw::PhysicalSwitch",
              name,
              childMap,
              tree,
              {{"name", name}}},
             {"physicalLocatorRaw",
              267,
              "Vgw::PhysicalLocator",
              name,
              childMap,
              tree,
              {{"name", name}}},
             {"remoteLocator",
              268,
              "Vgw::PhysicalLocator",
              "Vgw::PhysicalLocatorKey",
              refMap,
              step,
              {}},
             {"clear", 269, "void*", "", function, step, {}},
         }},
    };
}

}  // namespace Contract
