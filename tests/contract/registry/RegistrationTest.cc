// The two units of registration: what they keep, and that what the records say of the compiled
// classes is so.
#include <algorithm>

#include <gtest/gtest.h>

#include <qor/generic/TypeOf.h>
#include <vgw/OvsdbDataTypesList.h>
#include <vgw/VgwTypesList.h>
#include <vgw/registry/OvsdbDataTypesRegistration.h>
#include <vgw/registry/VgwTypesRegistration.h>

#include "RegistryTable.h"

namespace Contract {
namespace {

using Names = std::vector<std::string>;

std::vector<Qor::TypeRecord*> records() {
    std::vector<Qor::TypeRecord*> all;
    for (Qor::TypeUnit const* const unit : {&Vgw::ovsdbDataTypesUnit(), &Vgw::vgwTypesUnit()}) {
        all.insert(all.end(), unit->records().begin(), unit->records().end());
    }
    return all;
}

TEST(Registration, IsDoneWhenTheLibraryHasBeenLoaded) {
    for (Qor::TypeUnit const* const unit : {&Vgw::ovsdbDataTypesUnit(), &Vgw::vgwTypesUnit()}) {
        EXPECT_TRUE(unit->isDescribed());
        EXPECT_TRUE(unit->isInitialised());
    }
    for (Qor::TypeRecord const* const record : records()) {
        EXPECT_TRUE(record->isNamed) << record->fullName;
    }
    EXPECT_EQ(Vgw::ovsdbDataTypesUnit().records().size(), 19U);
    EXPECT_EQ(Vgw::vgwTypesUnit().records().size(), 9U);
}

TEST(Registration, HasItsTypesInTheOrderOfTheTable) {
    Names registered;
    for (Qor::TypeRecord const* const record : records()) {
        registered.emplace_back(record->fullName);
    }
    Names expected;
    for (auto const& type : registryTable()) {
        expected.push_back(type.name);
    }
    EXPECT_EQ(registered, expected);
}

// The framework's first, then the operation that all rows inherit, then the class's own.
Names handlesOf(RegisteredType const& type) {
    Names names;
    if (type.sort != Sort::entity) {
        return names;
    }
    bool const isDirectlyUnderEntity = type.base == "Qor::Entity";
    if (isDirectlyUnderEntity) {
        names.push_back("isNondestructing");
    }
    names.insert(names.end(), {"qorNboAttrLogSaForMsgChannel", "qorHasAttrLogInterface"});
    if (!isDirectlyUnderEntity) {
        names.push_back("clone");
    }
    for (auto const& attribute : type.own) {
        if (std::ranges::find(names, attribute.name) == names.end()) {
            names.push_back(attribute.name);
        }
    }
    return names;
}

TEST(Registration, KeepsAHandleToEachAttributeOfAnEntity) {
    std::vector<Qor::TypeRecord*> const all = records();
    for (std::size_t i = 0; i < all.size(); ++i) {
        SCOPED_TRACE(all[i]->fullName);
        Names const names(all[i]->handleNames.begin(), all[i]->handleNames.end());
        EXPECT_EQ(names, handlesOf(registryTable()[i]));
        ASSERT_EQ(all[i]->handles.size(), names.size());
        for (std::size_t h = 0; h < names.size(); ++h) {
            auto const record = all[i]->type->attr(Qor::Name(names[h].c_str()));
            ASSERT_TRUE(record) << names[h];
            EXPECT_EQ(all[i]->handles[h], record) << names[h];
            EXPECT_EQ(all[i]->handle(record->id()), record.ptr()) << names[h];
        }
    }
}

Names derivedFrom(char const* type, Names const& among) {
    Names derived;
    for (Qor::QorType const* const one : Qor::QorType::type(type)->derivedTypes()) {
        std::string const name(one->fullName().view());
        if (std::ranges::find(among, name) != among.end()) {
            derived.push_back(name);
        }
    }
    return derived;
}

// Types are built by the alphabet of their names, but none before its base.
TEST(Registration, BasesKnowWhatDerivesFromThemInTheOrderOfBuilding) {
    Names const rows{"Vgw::Manager",
                     "Vgw::Global",
                     "Vgw::LogicalBindingStats",
                     "Vgw::LogicalSwitch",
                     "Vgw::McastMacsLocal",
                     "Vgw::McastMacsRemote",
                     "Vgw::PhysicalLocator",
                     "Vgw::PhysicalLocatorSet",
                     "Vgw::PhysicalPort",
                     "Vgw::PhysicalSwitch",
                     "Vgw::UcastMacsLocal",
                     "Vgw::UcastMacsRemote"};
    EXPECT_EQ(derivedFrom("Vgw::OvsdbDataModel", rows), rows);
    EXPECT_EQ(Qor::QorType::type("Vgw::OvsdbDataModel")->derivedTypes().size(), rows.size());
    EXPECT_EQ(derivedFrom("Vgw::Manager", {"Vgw::BackupManager"}), Names{"Vgw::BackupManager"});
    Names const database{"Vgw::OvsdbDataModel", "Vgw::HwVtepOvsdb"};
    EXPECT_EQ(derivedFrom("Qor::Entity", database), database);
    Names const agent{"Vgw::CliConfig", "Vgw::Config", "Vgw::OvsdbSessionStatus", "Vgw::Status"};
    EXPECT_EQ(derivedFrom("Qor::Entity", agent), agent);
}

template <class T>
void expectSaid(std::string const& fullName) {
    SCOPED_TRACE(fullName);
    Qor::QorType* const type = Qor::QorType::type(fullName.c_str());
    ASSERT_TRUE(type);
    EXPECT_EQ(Qor::typeOf<T>(), type);
    EXPECT_EQ(type->size(), sizeof(T));
}

TEST(Registration, SaysOfEveryCompiledClassWhatItIs) {
    std::size_t classes = 0;
    auto const ofClass = [&]<class T>() {
        expectSaid<T>(T::qorTypeName);
        ++classes;
    };
    auto const ofEnumeration = [&]<class E>() {
        expectSaid<E>(std::string("Vgw::") + Qor::EnumTable<E>::type);
        ++classes;
    };
    Vgw::OvsdbDataTypesEntities::forEach(ofClass);
    Vgw::VgwTypesEntities::forEach(ofClass);
    Vgw::OvsdbDataTypesValues::forEach(ofClass);
    Vgw::VgwTypesValues::forEach(ofClass);
    Vgw::OvsdbDataTypesEnumerations::forEach(ofEnumeration);
    Vgw::VgwTypesEnumerations::forEach(ofEnumeration);
    EXPECT_EQ(classes, registryTable().size());
    EXPECT_EQ(Qor::QorType::type("Vgw::CliDefaults")->size(), 1U);
}

TEST(Registration, LiteralsOfEnumerationsAreItsEnumerators) {
    auto const check = []<class E>() {
        Qor::QorType* const type = Qor::typeOf<E>();
        auto const& names = Qor::EnumTable<E>::names;
        ASSERT_EQ(type->attributes().size(), names.size());
        for (std::size_t i = 0; i < names.size(); ++i) {
            EXPECT_EQ(type->attributes()[i]->name(), names[i]);
            EXPECT_EQ(type->attributes()[i]->id(), static_cast<Qor::AttributeId>(i));
        }
    };
    Vgw::OvsdbDataTypesEnumerations::forEach(check);
    Vgw::VgwTypesEnumerations::forEach(check);
}

TEST(Registration, FactoriesGiveNewInstancesOfTheirClass) {
    auto const check = [](auto const& made, char const* type) {
        ASSERT_TRUE(made);
        EXPECT_EQ(made->fwkType(), Qor::QorType::type(type));
        EXPECT_EQ(made->name(), "n");
        EXPECT_EQ(made->qorRefs(), 1U);
    };
    check(Vgw::hwVtepOvsdbFactory("n"), "Vgw::HwVtepOvsdb");
    check(Vgw::ucastMacsRemoteFactory("n"), "Vgw::UcastMacsRemote");
    check(Vgw::mcastMacsRemoteFactory("n"), "Vgw::McastMacsRemote");
    check(Vgw::statusFactory("n"), "Vgw::Status");
    check(Vgw::configFactory("n"), "Vgw::Config");
    check(Vgw::cliConfigFactory("n"), "Vgw::CliConfig");
    check(Vgw::ovsdbSessionStatusFactory("n"), "Vgw::OvsdbSessionStatus");
}

TEST(Registration, SameNameIsAnotherAttributeInAnotherClass) {
    auto const id = [](char const* type) {
        return Qor::QorType::type(type)->attr(Qor::Name("logicalSwitch"))->id();
    };
    EXPECT_EQ(id("Vgw::OvsdbDataType"), 1);
    EXPECT_EQ(id("Vgw::HwVtepOvsdb"), 263);
    EXPECT_EQ(id("Vgw::UcastMacsLocal"), 390);
    EXPECT_EQ(id("Vgw::McastMacsLocal"), 391);
    EXPECT_EQ(id("Vgw::UcastMacsRemote"), 387);
    EXPECT_EQ(id("Vgw::McastMacsRemote"), 387);
}

// A stand-in has nothing of its own but the answer whether it can be streamed.
TEST(Registration, BackupManagerHasItsOperationsFromTheManager) {
    Qor::QorType* const type = Qor::QorType::type("Vgw::BackupManager");
    Qor::QorType* const manager = Qor::QorType::type("Vgw::Manager");
    for (char const* const name : {"clone", "isEqualTo", "fwkKey", "target"}) {
        auto const record = type->attr(Qor::Name(name));
        ASSERT_TRUE(record) << name;
        EXPECT_EQ(record->definedBy(), manager) << name;
        EXPECT_EQ(record->id(), manager->attr(Qor::Name(name))->id()) << name;
        EXPECT_NE(record, manager->attr(Qor::Name(name))) << "a record of its own";
    }
}

TEST(Registration, MacOfALocalRowIsItsArgumentAndOfARemoteRowAnOrdinaryValue) {
    for (char const* const type : {"Vgw::UcastMacsLocal", "Vgw::McastMacsLocal"}) {
        auto const record = Qor::QorType::type(type)->attr(Qor::Name("macAddr"));
        EXPECT_TRUE(record->flags().isConstructed());
        EXPECT_FALSE(record->flags().isWritable());
        EXPECT_EQ(Qor::QorType::type(type)->constructorArgs()[0].name, "macAddr");
    }
    for (char const* const type : {"Vgw::UcastMacsRemote", "Vgw::McastMacsRemote"}) {
        EXPECT_TRUE(Qor::QorType::type(type)->attr(Qor::Name("mac"))->flags().isWritable());
        EXPECT_EQ(Qor::QorType::type(type)->constructorArgs()[0].name, "name");
    }
}

}  // namespace
}  // namespace Contract
