#include "FullSchema.h"
#include "JsonText.h"

#include <ovsdb/rpc/ProtocolError.h>
#include <ovsdb/schema/MonitorPlan.h>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace Ovsdb {
namespace {

using nlohmann::json;

MonitorPlan planFor(json const& schema) {
    return MonitorPlan(readSchema(JsonText(schema.dump()).root()));
}

TEST(MonitorPlan, AFullSchemaHasNothingToComplainOf) {
    MonitorPlan const plan = planFor(fullSchema());
    EXPECT_TRUE(plan.complaints().empty());
    EXPECT_EQ(plan.version(), "1.7.0");
    EXPECT_TRUE(plan.has(Table::tunnel, TunnelColumn::bfdStatus));
}

TEST(MonitorPlan, TheColumnsAreAskedForByName) {
    json const requests = planFor(fullSchema()).requests();
    EXPECT_EQ(requests.size(), tableCount);
    EXPECT_EQ(requests["Manager"], (json{{{"columns", {"target"}}}}));
}

TEST(MonitorPlan, AMissingTableIsNamedAndNotAskedFor) {
    json schema = fullSchema();
    schema["tables"].erase("Ucast_Macs_Local");
    MonitorPlan const plan = planFor(schema);
    EXPECT_EQ(plan.complaints(),
              std::vector<std::string>{"table Ucast_Macs_Local is missing from the schema"});
    EXPECT_FALSE(plan.requests().contains("Ucast_Macs_Local"));
    EXPECT_TRUE(plan.requests().contains("Ucast_Macs_Remote"));
}

TEST(MonitorPlan, AMissingColumnIsNamedAndNotAskedFor) {
    json schema = fullSchema();
    schema["tables"]["Logical_Switch"]["columns"].erase("tunnel_key");
    MonitorPlan const plan = planFor(schema);
    EXPECT_EQ(
        plan.complaints(),
        std::vector<std::string>{"column Logical_Switch.tunnel_key is missing from the schema"});
    EXPECT_EQ(plan.requests()["Logical_Switch"][0]["columns"], (json{"name", "description"}));
}

TEST(MonitorPlan, AColumnOfAnotherTypeIsNamedAndNotAskedFor) {
    json schema = fullSchema();
    schema["tables"]["Ucast_Macs_Remote"]["columns"]["MAC"]["type"] = {
        {"key", "string"}, {"min", 0}, {"max", 1}};
    MonitorPlan const plan = planFor(schema);
    EXPECT_EQ(plan.complaints(),
              std::vector<std::string>{
                  "column Ucast_Macs_Remote.MAC is optional string, expected string"});
    EXPECT_FALSE(plan.has(Table::ucastMacsRemote, MacColumn::mac));
}

TEST(MonitorPlan, WhatOlderVersionsLackIsNoComplaint) {
    json schema = fullSchema();
    schema["tables"].erase("Tunnel");
    schema["tables"]["Physical_Locator"]["columns"].erase("tunnel_key");
    schema["tables"]["Physical_Switch"]["columns"].erase("switch_fault_status");
    schema["tables"]["Physical_Port"]["columns"].erase("port_fault_status");
    EXPECT_TRUE(planFor(schema).complaints().empty());
}

TEST(MonitorPlan, BfdThatIsNowhereIsAComplaint) {
    json schema = fullSchema();
    schema["tables"].erase("Tunnel");
    schema["tables"]["Physical_Locator"]["columns"].erase("bfd");
    ASSERT_EQ(planFor(schema).complaints().size(), 1U);
}

TEST(MonitorPlan, WhatEveryVersionHasIsAGapAndWhatComesAndGoesIsNone) {
    json schema = fullSchema();
    EXPECT_EQ(planFor(schema).gap(), "");
    for (char const* const column : {"tunnel_key", "bfd", "bfd_status"})
        schema["tables"]["Physical_Locator"]["columns"].erase(column);
    schema["tables"].erase("Tunnel");
    EXPECT_EQ(planFor(schema).gap(), "");
    schema["tables"].erase("Manager");
    schema["tables"]["Logical_Switch"]["columns"].erase("name");
    MonitorPlan const plan = planFor(schema);
    EXPECT_EQ(plan.gap(),
              "table Manager is missing from the schema; column Logical_Switch.name is missing "
              "from the schema");
    EXPECT_TRUE(plan.isGap(Table::manager));
    EXPECT_FALSE(plan.isGap(Table::tunnel));
    EXPECT_TRUE(plan.isGap(Table::logicalSwitch, LogicalSwitchColumn::name));
    EXPECT_FALSE(plan.isGap(Table::logicalSwitch, LogicalSwitchColumn::tunnelKey));
    EXPECT_FALSE(plan.isGap(Table::physicalLocator, PhysicalLocatorColumn::tunnelKey));
}

TEST(MonitorPlan, AColumnThatIsThereAndCannotBeReadIsAGap) {
    json schema = fullSchema();
    schema["tables"]["Physical_Locator"]["columns"]["tunnel_key"]["type"] = "string";
    EXPECT_EQ(planFor(schema).gap(),
              "column Physical_Locator.tunnel_key is string, expected optional integer");
}

TEST(MonitorPlan, ColumnsOfTypesToComeAreNoneOfOurs) {
    json schema = fullSchema();
    schema["tables"]["Manager"]["columns"]["novel"] = {{"type", {{"key", "quaternion"}}}};
    EXPECT_TRUE(planFor(schema).complaints().empty());
}

TEST(MonitorPlan, WhatIsNoSchemaIsRefused) {
    EXPECT_THROW(static_cast<void>(planFor(json{{"name", "x"}})), ProtocolError);
    EXPECT_THROW(static_cast<void>(planFor(json{{"tables", {{"A", 1}}}})), ProtocolError);
    EXPECT_THROW(static_cast<void>(planFor(json(17))), ProtocolError);
}

TEST(MonitorPlan, PlansOfTheSameColumnsAreTheSame) {
    json schema = fullSchema();
    MonitorPlan const full = planFor(schema);
    schema["version"] = "1.8.0";
    EXPECT_TRUE(full.sameColumns(planFor(schema)));
    schema["tables"].erase("Tunnel");
    EXPECT_FALSE(full.sameColumns(planFor(schema)));
}

}  // namespace
}  // namespace Ovsdb
