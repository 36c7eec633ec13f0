#include "FullSchema.h"
#include "JsonText.h"

#include <ovsdb/rpc/ProtocolError.h>
#include <ovsdb/store/Datum.h>
#include <ovsdb/store/UpdateReader.h>

#include <gtest/gtest.h>

namespace Ovsdb {
namespace {

using nlohmann::json;

constexpr std::string_view firstRow = "00000000-0000-4000-8000-000000000001";
constexpr std::string_view secondRow = "00000000-0000-4000-8000-000000000002";

class UpdateReaderTest : public testing::Test {
  protected:
    std::vector<RowChange> apply(std::string text, UpdateForm form = UpdateForm::differences,
                                 bool whole = false) {
        for (auto const& [name, uuid] : {std::pair("$1", firstRow), std::pair("$2", secondRow)})
            for (std::size_t at = text.find(name); at != std::string::npos; at = text.find(name))
                text.replace(at, 2, uuid);
        JsonText const parsed(text);
        RowStore::Staging staging(store_);
        UpdateReader(plan_, staging).read(parsed.root(), form);
        return staging.commit(whole, plan_.gapTables());
    }

    std::string refusal(std::string const& text, UpdateForm form = UpdateForm::differences) {
        try {
            static_cast<void>(apply(text, form));
        } catch (ProtocolError const& e) {
            return e.what();
        }
        return "";
    }

    Row const* logicalSwitch(std::string_view uuid) const {
        return store_.find(Table::logicalSwitch, *Uuid::parse(uuid));
    }

