// The compiled classes against the table by hand.
#include "ModelTable.h"

#include <algorithm>
#include <map>

#include <vgw/OvsdbDataTypesList.h>
#include <vgw/VgwTypesList.h>

#include "EveryClass.h"

namespace Contract {
namespace {

std::string kindName(Kind kind) {
    switch (kind) {
        case Kind::scalar:
            return "scalar";
        case Kind::constField:
            return "constField";
        case Kind::valueMap:
            return "valueMap";
        case Kind::refMap:
            return "refMap";
        case Kind::childMap:
            return "childMap";
        case Kind::child:
            return "child";
        case Kind::operation:
            return "operation";
    }
    return "unknown";
}

ClassRow const& tableRow(std::string const& name) {
    static ClassRow const none{"", "", {}};
    auto const& all = modelTable();
    auto const found =
        std::find_if(all.begin(), all.end(), [&](ClassRow const& row) { return row.name == name; });
    return found == all.end() ? none : *found;
}

class ModelTableOf : public EveryClass {};
INSTANTIATE_TEST_SUITE_P(Models, ModelTableOf, testing::ValuesIn(entityClasses()), ClassName());

TEST_P(ModelTableOf, ClassHasExactlyTheAttributesThatStandThere) {
    std::vector<AttributeRow> found;
    for (auto const& a : class_.own) {
        found.push_back({static_cast<int>(a->id), a->name, kindName(a->kind), a->valueType,
                         a->keyType, a->held(*entity_)});
    }
    EXPECT_EQ(found, tableRow(class_.name).attributes);
}

TEST_P(ModelTableOf, ClassStandsBelowTheBaseThatStandsThere) {
    EXPECT_EQ(class_.base, tableRow(class_.name).base);
    EXPECT_EQ(class_.root, class_.base == "Qor::Entity" ? class_.name : "Vgw::OvsdbDataModel");
}

TEST(ModelTable, HoldsTheClassesInTheOrderOfTheirRegistration) {
    std::vector<std::string> expected;
    for (auto const& row : modelTable()) {
        expected.push_back(row.name);
    }
    std::vector<std::string> found;
    for (auto const* entityClass : entityClasses()) {
        found.push_back(entityClass->name);
    }
    EXPECT_EQ(found, expected);
}

using Names = std::vector<std::string>;

TEST(ModelTable, EnumerationsAreTheSixKnownOnes) {
    std::map<std::string, Names> const expected{
        {"OvsdbDataType",
         {"unknownDataType", "logicalSwitch", "logicalBindingStats", "physicalPort",
          "physicalSwitch", "physicalLocator", "physicalLocatorSet", "ucastMacsRemote",
          "mcastMacsRemote", "global", "manager", "ucastMacsLocal", "mcastMacsLocal",
          "backupManager"}},
        {"EncapsulationType", {"unknownEncapType", "vxlan_over_ipv4"}},
        {"VtepListType", {"sendToAll", "sendToAny"}},
        {"OvsdbRequestType",
         {"unknownOvsdbRequestType", "transactRequestType", "cancelRequestType",
          "monitorRequestType", "queryRequestType"}},
        {"SessionState",
         {"stateUnknown", "stateBackupDbSynced", "stateDisconnected", "stateConnected"}},
        {"OvsdbLogLevel", {"disabled", "emergency", "error", "warning", "information", "debug"}},
    };
    std::map<std::string, Names> found;
    auto const enter = [&]<class E>() {
        auto const& names = Qor::EnumTable<E>::names;
        found[Qor::EnumTable<E>::type] = Names(names.begin(), names.end());
    };
    Vgw::OvsdbDataTypesEnumerations::forEach(enter);
    Vgw::VgwTypesEnumerations::forEach(enter);
    EXPECT_EQ(found, expected);
}

TEST(ModelTable, ValuesAreTheThreeKnownOnesWithTheirFields) {
    std::map<std::string, Names> const expected{
        {"Vgw::MacVniPair", {"mac", "vni"}},
        {"Vgw::PhysicalLocatorKey", {"encapType", "dstIp"}},
        {"Vgw::CliDefaults", {}},
    };
    std::map<std::string, Names> found;
    auto const enter = [&]<class V>() {
        Names& names = found[V::qorTypeName];
        V::QorFields::forEach([&]<class F>() { names.push_back(F::name); });
    };
    Vgw::OvsdbDataTypesValues::forEach(enter);
    Vgw::VgwTypesValues::forEach(enter);
    EXPECT_EQ(found, expected);
}

// The kind that a row class stores when it is built; -1 where the class is no row.
TEST(ModelTable, RowClassesBearTheirKinds) {
    std::map<std::string, int> const expected{
        {"Vgw::OvsdbDataModel", 0},
        {"Vgw::LogicalSwitch", 1},
        {"Vgw::LogicalBindingStats", 2},
        {"Vgw::PhysicalPort", 3},
        {"Vgw::PhysicalSwitch", 4},
        {"Vgw::PhysicalLocator", 5},
        {"Vgw::PhysicalLocatorSet", 6},
        {"Vgw::UcastMacsRemote", 7},
        {"Vgw::McastMacsRemote", 8},
        {"Vgw::Global", 9},
        {"Vgw::Manager", 10},
        {"Vgw::UcastMacsLocal", 11},
        {"Vgw::McastMacsLocal", 12},
        {"Vgw::BackupManager", 13},
        {"Vgw::HwVtepOvsdb", -1},
        {"Vgw::OvsdbSessionStatus", -1},
        {"Vgw::Status", -1},
        {"Vgw::Config", -1},
        {"Vgw::CliConfig", -1},
    };
    std::map<std::string, int> found;
    for (auto const* entityClass : entityClasses()) {
        found[entityClass->name] = entityClass->rowKind(*entityClass->make());
    }
    EXPECT_EQ(found, expected);
}

TEST(ModelTable, OwnedRowClassesCarryTheLinkOfACollection) {
    Names found;
    for (auto const* entityClass : entityClasses()) {
        if (entityClass->isOwnable) {
            found.push_back(entityClass->name);
        }
    }
    EXPECT_EQ(found,
              (Names{"Vgw::Global", "Vgw::Manager", "Vgw::BackupManager", "Vgw::PhysicalSwitch",
                     "Vgw::PhysicalPort", "Vgw::LogicalBindingStats", "Vgw::LogicalSwitch",
                     "Vgw::PhysicalLocator", "Vgw::PhysicalLocatorSet"}));
}

TEST(ModelTable, ClassesBuiltFromAValueAreTheLocalMacRows) {
    Names found;
    for (auto const* entityClass : entityClasses()) {
        if (!entityClass->hasName) {
            found.push_back(entityClass->name);
        }
    }
    EXPECT_EQ(found, (Names{"Vgw::UcastMacsLocal", "Vgw::McastMacsLocal"}));
}

}  // namespace
}  // namespace Contract
