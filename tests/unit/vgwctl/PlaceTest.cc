#include "SampleTree.h"

#include <vgwctl/options/Failure.h>
#include <vgwctl/state/Place.h>

#include <gtest/gtest.h>

namespace {

using namespace Vgwctl;

struct Places : testing::Test, SampleTree {
    std::vector<std::string> paths(char const* word) {
        std::vector<std::string> found;
        for (auto const& row : rowsOf(word, *root)) found.emplace_back(row->uriPath().view());
        return found;
    }
};

using Paths = std::vector<std::string>;

TEST_F(Places, RowsAreMeantByACollectionADirectoryOrTheirPath) {
    EXPECT_EQ(paths("/vgw/status/ovsdb/logicalSwitch"),
              Paths{"/vgw/status/ovsdb/logicalSwitch/red"});
    EXPECT_EQ(paths("/vgw/status/ovsdb/logicalSwitch/red"),
              Paths{"/vgw/status/ovsdb/logicalSwitch/red"});
    EXPECT_EQ(paths("/vgw").size(), 2U);
}

TEST_F(Places, RowsAreMeantByAClassInAnyCase) {
    for (char const* name :
         {"Vgw::LogicalSwitch", "LogicalSwitch", "logical_switch", "Logical_Switch"})
        EXPECT_EQ(paths(name), Paths{"/vgw/status/ovsdb/logicalSwitch/red"}) << name;
}

TEST_F(Places, AClassTakesThoseThatDeriveFromIt) { EXPECT_EQ(paths("OvsdbDataModel").size(), 2U); }

TEST_F(Places, WhatIsNotThereIsNamedWithACodeOfItsOwn) {
    for (char const* word :
         {"/vgw/nothing", "/vgw/status/nothing", "/vgw/status/ovsdb/nothing", "Nothing"}) {
        try {
            paths(word);
            ADD_FAILURE() << word << " was found";
        } catch (Failure const& e) {
            EXPECT_EQ(e.code(), ExitCode::absent) << word;
        }
    }
}

TEST_F(Places, ChildrenAreMetAndReferencesAreNot) {
    auto const physical = Qor::make<Vgw::PhysicalSwitch>(Qor::Name("leaf"));
    database->physicalSwitchIs("leaf", physical);
    Paths met;
    forEachBelow(*root, [&](Qor::Entity& entity) { met.emplace_back(entity.uriPath().view()); });
    EXPECT_EQ(met.size(), 6U);
    EXPECT_EQ(met.front(), "/vgw");
}

TEST_F(Places, HeldAttributesAreNoOperationsAndNothingThatFollows) {
    Paths names;
    for (Qor::QorAttr const* const attribute : heldAttributes(*cli->fwkType()))
        names.emplace_back(attribute->name().view());
    EXPECT_EQ(names,
              (Paths{"name", "enableAgent", "enableOvsdb", "vtepListType", "managerIp",
                     "managerPort", "persistDatabase", "logConsole", "logSyslog", "logFile"}));
}

TEST_F(Places, AnEntryIsToldOfWhenItCannotBeReliedOn) {
    EXPECT_EQ(entryStateOf(*status), "");
    root->entryStateIs(Qor::Name("status"), Qor::Dir::EntryState::stale);
    EXPECT_EQ(entryStateOf(*status), "stale");
    EXPECT_EQ(entryStateOf(*red), "");
}

}  // namespace