    MonitorPlan plan_{readSchema(JsonText(fullSchema().dump()).root())};
    RowStore store_;
};

TEST_F(UpdateReaderTest, AnInsertLeavesOutDefaults) {
    std::vector<RowChange> const changes =
        apply(R"({"Logical_Switch":{"$1":{"insert":{"name":"red"}},"$2":{"insert":{}}}})");
    ASSERT_EQ(changes.size(), 2U);
    EXPECT_FALSE(changes[0].before);
    ASSERT_NE(logicalSwitch(firstRow), nullptr);
    EXPECT_EQ(logicalSwitch(firstRow)->column(LogicalSwitchColumn::name), "red");
    EXPECT_EQ(logicalSwitch(firstRow)->column(LogicalSwitchColumn::description), "");
    EXPECT_EQ(optionalIntegerOf(logicalSwitch(firstRow)->column(LogicalSwitchColumn::tunnelKey)),
              std::nullopt);
    EXPECT_NE(logicalSwitch(secondRow), nullptr);
}

TEST_F(UpdateReaderTest, AModifyLeavesOtherColumnsAlone) {
    apply(R"({"Logical_Switch":{"$1":{"initial":{"name":"red","tunnel_key":5000}}}})");
    std::vector<RowChange> const changes =
        apply(R"({"Logical_Switch":{"$1":{"modify":{"tunnel_key":7777}}}})");
    ASSERT_EQ(changes.size(), 1U);
    EXPECT_EQ(optionalIntegerOf(changes[0].before.column(LogicalSwitchColumn::tunnelKey)), 5000);
    EXPECT_EQ(optionalIntegerOf(changes[0].after->column(LogicalSwitchColumn::tunnelKey)), 7777);
    EXPECT_EQ(changes[0].after->column(LogicalSwitchColumn::name), "red");
}

TEST_F(UpdateReaderTest, ADeletedRowIsGone) {
    apply(R"({"Logical_Switch":{"$1":{"insert":{"name":"red"}}}})");
    std::vector<RowChange> const changes = apply(R"({"Logical_Switch":{"$1":{"delete":null}}})");
    ASSERT_EQ(changes.size(), 1U);
    EXPECT_EQ(changes[0].before.column(LogicalSwitchColumn::name), "red");
    EXPECT_EQ(changes[0].after, nullptr);
    EXPECT_EQ(store_.size(), 0U);
}

TEST_F(UpdateReaderTest, TheWholeRowFormReplacesAndDeletes) {
    apply(R"({"Logical_Switch":{"$1":{"new":{"name":"red","tunnel_key":1}}}})", UpdateForm::whole);
    apply(
        R"({"Logical_Switch":{"$1":{"new":{"name":"red","tunnel_key":2},"old":{"tunnel_key":1}}}})",
        UpdateForm::whole);
    EXPECT_EQ(optionalIntegerOf(logicalSwitch(firstRow)->column(LogicalSwitchColumn::tunnelKey)),
              2);
    apply(R"({"Logical_Switch":{"$1":{"old":{"name":"red","tunnel_key":2}}}})", UpdateForm::whole);
    EXPECT_EQ(logicalSwitch(firstRow), nullptr);
}

TEST_F(UpdateReaderTest, AWholeCopyTellsDifferencesOnly) {
    apply(
        R"({"Logical_Switch":{"$1":{"initial":{"name":"red"}},"$2":{"initial":{"name":"blue"}}}})");
    EXPECT_TRUE(
        apply(
            R"({"Logical_Switch":{"$2":{"initial":{"name":"blue"}},"$1":{"initial":{"name":"red"}}}})",
            UpdateForm::differences, true)
            .empty());
    std::vector<RowChange> const changes = apply(
        R"({"Logical_Switch":{"$2":{"initial":{"name":"blue"}}}})", UpdateForm::differences, true);
    ASSERT_EQ(changes.size(), 1U);
    EXPECT_EQ(changes[0].uuid.text(), firstRow);
    EXPECT_EQ(changes[0].after, nullptr);
}

TEST_F(UpdateReaderTest, AnUpdateWithAnErrorInItsLastRowChangesNothing) {
    apply(R"({"Logical_Switch":{"$1":{"insert":{"name":"red"}}}})");
    EXPECT_EQ(
        refusal(R"({"Logical_Switch":{"$1":{"delete":null},"$2":{"insert":{"name":17}}}})"),
        "row " + std::string(secondRow) + " of table Logical_Switch: expected string, got 17");
    EXPECT_EQ(store_.size(), 1U);
    EXPECT_EQ(logicalSwitch(firstRow)->column(LogicalSwitchColumn::name), "red");
    EXPECT_EQ(apply(R"({"Logical_Switch":{"$1":{"delete":null},"$2":{"insert":{}}}})").size(), 2U);
}

TEST_F(UpdateReaderTest, WhatMakesNoSenseIsRefusedByName) {
    EXPECT_EQ(refusal(R"([1])"), "a table update is no object");
    EXPECT_EQ(refusal(R"({"Logical_Switch":[]})"),
              "the update of table Logical_Switch is no object");
    EXPECT_EQ(refusal(R"({"Logical_Switch":{"junk":{}}})"),
              "\"junk\" is no uuid, in the update of table Logical_Switch");
    EXPECT_EQ(
        refusal(R"({"Logical_Switch":{"$1":{"modify":{"name":"x"}}}})"),
        "row " + std::string(firstRow) + " of table Logical_Switch: modified, but never seen");
    EXPECT_EQ(
        refusal(R"({"Logical_Switch":{"$1":{"changed":{}}}})"),
        "row " + std::string(firstRow) +
            " of table Logical_Switch: none of \"initial\", \"insert\", \"modify\", \"delete\"");
    EXPECT_EQ(
        refusal(R"({"Logical_Switch":{"$1":{}}})", UpdateForm::whole),
        "row " + std::string(firstRow) + " of table Logical_Switch: neither \"new\" nor \"old\"");
    EXPECT_EQ(refusal(R"({"Logical_Switch":{"$1":{"insert":{}},"$1":{"delete":null}}})"),
              "row " + std::string(firstRow) + " of table Logical_Switch: row " +
                  std::string(firstRow) + " of table Logical_Switch stands twice in one update");
    EXPECT_EQ(store_.size(), 0U);
}

TEST_F(UpdateReaderTest, DeletingWhatWasNeverSeenIsNothing) {
    EXPECT_TRUE(apply(R"({"Logical_Switch":{"$1":{"delete":null}}})").empty());
    EXPECT_EQ(store_.size(), 0U);
}

TEST_F(UpdateReaderTest, UnknownTablesAndColumnsArePassedOver) {
    std::vector<RowChange> const changes = apply(
        R"({"ACL":{"$1":{"insert":{"acl_name":"x"}}},"Logical_Switch":{"$2":{"insert":{"name":"red","_version":["uuid","x"]}}}})");
    ASSERT_EQ(changes.size(), 1U);
    EXPECT_EQ(changes[0].uuid.text(), secondRow);
}

TEST_F(UpdateReaderTest, AModifyThatChangesNothingTellsNothing) {
    apply(R"({"Logical_Switch":{"$1":{"insert":{"name":"red"}}}})");
    EXPECT_TRUE(apply(R"({"Logical_Switch":{"$1":{"modify":{"name":"red"}}}})").empty());
}

// The schema was changed below us.
TEST_F(UpdateReaderTest, WhatIsHeldOfATableThatHasGoneIsKept) {
    apply(R"({"Logical_Switch":{"$1":{"initial":{"name":"red"}}},
              "Tunnel":{"$2":{"initial":{}}}})");
    json schema = fullSchema();
    schema["tables"].erase("Logical_Switch");
    schema["tables"].erase("Tunnel");
    plan_ = MonitorPlan(readSchema(JsonText(schema.dump()).root()));
    std::vector<RowChange> const changes = apply("{}", UpdateForm::differences, true);
    // Tables that come and go with versions are not missed.
    ASSERT_EQ(changes.size(), 1U);
    EXPECT_EQ(changes[0].table, Table::tunnel);
    EXPECT_NE(logicalSwitch(firstRow), nullptr);
    plan_ = MonitorPlan(readSchema(JsonText(fullSchema().dump()).root()));
    EXPECT_EQ(apply("{}", UpdateForm::differences, true).size(), 1U);
    EXPECT_EQ(logicalSwitch(firstRow), nullptr);
}

TEST_F(UpdateReaderTest, WhatIsHeldOfAColumnThatHasGoneIsKept) {
    apply(R"({"Logical_Switch":{"$1":{"initial":{"name":"red","tunnel_key":5000}}},
              "Physical_Switch":{"$2":{"initial":{"name":"a","switch_fault_status":"x"}}}})");
    json schema = fullSchema();
    schema["tables"]["Logical_Switch"]["columns"].erase("tunnel_key");
    schema["tables"]["Physical_Switch"]["columns"].erase("switch_fault_status");
    plan_ = MonitorPlan(readSchema(JsonText(schema.dump()).root()));
    for (char const* const kind : {"initial", "modify", "new"}) {
        UpdateForm const form =
            std::string_view(kind) == "new" ? UpdateForm::whole : UpdateForm::differences;
        std::string const name = std::string("after ") + kind;
        apply(R"({"Logical_Switch":{"$1":{")" + std::string(kind) + R"(":{"name":")" + name +
                  R"("}}},"Physical_Switch":{"$2":{")" + std::string(kind) + R"(":{}}}})",
              form);
        EXPECT_EQ(logicalSwitch(firstRow)->column(LogicalSwitchColumn::name), name);
        EXPECT_EQ(
            optionalIntegerOf(logicalSwitch(firstRow)->column(LogicalSwitchColumn::tunnelKey)),
            5000);
        Row const* const other = store_.find(Table::physicalSwitch, *Uuid::parse(secondRow));
        EXPECT_TRUE(other->column(PhysicalSwitchColumn::faultStatus).empty());
    }
    // A row that comes has its default.
    apply(R"({"Logical_Switch":{"$2":{"insert":{"name":"blue"}}}})");
    EXPECT_EQ(optionalIntegerOf(logicalSwitch(secondRow)->column(LogicalSwitchColumn::tunnelKey)),
              std::nullopt);
}

}  // namespace
}  // namespace Ovsdb
