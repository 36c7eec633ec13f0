#include "SampleTree.h"

#include <vgwctl/command/ChangePrinter.h>
#include <vgwctl/command/Follow.h>

#include <gtest/gtest.h>

#include <memory>
#include <sstream>

namespace {

using namespace Vgwctl;

class Following : public testing::Test, protected SampleTree {
  protected:
    Following() {
        follower =
            std::make_unique<Follower>([this](Change const& change) { printer.print(change); },
                                       [](std::string const&) { return true; });
        follower->follow(*root);
        initial = take();
    }
    std::string take() {
        follower->flush();
        std::string const text = out.str();
        out.str("");
        return text;
    }

    Options options;
    std::ostringstream out;
    ChangePrinter printer{options, out};
    std::unique_ptr<Follower> follower;
    std::string initial;
};

TEST_F(Following, BeginsWithAllThatIsThere) {
    EXPECT_NE(initial.find("initial /vgw/status/ovsdb/logicalSwitch/red tunnelKey = 5001\n"),
              std::string::npos)
        << initial;
    EXPECT_NE(initial.find("initial /vgw/cliConfig managerPort = 6632\n"), std::string::npos);
}

TEST_F(Following, TellsOfAChangeOnceWithItsLastValue) {
    for (Qor::U32 key = 1; key < 100; ++key) red->tunnelKeyIs(key);
    EXPECT_EQ(take(), "modify /vgw/status/ovsdb/logicalSwitch/red tunnelKey = 99\n");
    EXPECT_EQ(take(), "");
}

TEST_F(Following, TellsOfMembersByTheirKeys) {
    port->vlanBindingIs(7, "green");
    port->vlanBindingDel(100);
    EXPECT_EQ(take(),
              "modify /vgw/status/ovsdb/physicalPort/one vlanBinding:7 = green\n"
              "modify /vgw/status/ovsdb/physicalPort/one vlanBinding:100 removed\n");
}

TEST_F(Following, TellsOfEntitiesThatComeAndGo) {
    auto const blue = database->logicalSwitchIs("blue");
    blue->tunnelKeyIs(7);
    EXPECT_EQ(take(),
              "insert /vgw/status/ovsdb/logicalSwitch/blue\n"
              "insert /vgw/status/ovsdb/logicalSwitch/blue name = blue\n"
              "insert /vgw/status/ovsdb/logicalSwitch/blue type = logicalSwitch\n"
              "insert /vgw/status/ovsdb/logicalSwitch/blue tunnelKey = 7\n");
    blue->tunnelKeyIs(8);
    EXPECT_EQ(take(), "modify /vgw/status/ovsdb/logicalSwitch/blue tunnelKey = 8\n");
    database->logicalSwitchDel("blue");
    EXPECT_EQ(take(), "delete /vgw/status/ovsdb/logicalSwitch/blue\n");
    blue->tunnelKeyIs(9);
    EXPECT_EQ(take(), "");
}

TEST_F(Following, TellsNothingOfWhatCameAndWent) {
    database->logicalSwitchIs("blue");
    database->logicalSwitchDel("blue");
    EXPECT_EQ(take(), "");
}

TEST_F(Following, TellsOfAnEntityThatTookAnothersPlace) {
    database->logicalSwitchDel("red");
    database->logicalSwitchIs("red")->tunnelKeyIs(1);
    std::string const told = take();
    EXPECT_TRUE(
        told.starts_with("delete /vgw/status/ovsdb/logicalSwitch/red\n"
                         "insert /vgw/status/ovsdb/logicalSwitch/red\n"))
        << told;
    EXPECT_EQ(take(), "");
}

TEST_F(Following, TellsOfAllThatGoesWithItsOwner) {
    status->ovsdbDel();
    std::string const told = take();
    EXPECT_NE(told.find("delete /vgw/status/ovsdb/logicalSwitch/red\n"), std::string::npos) << told;
    EXPECT_NE(told.find("delete /vgw/status/ovsdb\n"), std::string::npos) << told;
}

TEST_F(Following, TellsWhenAnEntryCanNoLongerBeReliedOn) {
    root->entryStateIs(Qor::Name("status"), Qor::Dir::EntryState::stale);
    EXPECT_EQ(take(), "modify /vgw/status _state = stale\n");
    root->entryStateIs(Qor::Name("status"), Qor::Dir::EntryState::ready);
    EXPECT_EQ(take(), "modify /vgw/status _state = ready\n");
}

TEST_F(Following, EndsWithTheFollower) {
    follower.reset();
    red->tunnelKeyIs(1);
    EXPECT_EQ(out.str(), "");
}

TEST(ChangeLine, AsJsonAndCsv) {
    SampleTree const tree;
    Change const change{
        Change::Kind::modified,         "/vgw/a b",      tree.red->fwkType(), "vlanBinding",
        {Value::Kind::number, "7", {}}, textValue("x,y")};
    Options options;
    options.style.format = Format::json;
    std::ostringstream json;
    ChangePrinter(options, json).print(change);
    EXPECT_EQ(json.str(),
              "{\"action\":\"modify\",\"attribute\":\"vlanBinding\",\"class\":"
              "\"Vgw::LogicalSwitch\",\"key\":7,\"path\":\"/vgw/a b\",\"value\":\"x,y\"}\n");
    options.style.format = Format::csv;
    std::ostringstream csv;
    ChangePrinter(options, csv).print(change);
    EXPECT_EQ(csv.str(),
              "action,path,attribute,key,value\nmodify,/vgw/a b,vlanBinding,7,\"\"\"x,y\"\"\"\n");
}

}  // namespace
